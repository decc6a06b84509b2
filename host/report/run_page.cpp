// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/report/run_page.h"

#include "dataset/counted.h"
#include "host/extract/connectome_sidecar.h"
#include "host/extract/node_measures.h"
#include "host/extract/node_order.h"
#include "host/files/input_error.h"
#include "host/report/confidence_table.h"
#include "host/report/ledger_table.h"
#include "host/report/run_pictures.h"

#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

QString shortNumber(double number)
{
    return std::isfinite(number) ? QString::number(number, 'g', 4) : QStringLiteral("n/a");
}

QString percent(double share)
{
    return std::isfinite(share) ? QStringLiteral("%1 %").arg(100 * share, 0, 'f', 0)
                                : QStringLiteral("n/a");
}

QString measureOf(const PartMatrix &matrix)
{
    return QLatin1String(factsOf(matrix.relationship).measure);
}

int uncoveredNodes(const Connectome &connectome)
{
    int count = 0;
    for (std::size_t node = 0; node < connectome.nodes.size(); ++node)
        count += connectome.isCovered(node) ? 0 : 1;
    return count;
}

/// The notes with files named as everywhere on the page, since a page may travel.
QStringList notesOf(const ConnectomeRequest &request, const ConnectomeNames &names,
                    const Connectome &connectome)
{
    QStringList notes = connectome.notes;
    for (const QString &path :
         {request.run, request.atlas, request.labels, request.mask, request.cleaning.confounds,
          request.cleaning.censor, request.events})
        if (!path.isEmpty())
            notes.replaceInStrings(printable(path, 4096), sourceText(path, names.datasetRoot));
    return notes;
}

// ---- the page from its top down

void addFact(HtmlPage &page, const QString &number, const QString &what)
{
    page.open("div", "fact");
    page.element("strong", number);
    page.element("span", what);
    page.close();
}

void addHead(HtmlPage &page, const ConnectomeRequest &request, const ConnectomeNames &names,
             const Connectome &connectome)
{
    const QJsonObject ledger = ledgerJson(connectome.cleaning.design.ledger);
    const int nodes = int(connectome.nodes.size());
    page.element("h1", names.prefix);
    page.element("p",
                 QStringLiteral("Connectivity with the atlas %1. Cleaned: %2.")
                     .arg(names.atlas, cleaningText(request.cleaning, connectome.cleaning)),
                 "lead");
    page.contents({{QStringLiteral("inputs"), QStringLiteral("What went in")},
                   {QStringLiteral("ledger"), QStringLiteral("Ledger")},
                   {QStringLiteral("motion"), QStringLiteral("Motion and signal")},
                   {QStringLiteral("design"), QStringLiteral("Design")},
                   {QStringLiteral("coverage"), QStringLiteral("Coverage")},
                   {QStringLiteral("connectivity"), QStringLiteral("Connectivity")},
                   {QStringLiteral("confidence"), QStringLiteral("Confidence")},
                   {QStringLiteral("nodes"), QStringLiteral("Nodes")}});
    page.open("div", "facts");
    addFact(page,
            QStringLiteral("%1 of %2")
                .arg(ledgerNumber(ledger, "Kept"), ledgerNumber(ledger, "Volumes")),
            QStringLiteral("volumes kept"));
    addFact(page, ledgerNumber(ledger, "DegreesOfFreedom"),
            QStringLiteral("degrees of freedom left"));
    addFact(page, QStringLiteral("%1 s").arg(ledgerNumber(ledger, "SecondsKept")),
            QStringLiteral("of signal"));
    addFact(page, ledgerNumber(ledger, "MeanFDBefore") + QStringLiteral(" mm"),
            QStringLiteral("mean FD; of the kept volumes %1 mm")
                .arg(ledgerNumber(ledger, "MeanFDAfter")));
    addFact(page, QStringLiteral("%1 of %2").arg(nodes - uncoveredNodes(connectome)).arg(nodes),
            QStringLiteral("nodes with enough coverage"));
    page.close();
    const QStringList notes = notesOf(request, names, connectome);
    if (!notes.isEmpty()) {
        page.element("h3", QStringLiteral("Look at this first"));
        page.list(notes, "notes");
    }
}

void addInputs(HtmlPage &page, const ConnectomeRequest &request, const ConnectomeNames &names,
               const Connectome &connectome)
{
    page.section(QStringLiteral("What went in"), QStringLiteral("inputs"));
    const auto file = [&](const QString &path) {
        return path.isEmpty() ? QStringLiteral("none") : sourceText(path, names.datasetRoot);
    };
    const signals::Selection &selection = connectome.cleaning.selection;
    const RunGrid &grid = connectome.grid;
    page.openTable({QStringLiteral("What"), QStringLiteral("Which")});
    const auto row = [&](const char *what, const QString &which) {
        page.row({{QString::fromLatin1(what), "name"}, {which, "wide"}});
    };
    row("Run", file(request.run));
    row("Its grid", QStringLiteral("%1 x %2 x %3 voxels, %4, every %5 s")
                        .arg(grid.size[0])
                        .arg(grid.size[1])
                        .arg(grid.size[2])
                        .arg(counted(qint64(connectome.series.rows()), "volume"),
                             shortNumber(connectome.repetitionTime)));
    row("Atlas", file(request.atlas));
    row("Names of its labels", file(request.labels));
    row("Mask", file(request.mask));
    row("Confounds", file(request.cleaning.confounds));
    if (!request.cleaning.censor.isEmpty())
        row("Volumes to leave out", file(request.cleaning.censor));
    if (!request.events.isEmpty())
        row("Events", file(request.events));
    row("Cleaning", cleaningText(request.cleaning, connectome.cleaning));
    QStringList regressors;
    for (const std::string &name : selection.regressors.names)
        regressors += QString::fromStdString(name);
    row("Regressors", regressors.isEmpty() ? QStringLiteral("none")
                                           : QStringLiteral("%1: %2")
                                                 .arg(regressors.size())
                                                 .arg(regressors.join(QStringLiteral(", "))));
    row("Least coverage of a node", percent(request.minCoverage));
    row("Program", QStringLiteral("Corvane ") + QStringLiteral(TESSERA_VERSION));
    page.closeTable();
}

void addLedger(HtmlPage &page, const Connectome &connectome)
{
    page.section(QStringLiteral("Ledger: what the cleaning cost"), QStringLiteral("ledger"));
    addLedgerTable(page, ledgerJson(connectome.cleaning.design.ledger));
}

/// What the cleaning left of the variance of a usual node.
double varianceLeft(const Connectome &connectome)
{
    std::vector<double> shares;
    for (std::size_t node = 0; node < connectome.nodes.size(); ++node) {
        const auto column = Eigen::Index(node);
        const Eigen::VectorXd before = connectome.uncleaned.values.col(column);
        const Eigen::VectorXd after = connectome.cleaned.values.col(column);
        const double whole = (before.array() - before.mean()).square().sum();
        const double left = (after.array() - after.mean()).square().sum();
        if (whole > 0 && std::isfinite(left))
            shares.push_back(left / whole);
    }
    if (shares.empty())
        return std::nan("");
    const auto middle = shares.begin() + long(shares.size() / 2);
    std::nth_element(shares.begin(), middle, shares.end());
    return *middle;
}

void addMotion(HtmlPage &page, const ConnectomeRequest &request, const Connectome &connectome)
{
    page.section(QStringLiteral("Motion and signal over the run"), QStringLiteral("motion"));
    const PagePicture motion = motionPicture(connectome, request.dvarsScale);
    page.picture(
        motion.png, motion.size,
        QStringLiteral("Curves over the volumes of the run: framewise displacement and DVARS."),
        QStringLiteral(
            "Volumes from left to right, counted from 0. Orange bands were left out, the dashed "
            "line is the threshold; arrows stand for values beyond the scale. DVARS of the table "
            "is "
            "that of all voxels before cleaning; that of the nodes is the root mean square of the "
            "cleaned series' changes from volume to volume, where both volumes are kept. Good: FD "
            "low and flat, and in the DVARS of the nodes no spikes where FD has them."));
    const PagePicture carpet = carpetPicture(connectome);
    const bool scaled = request.cleaning.settings.standardize != signals::Standardize::none;
    page.picture(
        carpet.png, carpet.size,
        QStringLiteral("The series of all nodes as rows of grey values, before and after "
                       "cleaning."),
        QStringLiteral(
            "A row for each node%1, each in standard deviations of its own kept volumes: black is "
            "-2, white +2. Pale blue rows have too little coverage.%2 Good: after cleaning no "
            "columns that run through all nodes, no bands beside the volumes left out, and no slow "
            "drift from left to right.")
            .arg(orderByNetwork(connectome.nodes).groups.empty()
                     ? QStringLiteral(" in the order of their labels")
                     : QStringLiteral(" ordered by network"),
                 scaled
                     ? QString()
                     : QStringLiteral(" The cleaning left %1 of the variance of the median node.")
                           .arg(percent(varianceLeft(connectome)))));
}

void addDesign(HtmlPage &page, const Connectome &connectome)
{
    page.section(QStringLiteral("Design"), QStringLiteral("design"));
    const signals::Design &design = connectome.cleaning.design;
    if (design.columns.cols() == 0) {
        page.paragraph(QStringLiteral("Nothing was regressed out."));
        return;
    }
    const PagePicture picture = designPicture(connectome);
    page.picture(
        picture.png, picture.size,
        QStringLiteral("The design matrix: a column for each of %1 regressors, a row for each kept "
                       "volume.")
            .arg(design.columns.cols()),
        QStringLiteral(
            "What was taken off each series by least squares: a column for each of %1 "
            "regressors, a row for each of %2 kept volumes from the top. In each column black and "
            "white are minus and plus its largest value. The rank is %3. Good: many more rows than "
            "columns, and no column that is one spike.")
            .arg(design.columns.cols())
            .arg(design.columns.rows())
            .arg(design.ledger.rank));
}

void addCoverage(HtmlPage &page, const ConnectomeRequest &request, const Connectome &connectome)
{
    page.section(QStringLiteral("Coverage of the atlas"), QStringLiteral("coverage"));
    const int uncovered = uncoveredNodes(connectome);
    page.paragraph(uncovered == 0
                       ? QStringLiteral("Every node has enough voxels in the run.")
                       : QStringLiteral("%1 of %2 have a coverage below %3 and no values.")
                             .arg(uncovered)
                             .arg(counted(qint64(connectome.nodes.size()), "node"),
                                  percent(request.minCoverage)));
    const PagePicture picture = coveragePicture(connectome, request.minCoverage);
    page.picture(picture.png, picture.size,
                 QStringLiteral(
                     "The atlas from three sides, coloured by the coverage of its nodes, and a bar "
                     "for each node."),
                 QStringLiteral(
                     "Coverage is the share of a node's voxels that the run holds and that count. "
                     "Each place has the colour of the node with the least coverage along the "
                     "line of sight, from violet (0 %) over green to yellow (100 %); red nodes are "
                     "below the limit of %1, the dashed line. Good: all yellow, and the shape of "
                     "a brain. Red at the bottom or the top is a field of view that cuts the "
                     "brain; red at the front below is signal lost near the sinuses.")
                     .arg(percent(request.minCoverage)));
}

QString wholeRunMeasures(const Connectome &connectome)
{
    QStringList names;
    for (const PartMatrix &matrix : connectome.matrices)
        if (matrix.part.entity.isEmpty())
            names += measureOf(matrix);
    return names.join(QStringLiteral(", "));
}

void addConnectivity(HtmlPage &page, const ConnectomeNames &names, const Connectome &connectome)
{
    page.section(QStringLiteral("Connectivity"), QStringLiteral("connectivity"));
    const PartMatrix &first = connectome.matrices.front();
    page.open("div", "pair");
    const PagePicture matrix = matrixPicture(connectome, first);
    const bool networks = !orderByNetwork(connectome.nodes).groups.empty();
    page.picture(
        matrix.png, matrix.size,
        QStringLiteral("The matrix of all pairs of nodes: %1.").arg(measureOf(first)),
        QStringLiteral("%1 of each pair of nodes over %2 kept volumes%3; grey has no value. Good: "
                       "blocks of red along the diagonal, where nodes of one network are, and "
                       "equal regions of the two sides alike. A matrix that is red all over holds "
                       "something that all nodes share, mostly motion, breathing or the global "
                       "signal.")
            .arg(measureOf(first))
            .arg(first.part.rows.size())
            .arg(networks ? QStringLiteral(", nodes ordered by network") : QString()));
    const PagePicture ring = ringPicture(connectome, first);
    page.picture(ring.png, ring.size,
                 QStringLiteral("The strongest pairs of nodes as arcs in a ring."),
                 QStringLiteral("The same as a ring: the strongest pairs as arcs in the colours of "
                                "their values. Good: arcs inside networks and between the same "
                                "regions of both sides."));
    page.close();
    const Part &whole = first.part;
    const Eigen::MatrixXd before =
        matrixOf(connectome.uncleaned, whole, Relationship::Pearson, false).values;
    const Eigen::MatrixXd after =
        matrixOf(connectome.cleaned, whole, Relationship::Pearson, false).values;
    const PagePicture histogram = correlationsPicture(before, after);
    page.picture(histogram.png, histogram.size,
                 QStringLiteral("How often which correlation comes, before and after cleaning."),
                 QStringLiteral("Correlations of all %1 pairs before and after cleaning, over the "
                                "same volumes. Good: after cleaning the middle lies near 0 or a "
                                "little above, with a tail to the right. A middle far above 0 is "
                                "shared by all nodes and hardly of neurons.")
                     .arg(pairValues(after).size()));
    page.paragraph(
        QStringLiteral("Matrices of the whole run: %1. The numbers are in %2 and the files "
                       "beside it.")
            .arg(wholeRunMeasures(connectome),
                 matrixStem(names, first) + QStringLiteral("_relmat.tsv")));
}

/// Windows and conditions, where there are any.
void addParts(HtmlPage &page, const Connectome &connectome)
{
    const bool hasParts =
        std::any_of(connectome.matrices.begin(), connectome.matrices.end(),
                    [](const PartMatrix &matrix) { return !matrix.part.entity.isEmpty(); });
    if (!hasParts)
        return;
    page.element("h3", QStringLiteral("Windows and conditions"));
    page.openTable({QStringLiteral("Part"), QStringLiteral("Measure"),
                    QStringLiteral("Kept volumes"), QStringLiteral("Degrees of freedom, about"),
                    QStringLiteral("Matrix")});
    for (const PartMatrix &matrix : connectome.matrices) {
        const Part &part = matrix.part;
        if (part.entity.isEmpty())
            continue;
        const double degrees =
            connectome.cleaned.degrees * part.effective / double(connectome.cleaned.volumes.size());
        page.row(
            {{part.condition.isEmpty() ? part.entity
                                       : QStringLiteral("%1 (%2)").arg(part.entity, part.condition),
              "name"},
             {measureOf(matrix)},
             {QString::number(part.rows.size()), "number"},
             {shortNumber(degrees), "number"},
             {part.filled ? QStringLiteral("made") : QStringLiteral("n/a: too few volumes")}});
    }
    page.closeTable();
}

/// Which columns of texts the table of nodes has.
struct NodeTexts {
    bool networks = false;
    bool sides = false;

    explicit NodeTexts(const std::vector<Node> &nodes)
    {
        for (const Node &node : nodes) {
            networks = networks || !node.network.isEmpty();
            sides = sides || !node.hemisphere.isEmpty();
        }
    }
};

std::vector<PageCell> nodeCells(const Connectome &connectome, const NodeMeasures &measures,
                                const NodeTexts &texts, int number)
{
    const auto n = std::size_t(number);
    const Node &node = connectome.nodes[n];
    std::vector<PageCell> cells{{QString::number(node.label), "number"}, {node.name, "name"}};
    if (texts.networks)
        cells.emplace_back(node.network);
    if (texts.sides)
        cells.emplace_back(node.hemisphere);
    cells.emplace_back(QString::number(connectome.usedVoxels[n]), "number");
    cells.emplace_back(percent(connectome.coverage[n]),
                       connectome.isCovered(n) ? "number" : "number failed");
    for (int column = 0; column < measures.perNode; ++column)
        cells.emplace_back(shortNumber(measures.values(number, column)), "number");
    return cells;
}

/// Measures that have one value for the network, from any node that has values.
QString networkMeasures(const Connectome &connectome, const NodeMeasures &measures)
{
    int node = 0;
    while (!connectome.isCovered(std::size_t(node)))
        ++node;
    QStringList parts;
    for (int column = measures.perNode; column < measures.columns.size(); ++column)
        parts += QStringLiteral("%1 %2").arg(measures.names[column].toLower(),
                                             shortNumber(measures.values(node, column)));
    return parts.join(QStringLiteral(", "));
}

void addNodes(HtmlPage &page, const Connectome &connectome)
{
    page.section(QStringLiteral("Nodes"), QStringLiteral("nodes"));
    const NodeMeasures measures = nodeMeasures(connectome);
    page.paragraph(
        QStringLiteral("Graph measures are those of the network of Pearson correlations without "
                       "their signs, all pairs kept. They have values for nodes with enough "
                       "coverage. Of the whole network: %1.")
            .arg(networkMeasures(connectome, measures)));
    const NodeTexts texts(connectome.nodes);
    QStringList columns{QStringLiteral("Label"), QStringLiteral("Node")};
    if (texts.networks)
        columns += QStringLiteral("Network");
    if (texts.sides)
        columns += QStringLiteral("Side");
    const int textColumns = columns.size();
    columns += {QStringLiteral("Voxels used"), QStringLiteral("Coverage")};
    columns += measures.names.mid(0, measures.perNode);
    page.openDetails(counted(qint64(connectome.nodes.size()), "node"),
                     connectome.nodes.size() <= 60);
    page.openTable(columns, textColumns);
    for (const int number : orderByNetwork(connectome.nodes).nodes)
        page.row(nodeCells(connectome, measures, texts, number));
    page.closeTable();
    page.close();
}

} // namespace

QByteArray runPage(const ConnectomeRequest &request, const ConnectomeNames &names,
                   const Connectome &connectome)
{
    HtmlPage page(names.stem());
    addHead(page, request, names, connectome);
    addInputs(page, request, names, connectome);
    addLedger(page, connectome);
    addMotion(page, request, connectome);
    addDesign(page, connectome);
    addCoverage(page, request, connectome);
    addConnectivity(page, names, connectome);
    addParts(page, connectome);
    addConfidence(page, connectome);
    addNodes(page, connectome);
    return page.finish();
}

QString runPageName(const ConnectomeNames &names)
{
    return names.file(QStringLiteral("report.html"));
}

} // namespace corvane
