// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/counted.h"
#include "host/commands/cleaning_options.h"
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/commands/option_values.h"
#include "host/derivatives/bids_names.h"
#include "host/extract/connectome_files.h"
#include "host/extract/connectome_pictures.h"
#include "host/files/input_error.h"
#include "host/files/output_file.h"
#include "host/files/progress.h"
#include "host/report/run_page.h"
#include "signals/ledger.h"

#include <cstdio>

namespace corvane
{

namespace
{

QStringList relationshipNames()
{
    QStringList names;
    for (const RelationshipFacts &facts : relationshipFacts)
        names += QLatin1String(facts.option);
    return names;
}

/// The measures of a list with commas, each once.
std::vector<Relationship> relationships(const QString &text)
{
    std::vector<Relationship> chosen;
    for (const QString &name : text.split(QLatin1Char(','))) {
        const auto found = std::find_if(
            std::begin(relationshipFacts), std::end(relationshipFacts),
            [&](const RelationshipFacts &facts) { return name == QLatin1String(facts.option); });
        if (found == std::end(relationshipFacts))
            throw UsageError(
                QStringLiteral("--measure: found %1, expected one or more of: %2")
                    .arg(quoted(name), relationshipNames().join(QStringLiteral(", "))));
        if (std::find(chosen.begin(), chosen.end(), found->relationship) == chosen.end())
            chosen.push_back(found->relationship);
    }
    return chosen;
}

bool wantsShrinkage(const QCommandLineParser &parser,
                    const std::vector<Relationship> &relationships)
{
    const QString option = QStringLiteral("shrinkage");
    if (!parser.isSet(option))
        return false;
    if (parser.value(option) != QLatin1String("ledoit-wolf"))
        throw UsageError(QStringLiteral("--shrinkage: found %1, expected ledoit-wolf")
                             .arg(quoted(parser.value(option))));
    if (std::none_of(relationships.begin(), relationships.end(), [](Relationship relationship) {
            return factsOf(relationship).takesShrinkage;
        }))
        throw UsageError(QStringLiteral("--shrinkage is for partial, partial-tessera and "
                                        "covariance, none of which is asked for"));
    return true;
}

void requireTogether(const QCommandLineParser &parser, const char *option, const char *needed)
{
    if (parser.isSet(QLatin1String(option)) && !parser.isSet(QLatin1String(needed)))
        throw UsageError(QStringLiteral("--%1 goes with --%2, which is missing")
                             .arg(QLatin1String(option), QLatin1String(needed)));
}

/// A window's weights make no ranks and no shrinkage, and the plugin's measure takes none.
void requireUntapered(const PartsRequest &parts, const ConnectomeRequest &request)
{
    if (parts.taper == signals::Taper::none)
        return;
    for (const Relationship relationship : request.relationships)
        if (relationship == Relationship::Spearman ||
            relationship == Relationship::PartialTessera || request.shrink)
            throw UsageError(QStringLiteral("--taper goes with pearson, fisherz, partial and "
                                            "covariance, and without --shrinkage"));
}

PartsRequest partsRequest(const QCommandLineParser &parser)
{
    requireTogether(parser, "step", "window");
    requireTogether(parser, "window", "step");
    requireTogether(parser, "taper", "window");
    for (const char *option : {"delay", "per-interval", "centre-intervals"})
        requireTogether(parser, option, "events");
    PartsRequest parts;
    parts.window = numberValue(parser, "window", 0);
    parts.step = numberValue(parser, "step", 0).value_or(0);
    parts.taper = chosenValue(parser, QStringLiteral("taper"), taperNames);
    parts.delay = *numberValue(parser, "delay", 0);
    parts.perInterval = parser.isSet(QStringLiteral("per-interval"));
    parts.centreIntervals = parser.isSet(QStringLiteral("centre-intervals"));
    return parts;
}

std::optional<double> repetitionTime(const QCommandLineParser &parser)
{
    const std::optional<double> seconds = numberValue(parser, "tr", 0);
    if (seconds && *seconds <= 0)
        throw UsageError(QStringLiteral("--tr: found %1, expected seconds above 0")
                             .arg(quoted(parser.value(QStringLiteral("tr")))));
    return seconds;
}

ConnectomeRequest requestOf(const QCommandLineParser &parser)
{
    ConnectomeRequest request;
    request.run = requiredValue(parser, QStringLiteral("bold"));
    request.atlas = requiredValue(parser, QStringLiteral("atlas"));
    request.labels = parser.value(QStringLiteral("labels"));
    request.mask = parser.value(QStringLiteral("mask"));
    request.events = parser.value(QStringLiteral("events"));
    request.repetitionTime = repetitionTime(parser);
    request.minCoverage = *numberValue(parser, "min-coverage", 0);
    if (request.minCoverage > 1)
        throw UsageError(
            QStringLiteral("--min-coverage: found %1, expected 0 to 1").arg(request.minCoverage));
    request.cleaning = cleaningRequest(parser);
    request.relationships = relationships(parser.value(QStringLiteral("measure")));
    request.shrink = wantsShrinkage(parser, request.relationships);
    request.parts = partsRequest(parser);
    requireUntapered(request.parts, request);
    return request;
}

ConnectomeNames namesFor(const QCommandLineParser &parser, const ConnectomeRequest &request)
{
    ConnectomeNames names = namesOf(request);
    const QString option = QStringLiteral("atlas-name");
    if (parser.isSet(option)) {
        names.atlas = parser.value(option);
        if (names.atlas.isEmpty() || bidsLabel(names.atlas) != names.atlas)
            throw UsageError(QStringLiteral("--atlas-name: found %1, expected letters and digits")
                                 .arg(quoted(names.atlas)));
    }
    names.datasetRoot = parser.value(QStringLiteral("dataset-root"));
    return names;
}

void addOptions(QCommandLineParser &parser)
{
    const auto file = QStringLiteral("file");
    const auto folder = QStringLiteral("folder");
    const auto seconds = QStringLiteral("seconds");
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
        {QStringLiteral("min-coverage"),
         QStringLiteral("Nodes with a smaller share of their voxels have no values."),
         QStringLiteral("share"), QStringLiteral("0.5")},
        {QStringLiteral("tr"),
         QStringLiteral("The repetition time, instead of the one in the header."), seconds},
        {QStringLiteral("measure"),
         QStringLiteral("One or more, with commas: %1.")
             .arg(relationshipNames().join(QStringLiteral(", "))),
         QStringLiteral("names"), QStringLiteral("pearson")},
        {QStringLiteral("shrinkage"),
         QStringLiteral("Shrinks the covariance of partial, partial-tessera and covariance: "
                        "ledoit-wolf."),
         QStringLiteral("name")},
        {QStringLiteral("window"), QStringLiteral("Also a matrix for each window of this length."),
         seconds},
        {QStringLiteral("step"), QStringLiteral("From window to window."), seconds},
        {QStringLiteral("taper"),
         QStringLiteral("How volumes of a window weigh: none, hann or gauss."),
         QStringLiteral("name"), QStringLiteral("none")},
        {QStringLiteral("events"),
         QStringLiteral("Also a matrix for each condition of this TSV table with onset, duration "
                        "and trial_type."),
         file},
        {QStringLiteral("delay"), QStringLiteral("Conditions begin and end later by this."),
         seconds, QStringLiteral("0")},
        {QStringLiteral("per-interval"),
         QStringLiteral("Also a matrix for each interval of a condition.")},
        {QStringLiteral("centre-intervals"),
         QStringLiteral("Each interval on its own mean, instead of one for the condition.")},
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
    {
        TerminalProgress progress(QStringLiteral("reading the run"));
        connectome = makeConnectome(request, progress.watch());
    }
    writeConnectomeTables(folder, request, names, connectome);
    if (parser.isSet(QStringLiteral("plots")))
        writeConnectomePictures(folder, names, connectome);
    if (parser.isSet(QStringLiteral("page")))
        writeFile(folder.path(runPageName(names)), runPage(request, names, connectome));
    connectome.notes += folder.commit();
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
                  [--tr SECONDS] [--confounds F] [--clean NAME|help] [--order NAME]
                  [--high-pass HZ] [--low-pass HZ] [--no-detrend] [--standardize UNIT]
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
