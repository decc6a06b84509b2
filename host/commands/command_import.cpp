// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/counted.h"
#include "host/commands/cleaning_options.h"
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/commands/run_filter_options.h"
#include "host/derivatives/run_images.h"
#include "host/files/input_error.h"
#include "host/files/text_check.h"
#include "host/import/bids_import.h"
#include "host/import/import_name.h"

#include <QHash>

#include <cstdio>

namespace corvane
{

namespace
{

const QString bids = QStringLiteral("bids");
const QString subject = QStringLiteral("subject");
const QString spaceName = QStringLiteral("space-name");

std::optional<int> resolution(const QCommandLineParser &parser)
{
    const QString option = QStringLiteral("resolution");
    if (!parser.isSet(option))
        return std::nullopt;
    const std::optional<qint64> value = wholeNumber(parser.value(option));
    if (!value || *value < 1 || *value > 256)
        throw UsageError(QStringLiteral("--resolution: found %1, expected whole millimetres from 1 "
                                        "to 256")
                             .arg(quoted(parser.value(option))));
    return static_cast<int>(*value);
}

std::optional<double> repetitionTime(const QCommandLineParser &parser)
{
    const QString option = QStringLiteral("tr");
    if (!parser.isSet(option))
        return std::nullopt;
    const std::optional<double> value = finiteNumber(parser.value(option));
    if (!value || *value <= 0)
        throw UsageError(QStringLiteral("--tr: found %1, expected seconds above 0")
                             .arg(quoted(parser.value(option))));
    return value;
}

VoiGrid voiGrid(const QCommandLineParser &parser)
{
    const QString value = parser.value(QStringLiteral("voi-grid"));
    if (value == QLatin1String("functional"))
        return VoiGrid::Functional;
    if (value == QLatin1String("anatomy"))
        return VoiGrid::Anatomy;
    throw UsageError(
        QStringLiteral("--voi-grid: found %1, expected functional or anatomy").arg(quoted(value)));
}

QString importName(const QCommandLineParser &parser, const QString &functional)
{
    const QString option = QStringLiteral("name");
    QString name = parser.isSet(option) ? parser.value(option) : defaultImportName(functional);
    if (!isImportName(name))
        throw UsageError(QStringLiteral("--name: found %1, expected the name of a file without "
                                        "its ending")
                             .arg(quoted(name)));
    return name;
}

/// Null without --clean: then samples stay as they are.
std::shared_ptr<const CleaningRequest> cleaningOf(const QCommandLineParser &parser)
{
    requireClean(parser);
    if (!parser.isSet(QStringLiteral("clean")))
        return nullptr;
    return std::make_shared<const CleaningRequest>(parser.isSet(bids) ? cleaningSettings(parser)
                                                                      : cleaningRequest(parser));
}

/// All sources of VOIs in their order; each --labels belongs to the --atlas before it.
std::vector<VoiSource> voiSources(const QCommandLineParser &parser)
{
    std::vector<VoiSource> sources;
    QHash<QString, int> taken;
    for (const QString &option : parser.optionNames()) {
        const QString value = parser.values(option).value(taken[option]++);
        if (option == QLatin1String("atlas"))
            sources.push_back({VoiSource::Atlas, value});
        else if (option == QLatin1String("mask"))
            sources.push_back({VoiSource::Mask, value});
        else if (option == QLatin1String("spheres"))
            sources.push_back({VoiSource::Spheres, value});
        else if (option == QLatin1String("labels")) {
            if (sources.empty() || sources.back().kind != VoiSource::Atlas ||
                !sources.back().labels.isEmpty())
                throw UsageError(QStringLiteral("--labels names the labels of the --atlas before "
                                                "it, which is missing"));
            sources.back().labels = value;
        }
    }
    return sources;
}

/// What does not depend on the run.
ImportRequest commonRequest(const QCommandLineParser &parser)
{
    ImportRequest request;
    request.voiSources = voiSources(parser);
    request.resolution = resolution(parser);
    request.repetitionTime = repetitionTime(parser);
    request.voiGrid = voiGrid(parser);
    request.cleaning = cleaningOf(parser);
    request.folder = requiredValue(parser, QStringLiteral("out"));
    return request;
}

QString provenanceText(const QString &option, const QString &text)
{
    if (const std::optional<QString> fault = provenanceFault(text))
        throw UsageError(
            QStringLiteral("--%1: found %2, expected %3").arg(option, *fault, provenanceRule()));
    return text;
}

ImportRequest requestOf(const QCommandLineParser &parser)
{
    for (const QString &option : runFilterOptionNames())
        if (parser.isSet(option))
            throw UsageError(QStringLiteral("--%1 goes with --bids, which is missing").arg(option));
    ImportRequest request = commonRequest(parser);
    request.anatomy = parser.value(QStringLiteral("anatomy"));
    request.functional = requiredValue(parser, QStringLiteral("functional"));
    request.events = parser.value(QStringLiteral("events"));
    request.provenance = {provenanceText(subject, parser.value(subject)),
                          provenanceText(spaceName, parser.value(spaceName))};
    request.name = importName(parser, request.functional);
    return request;
}

void importOne(const QCommandLineParser &parser)
{
    TerminalProgress progress(QStringLiteral("importing the run"));
    const ImportPlan plan = planImport(requestOf(parser), progress.watch());
    printReport(writeImport(plan, progress.watch()));
}

/// What each run has by itself cannot be given for all.
void refuseFilesOfOneRun(const QCommandLineParser &parser)
{
    for (const char *option : {"anatomy", "functional", "events", "confounds", "censor", "name",
                               "subject", "space-name"})
        if (parser.isSet(QLatin1String(option)))
            throw UsageError(QStringLiteral("--%1 does not go with --bids, which finds the files "
                                            "of each run")
                                 .arg(QLatin1String(option)));
}

QString nameOf(const StudyRun &run)
{
    return run.prefix.isEmpty() ? participantFolder(run.participant) : run.prefix;
}

/// Imports a run of a folder. One that cannot be imported stops no other.
bool imported(const BidsImport &import)
{
    const auto tell = [&](const QString &reason) {
        std::fprintf(stderr, "Corvane import: %s\n",
                     printable(QStringLiteral("%1: %2").arg(nameOf(import.run), reason), 8192)
                         .toUtf8()
                         .constData());
        return false;
    };
    if (!import.reason.isEmpty())
        return tell(import.reason);
    try {
        TerminalProgress progress(QStringLiteral("importing ") + nameOf(import.run));
        printReport(importRun(import, progress.watch()));
        return true;
    } catch (const signals::UsageError &) {
        throw;
    } catch (const std::exception &error) {
        return tell(QString::fromUtf8(error.what()));
    }
}

int importFolder(const QCommandLineParser &parser)
{
    refuseFilesOfOneRun(parser);
    RunFilter filter = runFilterOf(parser);
    const ImportRequest common = commonRequest(parser);
    filter.confoundsNeeded =
        common.cleaning != nullptr && common.cleaning->strategy.strategy != "none";
    int done = 0;
    int failed = 0;
    for (const BidsImport &import : bidsImports(parser.value(bids), filter, common))
        ++(imported(import) ? done : failed);
    std::fprintf(stderr, "%s\n",
                 QStringLiteral("%1 imported, %2 not")
                     .arg(counted(qint64(done), "run"), QString::number(failed))
                     .toUtf8()
                     .constData());
    return done > 0 && failed == 0 ? Done : BadInput;
}

int run(const QStringList &given)
{
    const QStringList arguments = withLabelWords(given);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Makes .vmr, .vtc, .voi and .prt files from an anatomy, a functional run, an atlas and a "
        "table of events."));
    const auto file = QStringLiteral("file");
    parser.addOptions({
        {QStringLiteral("anatomy"),
         QStringLiteral(
             "The anatomical image: NIfTI or NRRD, also packed (.gz); without it the mean "
             "of the run."),
         file},
        {QStringLiteral("functional"),
         QStringLiteral("The functional run: 4-D NIfTI, also packed (.nii.gz)."), file},
        {bids,
         QStringLiteral("In place of single files the folder of a pipeline: all of its runs, each "
                        "with what belongs to it."),
         QStringLiteral("folder")},
        {QStringLiteral("atlas"),
         QStringLiteral("An image of labels; each becomes a VOI. May be given more than once."),
         file},
        {QStringLiteral("labels"),
         QStringLiteral(
             "The names of the labels of the atlas before it: a TSV table with index and "
             "name, or a colour table."),
         file},
        {QStringLiteral("mask"),
         QStringLiteral("An image whose values other than 0 become one VOI with the name of the "
                        "file. May be given more than once."),
         file},
        {QStringLiteral("spheres"),
         QStringLiteral(
             "A TSV table of places with x, y and z in millimetres, and radius and name: "
             "each becomes a VOI. May be given more than once."),
         file},
        {QStringLiteral("events"),
         QStringLiteral("The events of the run: a TSV table with onset, duration and "
                        "trial_type."),
         file},
        {QStringLiteral("resolution"),
         QStringLiteral("Whole millimetres between functional samples, instead of those nearest "
                        "to the voxel size."),
         QStringLiteral("N")},
        {QStringLiteral("tr"),
         QStringLiteral("The repetition time, instead of the one in the header."),
         QStringLiteral("seconds")},
        {QStringLiteral("voi-grid"),
         QStringLiteral("Voxels of the VOIs: one for each functional sample, or each of 1 mm, by "
                        "which a VOI's mean weighs its samples unequally and is less precise."),
         QStringLiteral("functional|anatomy"), QStringLiteral("functional")},
        {subject,
         QStringLiteral("Whose data they are, instead of what \"sub-\" in the names says."),
         QStringLiteral("name")},
        {spaceName,
         QStringLiteral(
             "The space that they lie in, instead of what \"space-\" in the names says."),
         QStringLiteral("name")},
        {QStringLiteral("name"),
         QStringLiteral("The name of the files, instead of that of the run."),
         QStringLiteral("name")},
        {QStringLiteral("out"), QStringLiteral("The folder for the files."),
         QStringLiteral("folder")},
    });
    addRunFilterOptions(parser);
    addCleaningOptions(parser);
    QStringList repeatable = runFilterOptionNames();
    repeatable += {QStringLiteral("atlas"), QStringLiteral("labels"), QStringLiteral("mask"),
                   QStringLiteral("spheres")};
    if (!parseArguments(parser, arguments, {}, repeatable) || toldStrategies(parser))
        return Done;
    try {
        if (parser.isSet(bids))
            return importFolder(parser);
        importOne(parser);
    } catch (const signals::UsageError &error) {
        throw UsageError(QString::fromUtf8(error.what()));
    }
    return Done;
}

} // namespace

Command importCommand()
{
    return {
        "import",
        R"(Corvane import --functional F [--anatomy F] [--atlas F [--labels F] ...] [--mask F ...]
                 [--spheres F ...] [--events F] [--subject NAME] [--space-name NAME]
                 [--resolution N] [--tr SECONDS] [--voi-grid functional|anatomy]
                 [--confounds F] [--clean NAME|help] [--order NAME] [--high-pass HZ]
                 [--low-pass HZ] [--no-detrend] [--standardize UNIT] [--fd-threshold MM]
                 [--dvars-threshold X] [--min-segment N] [--censor F] [--dummy-scans N|auto]
                 [--components N] [--motion-order PACKAGE] [--min-volumes N]
                 [--min-seconds S] [--name NAME] --out DIR
  Corvane import --bids DIR [--participant-label A B ...] [--session-id|--session-label A ...]
                 [--task-id|--task-label A ...] [--space A ...] [--bids-filter-file F]
                 [--atlas F ...] [--clean NAME] [OPTIONS] --out DIR)",
        "Makes .vmr, .vtc, .voi and .prt files from NIfTI, NRRD and TSV files, or of all runs "
        "that a pipeline left in a folder.",
        run};
}

} // namespace corvane
