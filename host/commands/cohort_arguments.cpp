// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/cohort_arguments.h"

#include "host/commands/cleaning_options.h"
#include "host/commands/commands.h"
#include "host/commands/connectome_options.h"
#include "host/commands/group_options.h"
#include "host/commands/option_values.h"
#include "host/commands/run_filter_options.h"
#include "host/files/input_error.h"
#include "host/files/text_check.h"
#include "signals/error.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace corvane
{

namespace
{

/// Less of a run than this is excluded unless --min-seconds says otherwise.
constexpr auto leastSeconds = "--min-seconds=240";

/// Options that say how matrices are made; all of them are compared between two calls.
QList<QCommandLineOption> settingOptions()
{
    return connectomeSettingOptions() + cleaningSettingOptions() +
           QList<QCommandLineOption>{
               {QStringLiteral("events"),
                QStringLiteral("Also a matrix for each condition of the run's own table of "
                               "events.")}};
}

QJsonObject optionsOf(const QCommandLineParser &parser)
{
    QJsonObject options;
    for (const QCommandLineOption &option : settingOptions()) {
        const QString name = option.names().first();
        if (parser.isSet(name))
            options.insert(name, option.valueName().isEmpty() ? QJsonValue(true)
                                                              : QJsonValue(parser.value(name)));
    }
    return options;
}

/// Each --labels and --atlas-name belongs to the --atlas before it.
std::vector<StudyAtlas> atlasesOf(const QCommandLineParser &parser)
{
    std::vector<StudyAtlas> atlases;
    QHash<QString, int> taken;
    for (const QString &option : parser.optionNames()) {
        const QStringList values = parser.values(option);
        const int next = taken[option]++;
        if (option == QLatin1String("atlas")) {
            const QString &file = values[next];
            atlases.push_back({QFileInfo(file).absoluteFilePath(), {}, atlasName(file)});
        } else if (option == QLatin1String("labels") || option == QLatin1String("atlas-name")) {
            if (atlases.empty())
                throw UsageError(QStringLiteral("--%1 stands before its --atlas").arg(option));
            if (option == QLatin1String("labels")) {
                atlases.back().labels = QFileInfo(values[next]).absoluteFilePath();
            } else {
                requireAtlasName(values[next]);
                atlases.back().name = values[next];
            }
        }
    }
    if (atlases.empty())
        throw UsageError(QStringLiteral("--atlas is missing"));
    QSet<QString> names;
    for (const StudyAtlas &atlas : atlases) {
        if (names.contains(atlas.name))
            throw UsageError(QStringLiteral("two atlases are called %1: --atlas-name behind one of "
                                            "them gives it another name")
                                 .arg(quoted(atlas.name)));
        names.insert(atlas.name);
        for (const QString &file : {atlas.file, atlas.labels})
            if (!file.isEmpty() && !QFileInfo(file).isFile())
                throw InputError(file, QStringLiteral("opening"), QStringLiteral("no such file"),
                                 QStringLiteral("a file"));
    }
    return atlases;
}

ConnectomeRequest requestOf(const QCommandLineParser &parser)
{
    try {
        return connectomeSettings(parser);
    } catch (const signals::UsageError &error) {
        throw UsageError(QString::fromUtf8(error.what()));
    }
}

} // namespace

QStringList withPlainOptions(const QStringList &arguments)
{
    QStringList words = withLabelWords(arguments, {QStringLiteral("--sbatch-options")});
    const bool hasLimit = std::any_of(words.begin(), words.end(), [](const QString &word) {
        return word.startsWith(QLatin1String("--min-seconds"));
    });
    if (!hasLimit)
        words.insert(1, QLatin1String(leastSeconds));
    return words;
}

void addCohortOptions(QCommandLineParser &parser)
{
    const auto file = QStringLiteral("file");
    const auto number = QStringLiteral("N");
    addRunFilterOptions(parser);
    parser.addOptions({
        {QStringLiteral("atlas"),
         QStringLiteral("An image of labels in the space of the runs; may be given more than "
                        "once."),
         file},
        {QStringLiteral("labels"),
         QStringLiteral("The names of the labels of the atlas before it: a TSV table with index "
                        "and name, or a colour table."),
         file},
        {QStringLiteral("atlas-name"),
         QStringLiteral("What the atlas before it is called in the names of files."),
         QStringLiteral("name")},
    });
    parser.addOptions(settingOptions());
    parser.addOptions({
        {QStringLiteral("nprocs"),
         QStringLiteral("How many participants at once, as far as memory reaches; one for each "
                        "processor unless given."),
         number},
        {QStringLiteral("slurm"),
         QStringLiteral(
             "Submits the participants to Slurm, as the tasks of one job, and a job that "
             "collects behind it.")},
        {QStringLiteral("subjects-per-job"),
         QStringLiteral("How many participants a task of Slurm computes."), number},
        {QStringLiteral("sbatch-options"),
         QStringLiteral("Further options for sbatch, in one word: \"-p long -t 60\"."),
         QStringLiteral("options")},
        {QStringLiteral("wait"), QStringLiteral("With --slurm: until the jobs are over.")},
        {QStringLiteral("no-pages"), QStringLiteral("Without pages of HTML.")},
        {QStringLiteral("keep-failed"),
         QStringLiteral("Rows that failed before are not tried again.")},
        {QStringLiteral("no-collect"),
         QStringLiteral(
             "Without the study's table: for one participant of many; Corvane cohort OUT "
             "status --collect makes it later.")},
        {QStringLiteral("then-group"),
         QStringLiteral("Tests the group as soon as its rows are made: what stands behind this are "
                        "options of group.")},
        {QStringLiteral("collect"), QStringLiteral("With status: makes the study's table.")},
        {QStringLiteral("sample"), QStringLiteral("With verify: how many rows are computed again."),
         number, QStringLiteral("10")},
        {QStringLiteral("all"), QStringLiteral("With verify: all rows are.")},
        {QStringLiteral("inputs"),
         QStringLiteral("With verify: all inputs are read instead, and compared with those that "
                        "were.")},
        {QStringLiteral("group-out"),
         QStringLiteral("With group: the folder for the results, the study's own \"group\" unless "
                        "given."),
         QStringLiteral("folder")},
    });
    parser.addOptions(groupOptions());
}

QString stepOf(const QString &option)
{
    struct Owner {
        const char *option;
        const char *step;
    };
    constexpr Owner owners[] = {{"nprocs", "participant"},
                                {"slurm", "participant"},
                                {"subjects-per-job", "participant"},
                                {"sbatch-options", "participant"},
                                {"wait", "participant"},
                                {"keep-failed", "participant"},
                                {"no-collect", "participant"},
                                {"then-group", "participant"},
                                {"collect", "status"},
                                {"sample", "verify"},
                                {"all", "verify"},
                                {"inputs", "verify"},
                                {"group-out", "group"}};
    for (const Owner &owner : owners)
        if (option == QLatin1String(owner.option))
            return QLatin1String(owner.step);
    const QList<QCommandLineOption> ofGroup = groupOptions();
    return std::any_of(
               ofGroup.begin(), ofGroup.end(),
               [&](const QCommandLineOption &known) { return known.names().contains(option); })
               ? QStringLiteral("group")
               : QString();
}

RunFilter runFilter(const QCommandLineParser &parser)
{
    RunFilter filter = runFilterOf(parser);
    filter.confoundsNeeded = parser.value(QStringLiteral("clean")) != QLatin1String("none");
    return filter;
}

StudySettings studySettings(const QCommandLineParser &parser, const QString &dataset,
                            const QString &out)
{
    requireStrategyName(parser);
    StudySettings settings;
    settings.dataset = QDir::cleanPath(QFileInfo(dataset).absoluteFilePath());
    settings.out = QDir::cleanPath(out);
    if (QFileInfo(dataset).canonicalFilePath() == QFileInfo(out).canonicalFilePath() &&
        QFileInfo::exists(dataset))
        throw UsageError(QStringLiteral("OUT is the dataset: the results need another folder"));
    settings.request = requestOf(parser);
    settings.conditions = parser.isSet(QStringLiteral("events"));
    settings.pages = !parser.isSet(QStringLiteral("no-pages"));
    settings.options = optionsOf(parser);
    settings.atlases = atlasesOf(parser);
    return settings;
}

ConnectomeRequest requestOf(const QJsonObject &options)
{
    QStringList words{QStringLiteral("cohort")};
    for (const QString &name : options.keys())
        words += options[name].isBool()
                     ? QStringLiteral("--") + name
                     : QStringLiteral("--%1=%2").arg(name, options[name].toString());
    QCommandLineParser parser;
    parser.addOptions(settingOptions());
    if (!parser.parse(words))
        throw UsageError(parser.errorText());
    return requestOf(parser);
}

StudyCommand studyCommand(const QStringList &arguments)
{
    static const QStringList own{QStringLiteral("--nprocs"), QStringLiteral("--participant-label"),
                                 QStringLiteral("--subjects-per-job"),
                                 QStringLiteral("--sbatch-options")};
    static const QStringList ownFlags{QStringLiteral("--keep-failed"),
                                      QStringLiteral("--no-collect"), QStringLiteral("--slurm"),
                                      QStringLiteral("--wait")};
    StudyCommand command;
    bool isValue = false;
    for (const QString &argument : arguments) {
        const bool isOwnValue = isValue;
        isValue = own.contains(argument);
        if (!isOwnValue && !isValue && !ownFlags.contains(argument) &&
            !own.contains(argument.section(QLatin1Char('='), 0, 0)))
            command.words += argument;
    }
    return command;
}

} // namespace corvane
