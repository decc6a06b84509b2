// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/figure.h"
#include "host/files/tsv_text.h"

namespace corvane
{

namespace
{

using Eigen::Index;

QByteArray textCell(const QString &text)
{
    return text.isEmpty() ? QByteArray("n/a") : text.toUtf8();
}

QByteArray countCell(const std::optional<qint64> &count)
{
    return count ? QByteArray::number(*count) : QByteArray("n/a");
}

QByteArray edgeTable(const FigureScene &scene, NetworkView kind)
{
    const DrawnEdges drawn = drawnEdges(scene.result, scene.shown, scene.settings);
    const int only = scene.settings.alone && kind != NetworkView::Matrix
                         ? nodeNumber(scene.result, scene.settings.node)
                         : -1;
    QByteArray table = line({"node_1", "node_2", "value"});
    for (const NetworkEdge &edge : drawn.edges)
        if (only < 0 || edge.from == only || edge.to == only)
            table +=
                line({scene.result.nodes[std::size_t(edge.from)].name.toUtf8(),
                      scene.result.nodes[std::size_t(edge.to)].name.toUtf8(), cell(edge.value)});
    return table;
}

QByteArray nodeTable(const FigureScene &scene)
{
    const DrawnEdges drawn = drawnEdges(scene.result, scene.shown, scene.settings);
    const NetworkMeasures measures = measuresOf(drawn.edges, scene.shown.isKnown);
    QByteArrayList head{"name", "network", "hemisphere", "x", "y", "z", "voxels", "coverage"};
    for (const QString &column : measures.columns)
        head += column.toUtf8();
    QByteArray table = line(head);
    for (const int number : scene.shown.order.nodes) {
        const ResultNode &node = scene.result.nodes[std::size_t(number)];
        const Eigen::Vector3d place = node.place.value_or(
            Eigen::Vector3d::Constant(std::numeric_limits<double>::quiet_NaN()));
        QByteArrayList cells{node.name.toUtf8(),        textCell(node.network),
                             textCell(node.hemisphere), cell(place.x()),
                             cell(place.y()),           cell(place.z()),
                             countCell(node.voxels),    cell(node.coverage)};
        for (Index m = 0; m < measures.columns.size(); ++m)
            cells +=
                cell(m < measures.nodes.cols() ? measures.nodes(number, m) : measures.whole[m]);
        table += line(cells);
    }
    return table;
}

QByteArray courseTable(const FigureScene &scene)
{
    const CoursePicture picture = coursePicture(scene.result, scene.shown, scene.settings);
    QByteArray table = line(
        {"volume", picture.names.value(0).toUtf8(), picture.names.value(1).toUtf8(), "left_out"});
    for (Index volume = 0; volume < picture.first.size(); ++volume)
        table +=
            line({QByteArray::number(int(volume)), cell(picture.first[volume]),
                  cell(picture.second[volume]), picture.leftOut[std::size_t(volume)] ? "1" : "0"});
    return table;
}

QByteArray curveTable(const FigureScene &scene)
{
    const MeasurePicture picture =
        measurePicture(scene.result, scene.shown, scene.curves, scene.settings);
    QByteArrayList head{"measure", "of"};
    for (const double density : picture.densities)
        head += "density_" + cell(density);
    QByteArray table = line(head << "area");
    const auto add = [&](const MeasureCurve &curve, const QByteArray &of,
                         const Eigen::ArrayXd &values, double area) {
        QByteArrayList cells{curve.name.toUtf8(), of};
        for (const double value : values)
            cells += cell(value);
        table += line(cells << cell(area));
    };
    for (const MeasureCurve &curve : picture.curves) {
        add(curve, "network", curve.network, curve.area);
        if (curve.node.size() > 0)
            add(curve, picture.node.toUtf8(), curve.node, curve.nodeArea);
    }
    return table;
}

} // namespace

QByteArray figureTable(const FigureScene &scene, NetworkView kind)
{
    switch (kind) {
    case NetworkView::Nodes:
        return nodeTable(scene);
    case NetworkView::Evidence:
        return courseTable(scene);
    case NetworkView::Measures:
        return curveTable(scene);
    default:
        return edgeTable(scene, kind);
    }
}

} // namespace corvane
