// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/counted.h"
#include "host/commands/anatomy_opener.h"
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/commands/measure_time.h"
#include "host/commands/option_values.h"
#include "host/compute/compute.h"
#include "host/compute/compute_files.h"
#include "host/files/file_kind.h"
#include "host/files/input_error.h"
#include "host/files/output_folder.h"
#include "host/pictures/compute_pictures.h"
#include "host/session/session.h"
#include "host/workbench/application.h"

#include <QCommandLineParser>
#include <QLoggingCategory>

#include <cstdio>

namespace corvane
{

namespace
{

/// What stands between commas, without the blanks around it; names with a comma stand in quotation
/// marks, as in tables.
QStringList commaParts(const QString &text)
{
    QStringList parts{QString()};
    bool isQuoted = false;
    for (const QChar sign : text) {
        isQuoted = isQuoted != (sign == QLatin1Char('"'));
        if (sign == QLatin1Char(',') && !isQuoted)
            parts += QString();
        else
            parts.last() += sign;
    }
    for (QString &part : parts) {
        part = part.trimmed();
        if (part.size() > 1 && part.startsWith(QLatin1Char('"')) && part.endsWith(QLatin1Char('"')))
            part =
                part.mid(1, part.size() - 2).replace(QStringLiteral("\"\""), QStringLiteral("\""));
    }
    return parts;
}

/// "all", a list of numbers, which choose the nodes, or one of names, whose rows are wanted.
void takeSeeds(ComputeRequest &request, const QString &text)
{
    if (text == QLatin1String("all"))
        return;
    QVector<int> numbers;
    QStringList names;
    const QStringList parts = commaParts(text);
    for (const QString &part : parts) {
        bool isNumber = false;
        const int number = part.toInt(&isNumber);
        if (isNumber && number >= 0)
            numbers.append(number);
        else if (!isNumber && !part.isEmpty())
            names.append(part);
    }
    if (numbers.size() == parts.size()) {
        request.seeds = numbers;
    } else if (names.size() == parts.size()) {
        request.seedNames = names;
        request.seedNames.removeDuplicates();
    } else {
        throw UsageError(QStringLiteral("--seeds: found \"%1\", expected all, or VOI numbers "
                                        "from 0, or names, with commas between them")
                             .arg(text));
    }
}

/// The file of an option that `Corvane import` makes, and not the image that it makes it from.
QString importedFile(const QCommandLineParser &parser, const QString &option)
{
    QString path = requiredValue(parser, option);
    if (fileKind(path) == FileKind::Nifti)
        throw UsageError(QStringLiteral("--%1: found %2, expected a .%1 file, which Corvane "
                                        "import makes from NIfTI files")
                             .arg(option, quoted(path)));
    return path;
}

/// A table of courses, or the files of a run.
void takeInputs(ComputeRequest &request, const QCommandLineParser &parser)
{
    if (!parser.isSet(QStringLiteral("timeseries"))) {
        request.anatomy = requiredValue(parser, QStringLiteral("anatomy"));
        request.vtc = importedFile(parser, QStringLiteral("vtc"));
        request.voi = importedFile(parser, QStringLiteral("voi"));
        return;
    }
    request.timeseries = requiredValue(parser, QStringLiteral("timeseries"));
    for (const char *const other : {"anatomy", "vtc", "voi", "allow-mismatch"})
        if (parser.isSet(QLatin1String(other)))
            throw UsageError(QStringLiteral("--%1 is for a run, not for --timeseries")
                                 .arg(QLatin1String(other)));
}

ComputeRequest requestOf(const QCommandLineParser &parser)
{
    ComputeRequest request;
    takeInputs(request, parser);
    request.prt = parser.value(QStringLiteral("prt"));
    request.useProtocol = parser.isSet(QStringLiteral("use-protocol"));
    takeSeeds(request, parser.value(QStringLiteral("seeds")));
    request.measure = chosenValue(parser, QStringLiteral("measure"), measureNames);
    request.matrixValues = chosenValue(parser, QStringLiteral("values"), matrixValuesNames);
    // The strongest connections are of no use as a tree where some of them are negative.
    request.computeMst =
        !parser.isSet(QStringLiteral("no-mst")) && request.matrixValues != MatrixValues::Signed;
    request.allowSingular = parser.isSet(QStringLiteral("allow-singular"));
    request.allowMismatch = parser.isSet(QStringLiteral("allow-mismatch"));
    request.plots = parser.isSet(QStringLiteral("plots"));
    request.names = parser.isSet(QStringLiteral("names"));
    return request;
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Computes the connectivity of one subject and writes its tables, and with --plots its "
        "pictures, into a folder."));
    const auto file = QStringLiteral("file");
    parser.addOptions({
        {QStringLiteral("anatomy"), QStringLiteral("The anatomical volume."), file},
        {QStringLiteral("vtc"), QStringLiteral("The volume time course."), file},
        {QStringLiteral("voi"), QStringLiteral("The volumes of interest."), file},
        {QStringLiteral("timeseries"),
         QStringLiteral("Time courses made elsewhere, instead of these three: a column for each "
                        "node below its name, a line for each volume."),
         file},
        {QStringLiteral("prt"),
         QStringLiteral("The protocol, instead of the one that the VTC names."), file},
        {QStringLiteral("use-protocol"),
         QStringLiteral("One matrix per protocol interval instead of one for the run.")},
        {QStringLiteral("seeds"),
         QStringLiteral("The VOIs that become nodes, in this order: all, or numbers from 0. Or "
                        "names: all become nodes, and the rows of these are a table of their own."),
         QStringLiteral("all|0,3,5|NAME,NAME"), QStringLiteral("all")},
        {QStringLiteral("measure"), QStringLiteral("The connectivity measure."),
         valueNames(measureNames).join(QLatin1Char('|')), QLatin1String(measureNames[0].name)},
        {QStringLiteral("values"), QStringLiteral("Which signs stay."),
         valueNames(matrixValuesNames).join(QLatin1Char('|')),
         QLatin1String(matrixValuesNames[0].name)},
        {QStringLiteral("no-mst"), QStringLiteral("No minimum spanning trees.")},
        {QStringLiteral("allow-singular"),
         QStringLiteral("A partial correlation also where a node is empty, constant or not finite: "
                        "all of it is then 0.")},
        {QStringLiteral("allow-mismatch"),
         QStringLiteral("A run or VOIs also of another subject or space than the anatomy.")},
        {QStringLiteral("names"),
         QStringLiteral("The names of the nodes in matrices and time courses, these with a column "
                        "for each node.")},
        {QStringLiteral("plots"),
         QStringLiteral("Pictures too: ring, matrix and overview of each slice that is no event, "
                        "and a line plot per measure.")},
        {QStringLiteral("out"), QStringLiteral("The folder for the tables and pictures."),
         QStringLiteral("folder")},
    });
    if (!parseArguments(parser, arguments))
        return Done;

    // The plugin's debug lines are for a log file, not for the command line.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    const ComputeRequest request = requestOf(parser);
    const QString folder = requiredValue(parser, QStringLiteral("out"));
    Session session(anatomyOpener());
    TerminalSteps steps;
    ComputeResult result = compute(session, request, steps.watch());
    steps.end();
    for (const ComputedSlice &slice : result.slices)
        tellTimeOfLocalEfficiency(slice.connectivity, 0);
    OutputFolder files(folder, arguments.front());
    QStringList pictures;
    if (request.plots) {
        result.warnings += picturesLeftOut(request, result);
        pictures =
            writeComputePictures(files, request, result, steps.begin(QStringLiteral("drawing")));
        static_cast<Application *>(QCoreApplication::instance())->throwCaught();
    }
    writeComputeTables(files, request, result, pictures, steps.watch());
    steps.end();
    const QStringList kept = files.commit();
    for (const QString &warning : result.warnings + kept)
        std::fprintf(stderr, "%s\n", warning.toUtf8().constData());
    std::printf("%s: %s, %s, %s\n", folder.toUtf8().constData(),
                counted(qint64(result.nodes.size()), "node").toUtf8().constData(),
                counted(result.timeseries.cols(), "volume").toUtf8().constData(),
                counted(qint64(result.slices.size()), "matrix", "matrices").toUtf8().constData());
    return Done;
}

} // namespace

Command computeCommand()
{
    return {"compute",
            R"(Corvane compute --anatomy F --vtc F --voi F | --timeseries F [--prt F]
                  [--use-protocol] [--seeds all|0,3,5|NAME,NAME] [--names]
                  [--measure correlation|partial-correlation]
                  [--values absolute|positive|negative|signed] [--no-mst]
                  [--allow-singular] [--allow-mismatch] [--plots] --out DIR)",
            "Computes connectivity, spanning trees and graph measures; with --plots, draws them.",
            run, makePlotsApplication};
}

} // namespace corvane
