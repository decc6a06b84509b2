// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/cleaning_options.h"

#include "host/commands/commands.h"
#include "host/commands/option_values.h"
#include "host/files/input_error.h"

#include <algorithm>
#include <cstdio>

namespace corvane
{

namespace
{

constexpr NamedValue<signals::Order> orderNames[] = {
    {signals::Order::joint, "joint"},
    {signals::Order::cosine, "cosine"},
    {signals::Order::butterworth, "butterworth"},
    {signals::Order::bandpass_pad, "bandpass-pad"}};

constexpr NamedValue<signals::MotionOrder> motionOrderNames[] = {
    {signals::MotionOrder::fsl, "fsl"},
    {signals::MotionOrder::spm, "spm"},
    {signals::MotionOrder::afni, "afni"}};

QString strategyNames()
{
    QStringList names;
    for (const signals::Strategy &strategy : signals::strategies())
        names += QString::fromStdString(std::string(strategy.name));
    return names.join(QStringLiteral(", "));
}

QByteArray strategyTable()
{
    QByteArray table;
    for (const signals::Strategy &strategy : signals::strategies()) {
        const auto text = [](std::string_view view) {
            return QByteArray(view.data(), int(view.size()));
        };
        table += text(strategy.name).leftJustified(16) + text(strategy.regressors) + '\n';
        if (!strategy.censoring.empty())
            table += QByteArray(16, ' ') + "left out: " + text(strategy.censoring) + '\n';
    }
    return table;
}

std::optional<Eigen::Index> wholeOption(const QCommandLineParser &parser, const char *name,
                                        qint64 least)
{
    const std::optional<qint64> number = wholeValue(parser, name, least);
    return number ? std::optional<Eigen::Index>(Eigen::Index(*number)) : std::nullopt;
}

/// "auto" leaves it to the table.
std::optional<Eigen::Index> dummyScans(const QCommandLineParser &parser)
{
    if (parser.value(QStringLiteral("dummy-scans")) == QLatin1String("auto"))
        return std::nullopt;
    return wholeOption(parser, "dummy-scans", 0);
}

signals::StrategyRequest strategyRequest(const QCommandLineParser &parser)
{
    signals::StrategyRequest request;
    request.strategy = parser.value(QStringLiteral("clean")).toStdString();
    request.fd_threshold = numberValue(parser, "fd-threshold", 0);
    request.dvars_threshold = numberValue(parser, "dvars-threshold", 0);
    request.min_segment = wholeOption(parser, "min-segment", 0);
    request.dummy_scans = dummyScans(parser);
    request.components = wholeOption(parser, "components", 1);
    if (parser.isSet(QStringLiteral("motion-order")))
        request.motion_order =
            chosenValue(parser, QStringLiteral("motion-order"), motionOrderNames);
    return request;
}

void requireConfounds(const CleaningRequest &request)
{
    if (request.confounds.isEmpty() && request.strategy.strategy != "none")
        throw UsageError(QStringLiteral("--clean %1 needs --confounds, which is missing")
                             .arg(QString::fromStdString(request.strategy.strategy)));
}

void requireStrategy(const QCommandLineParser &parser)
{
    if (parser.isSet(QStringLiteral("confounds")) && !parser.isSet(QStringLiteral("clean")))
        throw UsageError(
            QStringLiteral("--confounds needs --clean with one of: %1").arg(strategyNames()));
}

} // namespace

void addCleaningOptions(QCommandLineParser &parser)
{
    const auto file = QStringLiteral("file");
    parser.addOptions({
        {QStringLiteral("confounds"),
         QStringLiteral("What a pipeline tells of each volume: a TSV table with names of columns, "
                        "or motion parameters without."),
         file},
        {QStringLiteral("censor"),
         QStringLiteral("More volumes to leave out: a line for each volume, 0 or 1."), file},
    });
    parser.addOptions(cleaningSettingOptions());
}

QList<QCommandLineOption> cleaningSettingOptions()
{
    const auto number = QStringLiteral("N");
    return {
        {QStringLiteral("clean"),
         QStringLiteral("What is taken out of the series: a strategy, of which --clean help tells "
                        "the list."),
         QStringLiteral("name"), QStringLiteral("none")},
        {QStringLiteral("order"),
         QStringLiteral("In which order drift, filter and regression follow: joint, cosine, "
                        "butterworth or bandpass-pad."),
         QStringLiteral("name"), QStringLiteral("joint")},
        {QStringLiteral("high-pass"), QStringLiteral("Slower waves go."), QStringLiteral("Hz")},
        {QStringLiteral("low-pass"), QStringLiteral("Faster waves go."), QStringLiteral("Hz")},
        {QStringLiteral("no-detrend"), QStringLiteral("The linear trend stays.")},
        {QStringLiteral("standardize"),
         QStringLiteral("The unit of cleaned series: none, zscore or psc, percent of the mean."),
         QStringLiteral("unit"), QStringLiteral("none")},
        {QStringLiteral("fd-threshold"),
         QStringLiteral("Volumes with a larger framewise displacement are left out; 0 for none."),
         QStringLiteral("mm")},
        {QStringLiteral("dvars-threshold"),
         QStringLiteral("Volumes with a larger standardised DVARS are left out; 0 for none."),
         QStringLiteral("X")},
        {QStringLiteral("min-segment"),
         QStringLiteral("Fewer volumes than this between two that are left out go too."), number},
        {QStringLiteral("dummy-scans"),
         QStringLiteral("How many volumes at the start are not steady; auto: those that the table "
                        "names."),
         QStringLiteral("N|auto"), QStringLiteral("auto")},
        {QStringLiteral("components"), QStringLiteral("At most this many components of each mask."),
         number},
        {QStringLiteral("motion-order"),
         QStringLiteral("How motion parameters without names are written: fsl, spm or afni."),
         QStringLiteral("package")},
        {QStringLiteral("min-volumes"),
         QStringLiteral("A run of which fewer volumes are kept is refused."), number,
         QStringLiteral("0")},
        {QStringLiteral("min-seconds"),
         QStringLiteral("A run of which less time is kept is refused."), QStringLiteral("seconds"),
         QStringLiteral("0")},
    };
}

void requireStrategyName(const QCommandLineParser &parser)
{
    const QString option = QStringLiteral("clean");
    const QString name = parser.value(option);
    const std::vector<signals::Strategy> &all = signals::strategies();
    const bool isKnown =
        name.startsWith(QLatin1String("columns:")) ||
        std::any_of(all.begin(), all.end(), [&](const signals::Strategy &strategy) {
            return strategy.name == name.toStdString() && strategy.name != "columns:";
        });
    if (!parser.isSet(option))
        throw UsageError(
            QStringLiteral("--clean is missing; expected one of: %1").arg(strategyNames()));
    if (!isKnown)
        throw UsageError(QStringLiteral("--clean: found %1, expected one of: %2")
                             .arg(quoted(name), strategyNames()));
}

bool toldStrategies(const QCommandLineParser &parser)
{
    if (parser.value(QStringLiteral("clean")) != QLatin1String("help"))
        return false;
    const QByteArray table = strategyTable();
    std::fwrite(table.constData(), 1, std::size_t(table.size()), stdout);
    return true;
}

void requireClean(const QCommandLineParser &parser)
{
    if (parser.isSet(QStringLiteral("clean")))
        return;
    requireStrategy(parser);
    for (const char *option :
         {"order", "high-pass", "low-pass", "no-detrend", "standardize", "fd-threshold",
          "dvars-threshold", "min-segment", "censor", "dummy-scans", "components", "motion-order",
          "min-volumes", "min-seconds"})
        if (parser.isSet(QLatin1String(option)))
            throw UsageError(QStringLiteral("--%1 goes with --clean, which is missing")
                                 .arg(QLatin1String(option)));
}

CleaningRequest cleaningRequest(const QCommandLineParser &parser)
{
    requireStrategy(parser);
    CleaningRequest request = cleaningSettings(parser);
    request.confounds = parser.value(QStringLiteral("confounds"));
    request.censor = parser.value(QStringLiteral("censor"));
    requireConfounds(request);
    return request;
}

CleaningRequest cleaningSettings(const QCommandLineParser &parser)
{
    CleaningRequest request;
    request.strategy = strategyRequest(parser);
    request.settings.order = chosenValue(parser, QStringLiteral("order"), orderNames);
    request.settings.high_pass = numberValue(parser, "high-pass", 0);
    request.settings.low_pass = numberValue(parser, "low-pass", 0);
    request.settings.detrend = !parser.isSet(QStringLiteral("no-detrend"));
    request.settings.standardize =
        chosenValue(parser, QStringLiteral("standardize"), standardizeNames);
    request.limits.volumes = *wholeOption(parser, "min-volumes", 0);
    request.limits.seconds = *numberValue(parser, "min-seconds", 0);
    return request;
}

} // namespace corvane
