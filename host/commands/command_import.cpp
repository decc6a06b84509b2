// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/cleaning_options.h"
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/files/input_error.h"
#include "host/files/text_check.h"
#include "host/import/import_name.h"
#include "host/import/write_import.h"

namespace corvane
{

namespace
{

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
    return parser.isSet(QStringLiteral("clean"))
               ? std::make_shared<const CleaningRequest>(cleaningRequest(parser))
               : nullptr;
}

ImportRequest requestOf(const QCommandLineParser &parser)
{
    ImportRequest request;
    request.anatomy = requiredValue(parser, QStringLiteral("anatomy"));
    request.functional = requiredValue(parser, QStringLiteral("functional"));
    request.atlas = parser.value(QStringLiteral("atlas"));
    request.labels = parser.value(QStringLiteral("labels"));
    if (!request.labels.isEmpty() && request.atlas.isEmpty())
        throw UsageError(
            QStringLiteral("--labels names the labels of an --atlas, which is missing"));
    request.events = parser.value(QStringLiteral("events"));
    request.resolution = resolution(parser);
    request.repetitionTime = repetitionTime(parser);
    request.voiGrid = voiGrid(parser);
    request.cleaning = cleaningOf(parser);
    request.name = importName(parser, request.functional);
    request.folder = requiredValue(parser, QStringLiteral("out"));
    return request;
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Makes .vmr, .vtc, .voi and .prt files from an anatomy, a functional run, an atlas and a "
        "table of events."));
    const auto file = QStringLiteral("file");
    parser.addOptions({
        {QStringLiteral("anatomy"),
         QStringLiteral("The anatomical image: NIfTI or NRRD, also packed (.gz)."), file},
        {QStringLiteral("functional"),
         QStringLiteral("The functional run: 4-D NIfTI, also packed (.nii.gz)."), file},
        {QStringLiteral("atlas"), QStringLiteral("An image of labels; each becomes a VOI."), file},
        {QStringLiteral("labels"),
         QStringLiteral("The names of the labels: a TSV table with index and name, or a colour "
                        "table."),
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
        {QStringLiteral("name"),
         QStringLiteral("The name of the files, instead of that of the run."),
         QStringLiteral("name")},
        {QStringLiteral("out"), QStringLiteral("The folder for the files."),
         QStringLiteral("folder")},
    });
    addCleaningOptions(parser);
    if (!parseArguments(parser, arguments) || toldStrategies(parser))
        return Done;

    ImportReport report;
    try {
        TerminalProgress progress(QStringLiteral("importing the run"));
        report = writeImport(planImport(requestOf(parser)), progress.watch());
    } catch (const signals::UsageError &error) {
        throw UsageError(QString::fromUtf8(error.what()));
    }
    printReport(report);
    return Done;
}

} // namespace

Command importCommand()
{
    return {"import",
            R"(Corvane import --anatomy F --functional F [--atlas F [--labels F]] [--events F]
                 [--resolution N] [--tr SECONDS] [--voi-grid functional|anatomy]
                 [--confounds F] [--clean NAME|help] [--order NAME] [--high-pass HZ]
                 [--low-pass HZ] [--no-detrend] [--standardize UNIT] [--fd-threshold MM]
                 [--dvars-threshold X] [--min-segment N] [--censor F] [--dummy-scans N|auto]
                 [--components N] [--motion-order PACKAGE] [--min-volumes N]
                 [--min-seconds S] [--name NAME] --out DIR)",
            "Makes .vmr, .vtc, .voi and .prt files from NIfTI, NRRD and TSV files.", run};
}

} // namespace corvane
