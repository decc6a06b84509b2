// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/shown_network.h"

#include "host/explorer/edge_evidence.h"
#include "host/files/input_error.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace corvane
{

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

const ResultMatrix *matrixNamed(const NetworkResult &result, const QString &name)
{
    QStringList names;
    for (const ResultMatrix &matrix : result.matrices) {
        if (matrix.name == name)
            return &matrix;
        names += matrix.name;
    }
    throw InputError(result.folder, QStringLiteral("matrix"), quoted(name),
                     QStringLiteral("one of: %1").arg(names.join(QStringLiteral("; "))));
}

double largestOf(const Eigen::MatrixXd &values)
{
    double largest = 0;
    for (Eigen::Index to = 0; to < values.cols(); ++to)
        for (Eigen::Index from = 0; from < to; ++from)
            if (std::isfinite(values(from, to)))
                largest = std::max(largest, std::abs(values(from, to)));
    return largest;
}

double sharedLimit(const NetworkResult &result, const ShownMatrix &shown)
{
    double limit = 0;
    for (const ResultMatrix &matrix : result.matrices)
        if (matrix.measure == shown.matrix->measure && matrix.contrast == shown.matrix->contrast)
            limit = std::max(limit, shown.minus == nullptr
                                        ? matrix.limit
                                        : largestOf(matrix.values - shown.minus->values));
    return limit > 0 ? limit : 1;
}

/// Position in the picture of each node.
std::vector<int> placesOf(const OrderedNodes &order)
{
    std::vector<int> places(order.nodes.size());
    for (std::size_t place = 0; place < order.nodes.size(); ++place)
        places[std::size_t(order.nodes[place])] = int(place);
    return places;
}

DrawnEdges componentEdges(const NetworkResult &result, const ShownMatrix &shown,
                          const std::vector<int> &components)
{
    std::set<std::pair<int, int>> pairs;
    QStringList texts;
    for (const int number : components) {
        if (number < 1 || number > int(result.components.size()))
            throw InputError(result.folder, QStringLiteral("components"), QString::number(number),
                             QStringLiteral("a number from 1 to %1").arg(result.components.size()));
        const ResultComponent &component = result.components[std::size_t(number - 1)];
        pairs.insert(component.edges.begin(), component.edges.end());
        texts +=
            QStringLiteral("network %1 of %2 (%3, threshold %4, p %5 by extent, %6 by intensity)")
                .arg(QString::number(number),
                     result.contrasts[std::size_t(component.contrast)].name, component.side,
                     QString::number(component.threshold),
                     QString::number(component.pExtent, 'g', 3),
                     QString::number(component.pIntensity, 'g', 3));
    }
    DrawnEdges drawn;
    for (const auto &[from, to] : pairs)
        drawn.edges.push_back({from, to, shown.values(from, to)});
    std::stable_sort(drawn.edges.begin(), drawn.edges.end(),
                     [](const NetworkEdge &a, const NetworkEdge &b) {
                         return std::abs(a.value) > std::abs(b.value);
                     });
    drawn.text = texts.join(QStringLiteral("; ")) +
                 QStringLiteral(": %1 edges. It is the network that is significant, not its edges.")
                     .arg(drawn.edges.size());
    return drawn;
}

/// The node whose edges are shown alone; -1 for all.
int onlyNode(const NetworkResult &result, const ViewSettings &settings)
{
    return settings.alone ? nodeNumber(result, settings.node) : -1;
}

bool belongsTo(const NetworkEdge &edge, int only)
{
    return only < 0 || edge.from == only || edge.to == only;
}

/// Of one node for each volume of the file.
Eigen::ArrayXd courseOf(const ResultSeries &series, int node)
{
    Eigen::ArrayXd course = Eigen::ArrayXd::Constant(Eigen::Index(series.leftOut.size()), nan);
    for (std::size_t row = 0; row < series.volumes.size(); ++row)
        course[series.volumes[row]] = series.values(Eigen::Index(row), node);
    return course;
}

} // namespace

std::shared_ptr<const ShownMatrix> shownMatrix(const NetworkResult &result,
                                               const ViewSettings &settings)
{
    auto shown = std::make_shared<ShownMatrix>();
    shown->matrix =
        settings.matrix.isEmpty() ? &result.matrices.front() : matrixNamed(result, settings.matrix);
    if (!settings.minus.isEmpty())
        shown->minus = matrixNamed(result, settings.minus);
    shown->title = result.title + QStringLiteral(": ") + shown->matrix->name;
    shown->values = shown->matrix->values;
    if (shown->minus != nullptr) {
        shown->values -= shown->minus->values;
        shown->title += QStringLiteral(" - ") + shown->minus->name;
    }
    shown->limit = sharedLimit(result, *shown);
    shown->ranked = RankedEdges(shown->values, settings.threshold.signs);
    shown->isKnown = knownNodes(shown->values);
    shown->order = orderedNodes(result.nodes, settings.ordering, shown->values);
    return shown;
}

int nodeNumber(const NetworkResult &result, const QString &name)
{
    if (name.isEmpty())
        return -1;
    for (std::size_t node = 0; node < result.nodes.size(); ++node)
        if (result.nodes[node].name == name)
            return int(node);
    throw InputError(result.folder, QStringLiteral("node"), quoted(name),
                     QStringLiteral("a name such as %1").arg(quoted(result.nodes.front().name)));
}

DrawnEdges drawnEdges(const NetworkResult &result, const ShownMatrix &shown,
                      const ViewSettings &settings)
{
    DrawnEdges drawn;
    if (!settings.components.empty())
        drawn = componentEdges(result, shown, settings.components);
    else {
        drawn.edges = shown.ranked.kept(settings.threshold);
        drawn.text = shown.ranked.pairs() == 0
                         ? QStringLiteral("no edges, since this matrix has no values")
                         : drawnText(settings.threshold, drawn.edges.size(), shown.ranked.pairs());
    }
    return drawn;
}

QString drawnText(const NetworkResult &result, const DrawnEdges &drawn,
                  const ViewSettings &settings)
{
    const int only = onlyNode(result, settings);
    if (only < 0)
        return drawn.text;
    const auto count =
        std::count_if(drawn.edges.begin(), drawn.edges.end(),
                      [only](const NetworkEdge &edge) { return belongsTo(edge, only); });
    return drawn.text +
           QStringLiteral("; of these the %1 of %2 alone").arg(count).arg(settings.node);
}

NetworkPicture networkPicture(const NetworkResult &result, const ShownMatrix &shown,
                              const DrawnEdges &drawn, const ViewSettings &settings,
                              NetworkView kind)
{
    NetworkPicture picture;
    picture.title = shown.title;
    for (const int node : shown.order.nodes)
        picture.names += result.nodes[std::size_t(node)].name;
    if (kind == NetworkView::Matrix)
        picture.values = shown.values(shown.order.nodes, shown.order.nodes);
    picture.limit = shown.limit;
    picture.groups = shown.order.groups;
    const bool isMatrix = kind == NetworkView::Matrix;
    picture.foot =
        isMatrix ? QStringLiteral("Above the diagonal: %1. Below it all values.").arg(drawn.text)
                 : drawnText(result, drawn, settings);
    const std::vector<int> places = placesOf(shown.order);
    const int only = isMatrix ? -1 : onlyNode(result, settings);
    std::vector<RingEdge> edges;
    for (auto edge = drawn.edges.rbegin(); edge != drawn.edges.rend(); ++edge)
        if (belongsTo(*edge, only))
            edges.push_back(
                {places[std::size_t(edge->from)], places[std::size_t(edge->to)], edge->value});
    picture.edges = std::move(edges);
    return picture;
}

BrainPicture brainPicture(const NetworkResult &result, const ShownMatrix &shown,
                          const DrawnEdges &drawn, const ViewSettings &settings,
                          const std::array<QPainterPath, 3> &outlines)
{
    BrainPicture picture;
    picture.network = networkPicture(result, shown, drawn, settings, NetworkView::Brain);
    for (const int node : shown.order.nodes)
        picture.places.push_back(result.nodes[std::size_t(node)].place);
    picture.outlines = outlines;
    return picture;
}

CoursePicture coursePicture(const NetworkResult &result, const ShownMatrix &shown,
                            const ViewSettings &settings)
{
    CoursePicture picture;
    const int from = nodeNumber(result, settings.node);
    const int to = nodeNumber(result, settings.other);
    if (from < 0 || to < 0 || from == to) {
        picture.title = QStringLiteral("No edge is selected");
        picture.hint =
            QStringLiteral("Select an edge: a cell of the matrix, a row of the edges, or "
                           "two nodes, in ring and brain the second one with Shift, in "
                           "the table with Ctrl.");
        return picture;
    }
    const EdgeEvidence evidence = edgeEvidence(result, *shown.matrix, from, to);
    picture.title = evidence.title;
    picture.lines = evidence.lines;
    if (shown.minus != nullptr)
        picture.lines.insert(1, QStringLiteral("minus %1: %2; difference %3")
                                    .arg(shown.minus->name,
                                         QString::number(shown.minus->values(from, to), 'f', 3),
                                         QString::number(shown.values(from, to), 'f', 3)));
    picture.lines += result.ledger;
    picture.names =
        QStringList{result.nodes[std::size_t(from)].name, result.nodes[std::size_t(to)].name};
    if (!result.series) {
        picture.hint =
            result.contrasts.empty()
                ? QStringLiteral("The result has no time courses.")
                : QStringLiteral("A group has no time courses: open one of its subjects.");
        return picture;
    }
    picture.first = courseOf(*result.series, from);
    picture.second = courseOf(*result.series, to);
    picture.leftOut = result.series->leftOut;
    for (const ConditionBand &band : result.series->bands)
        picture.bands.push_back({band.name, band.first, band.last});
    return picture;
}

MeasurePicture measurePicture(const NetworkResult &result, const ShownMatrix &shown,
                              const MeasureCurves &curves, const ViewSettings &settings)
{
    MeasurePicture picture;
    picture.title = shown.title;
    picture.densities = curves.densities;
    const int node = nodeNumber(result, settings.node);
    picture.node = settings.node;
    if (settings.threshold.kind != ThresholdKind::Weight && settings.components.empty())
        picture.now = settings.threshold.value;
    picture.foot =
        QStringLiteral("The number in each title: the area below the curve / its range of "
                       "densities, %1 to %2 %")
            .arg(curves.densities.empty() ? 0 : 100 * curves.densities.front())
            .arg(curves.densities.empty() ? 0 : 100 * curves.densities.back());
    if (node >= 0)
        picture.foot += QStringLiteral("; in red node %1").arg(settings.node);
    if (curves.steps.empty())
        return picture;
    for (int m = 0; m < curves.steps.front().names.size(); ++m) {
        MeasureCurve curve;
        curve.name = curves.steps.front().names[m];
        curve.network = curveOf(curves, m, -1);
        curve.area = meanArea(curves.densities, curve.network);
        if (node >= 0 && m < curves.steps.front().nodes.cols()) {
            curve.node = curveOf(curves, m, node);
            curve.nodeArea = meanArea(curves.densities, curve.node);
        }
        picture.curves.push_back(std::move(curve));
    }
    return picture;
}

} // namespace corvane
