// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/counted.h"
#include "host/commands/cleaning_options.h"
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/commands/connectome_options.h"
#include "host/commands/measure_time.h"
#include "host/extract/connectome_files.h"
#include "host/extract/connectome_pictures.h"
#include "host/files/output_file.h"
#include "host/files/progress.h"
#include "host/report/run_page.h"
#include "signals/ledger.h"

#include <cstdio>

namespace corvane
{

namespace
{

ConnectomeRequest requestOf(const QCommandLineParser &parser)
{
    ConnectomeRequest request = connectomeSettings(parser);
    request.run = requiredValue(parser, QStringLiteral("bold"));
    request.atlas = requiredValue(parser, QStringLiteral("atlas"));
    request.labels = parser.value(QStringLiteral("labels"));
    request.mask = parser.value(QStringLiteral("mask"));
    request.events = parser.value(QStringLiteral("events"));
    request.cleaning = cleaningRequest(parser);
    return request;
}

ConnectomeNames namesFor(const QCommandLineParser &parser, const ConnectomeRequest &request)
{
    ConnectomeNames names = namesOf(request);
    const QString option = QStringLiteral("atlas-name");
    if (parser.isSet(option)) {
        names.atlas = parser.value(option);
        requireAtlasName(names.atlas);
    }
    names.datasetRoot = parser.value(QStringLiteral("dataset-root"));
    return names;
}

void addOptions(QCommandLineParser &parser)
{
    const auto file = QStringLiteral("file");
    const auto folder = QStringLiteral("folder");
    parser.addOptions({
        {QStringLiteral("bold"),
         QStringLiteral("The run: 4-D NIfTI, also packed, as a pipeline registered it."), file},
        {QStringLiteral("atlas"),
         QStringLiteral("An image of labels in the space of the run; each becomes a node."), file},
        {QStringLiteral("labels"),
         QStringLiteral("The names of the labels: a TSV table with index and name, or a colour "
                        "table."),
         file},
        {QStringLiteral("mask"), QStringLiteral("Voxels where this image is 0 do not count."),
         file},
    });
    parser.addOptions(connectomeSettingOptions());
    parser.addOptions({
        {QStringLiteral("events"),
         QStringLiteral("Also a matrix for each condition of this TSV table with onset, duration "
                        "and trial_type."),
         file},
        {QStringLiteral("plots"),
         QStringLiteral("Pictures too: matrix and ring of each matrix of the whole run.")},
        {QStringLiteral("page"),
         QStringLiteral("A page of HTML with the ledger, pictures and tables of the run.")},
        {QStringLiteral("atlas-name"),
         QStringLiteral("What the atlas is called in the names of files."), QStringLiteral("name")},
        {QStringLiteral("dataset-root"),
         QStringLiteral("The folder of the dataset; inputs in it are named by their place there."),
         folder},
        {QStringLiteral("out"), QStringLiteral("The folder for the tables and pictures."), folder},
    });
    addCleaningOptions(parser);
}

void report(const QString &folder, const Connectome &connectome)
{
    for (const QString &note : connectome.notes)
        std::fprintf(stderr, "%s\n", note.toUtf8().constData());
    std::printf(
        "%s: %s, %s\n%s\n", folder.toUtf8().constData(),
        counted(qint64(connectome.nodes.size()), "node").toUtf8().constData(),
        counted(qint64(connectome.matrices.size()), "matrix", "matrices").toUtf8().constData(),
        signals::text(connectome.cleaning.design.ledger).c_str());
}

void makeFiles(const QCommandLineParser &parser)
{
    const ConnectomeRequest request = requestOf(parser);
    const ConnectomeNames names = namesFor(parser, request);
    const QString path = requiredValue(parser, QStringLiteral("out"));
    Connectome connectome;
    OutputFolder folder(path, QStringLiteral("connectome ") + names.stem());
    TerminalSteps steps;
    steps.begin(QStringLiteral("preparing"));
    connectome = makeConnectome(request, steps.watch());
    steps.end();
    tellTimeOfLocalEfficiency(connectome.matrices.front().matrix.values.cwiseAbs().cast<float>(),
                              0);
    writeConnectomeTables(folder, request, names, connectome, 0, steps.watch());
    if (parser.isSet(QStringLiteral("plots"))) {
        steps.begin(QStringLiteral("drawing"));
        writeConnectomePictures(folder, names, connectome);
    }
    if (parser.isSet(QStringLiteral("page"))) {
        steps.begin(QStringLiteral("writing the page"));
        writeFile(folder.path(runPageName(names)), runPage(request, names, connectome));
    }
    connectome.notes += folder.commit();
    steps.end();
    report(path, connectome);
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Makes connectivity matrices of a functional run and an atlas: cleaned by a pipeline's "
        "confounds, with the coverage of each node and a ledger of what the cleaning cost."));
    addOptions(parser);
    if (!parseArguments(parser, arguments) || toldStrategies(parser))
        return Done;
    try {
        makeFiles(parser);
    } catch (const signals::UsageError &error) {
        throw UsageError(QString::fromUtf8(error.what()));
    }
    return Done;
}

} // namespace

Command connectomeCommand()
{
    return {"connectome",
            R"(Corvane connectome --bold F --atlas F [--labels F] [--mask F] [--min-coverage X]
                  [--tr SECONDS] [--dvars-scale N] [--confounds F] [--clean NAME|help]
                  [--order NAME] [--high-pass HZ] [--low-pass HZ] [--no-detrend] [--standardize UNIT]
                  [--fd-threshold MM] [--dvars-threshold X] [--min-segment N] [--censor F]
                  [--dummy-scans N|auto] [--components N] [--motion-order PACKAGE]
                  [--min-volumes N] [--min-seconds S] [--measure NAME,NAME]
                  [--shrinkage ledoit-wolf] [--window S --step S [--taper NAME]]
                  [--events F [--delay S] [--per-interval] [--centre-intervals]] [--plots]
                  [--page] [--atlas-name NAME] [--dataset-root DIR] --out DIR)",
            "Makes matrices of a run and an atlas, cleaned by a pipeline's confounds.", run,
            makePlotsApplication};
}

} // namespace corvane
