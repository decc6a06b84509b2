// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/extract/run_cleaning.h"

#include "host/files/confounds_table.h"
#include "host/files/input_error.h"
#include "host/files/text_check.h"

#include <cmath>

namespace corvane
{

namespace
{

QString decimal(double number)
{
    return QString::fromLatin1(shortestDecimal(number));
}

void addNotes(const std::vector<std::string> &sentences, const QString &path, QStringList &notes)
{
    for (const std::string &sentence : sentences)
        notes += (path.isEmpty() ? QString() : printable(path, 4096) + QStringLiteral(": ")) +
                 QString::fromStdString(sentence);
}

/// Does what may throw, and names the file in what it throws.
template <typename Work>
auto namingFile(const QString &path, Work work)
{
    try {
        return work();
    } catch (const signals::UsageError &) {
        throw;
    } catch (const signals::Refused &) {
        throw;
    } catch (const signals::Error &error) {
        if (path.isEmpty())
            throw;
        throw signals::Error(printable(path, 4096).toStdString() + ": " + error.what());
    }
}

signals::ConfoundsTable tableOf(const QString &path, int volumes, QStringList &notes)
{
    if (!path.isEmpty())
        return readConfounds(path, notes);
    signals::ConfoundsTable none;
    none.values.resize(volumes, 0);
    return none;
}

QJsonValue valueOrNull(double number)
{
    return std::isfinite(number) ? QJsonValue(number) : QJsonValue(QJsonValue::Null);
}

} // namespace

RunCleaning planCleaning(const CleaningRequest &request, int volumes, double repetitionTime,
                         QStringList &notes)
{
    RunCleaning cleaning;
    cleaning.table = tableOf(request.confounds, volumes, notes);
    signals::StrategyRequest strategy = request.strategy;
    strategy.volumes = volumes;
    strategy.order = request.settings.order;
    if (!request.censor.isEmpty())
        strategy.censor = readCensorFile(request.censor, volumes);
    cleaning.selection =
        namingFile(request.confounds, [&] { return signals::select(cleaning.table, strategy); });
    addNotes(cleaning.selection.notes, request.confounds, notes);
    cleaning.design = namingFile(request.confounds, [&] {
        return signals::make_design(cleaning.selection.regressors, cleaning.selection.volumes,
                                    repetitionTime, request.settings);
    });
    addNotes(cleaning.design.notes, request.confounds, notes);
    signals::require_enough(cleaning.design.ledger, request.limits);
    return cleaning;
}

signals::Design uncleanedDesign(const RunCleaning &cleaning, double repetitionTime)
{
    signals::Regressors none;
    none.values.resize(cleaning.selection.volumes.count(), 0);
    none.filter_only = true;
    return signals::make_design(none, cleaning.selection.volumes, repetitionTime,
                                signals::Settings());
}

QString cleaningText(const CleaningRequest &request, const RunCleaning &cleaning)
{
    const signals::Settings &settings = request.settings;
    const signals::Band &band = cleaning.design.band;
    const signals::Thresholds &thresholds = cleaning.selection.thresholds;
    QStringList parts{QString::fromStdString(request.strategy.strategy),
                      QStringLiteral("order ") + QLatin1String(signals::name(settings.order))};
    if (band.high_pass > 0)
        parts += QStringLiteral("high-pass %1 Hz").arg(decimal(band.high_pass));
    if (band.low_pass > 0)
        parts += QStringLiteral("low-pass %1 Hz").arg(decimal(band.low_pass));
    if (!settings.detrend)
        parts += QStringLiteral("no trend taken off");
    if (thresholds.fd > 0)
        parts += QStringLiteral("FD > %1 mm left out").arg(decimal(thresholds.fd));
    if (thresholds.std_dvars > 0)
        parts += QStringLiteral("std_dvars > %1 left out").arg(decimal(thresholds.std_dvars));
    if (!request.censor.isEmpty())
        parts += QStringLiteral("volumes left out by a list");
    if (settings.standardize == signals::Standardize::zscore)
        parts += QStringLiteral("z-scores");
    if (settings.standardize == signals::Standardize::psc)
        parts += QStringLiteral("percent signal change");
    return parts.join(QStringLiteral(", "));
}

QJsonObject ledgerJson(const signals::Ledger &ledger)
{
    return {{QStringLiteral("Volumes"), int(ledger.volumes)},
            {QStringLiteral("NonSteady"), int(ledger.non_steady)},
            {QStringLiteral("Censored"), int(ledger.censored)},
            {QStringLiteral("Kept"), int(ledger.kept)},
            {QStringLiteral("Rank"), int(ledger.rank)},
            {QStringLiteral("DegreesOfFreedom"), ledger.degrees},
            {QStringLiteral("DegreesOfFreedomAreEstimate"), ledger.about},
            {QStringLiteral("SecondsKept"), ledger.seconds},
            {QStringLiteral("MeanFDBefore"), valueOrNull(ledger.mean_fd_before)},
            {QStringLiteral("MeanFDAfter"), valueOrNull(ledger.mean_fd_after)}};
}

} // namespace corvane
