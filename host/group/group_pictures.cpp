// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/group_pictures.h"

#include "dataset/counted.h"
#include "host/files/output_file.h"
#include "host/painting/matrix_painting.h"
#include "host/painting/ring_painting.h"
#include "host/painting/scatter_painting.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane
{

namespace
{

using statistics::Index;

constexpr QSize networkSize(760, 760);
constexpr QSize cloudSize(640, 480);
constexpr double sharpness = 2;

using PaintNetwork = void (*)(QPainter &, const QRectF &, const NetworkPicture &);

QString statisticName(const ContrastResult &result)
{
    return result.hypothesis.is_f() ? QStringLiteral("F") : QStringLiteral("t");
}

/// A matrix of some edges' statistics; the others have no value.
NetworkPicture networkOf(const GroupData &data, const ContrastResult &result,
                         const std::vector<Index> &edges)
{
    NetworkPicture picture;
    for (const std::string &name : data.nodes)
        picture.names += QString::fromStdString(name);
    const auto nodes = static_cast<Index>(data.nodes.size());
    const auto pairs = statistics::node_pairs(static_cast<int>(nodes));
    const Eigen::ArrayXd &values = result.test.model.statistic;
    picture.values.setConstant(nodes, nodes, std::numeric_limits<double>::quiet_NaN());
    for (const Index edge : edges) {
        const statistics::NodePair &pair = pairs[edge];
        picture.values(pair.first, pair.second) = values(edge);
        picture.values(pair.second, pair.first) = values(edge);
    }
    picture.limit = std::max(values.abs().maxCoeff(), 1e-9);
    return picture;
}

GroupPicture painted(const NetworkPicture &network, PaintNetwork paint, const QString &file,
                     const QString &caption)
{
    return {file, caption,
            paintedPicture(networkSize, sharpness, [&](QPainter &painter, const QRectF &area) {
                paint(painter, area, network);
            })};
}

std::vector<Index> allEdges(const ContrastResult &result)
{
    std::vector<Index> edges;
    for (Index edge = 0; edge < result.test.model.statistic.size(); ++edge)
        edges.push_back(edge);
    return edges;
}

std::vector<Index> significantEdges(const ContrastResult &result)
{
    std::vector<Index> edges;
    for (Index edge = 0; edge < result.test.p_fwe.size(); ++edge)
        if (result.test.p_fwe(edge) < significantP)
            edges.push_back(edge);
    return edges;
}

GroupPicture networkPicture(const GroupData &data, const ContrastResult &result,
                            const statistics::NetworkResult &network, const QString &file)
{
    const auto components = significantNetworks(network);
    std::vector<Index> edges;
    for (const statistics::Component *component : components)
        edges.insert(edges.end(), component->edges.begin(), component->edges.end());
    const QString title =
        QStringLiteral("%1: %2 at %3 > %4")
            .arg(QString::fromStdString(result.hypothesis.name),
                 counted(qint64(components.size()), "network"), statisticName(result))
            .arg(network.threshold);
    NetworkPicture picture = networkOf(data, result, edges);
    picture.title = title;
    return painted(picture, paintRing, file,
                   QStringLiteral("%1 with p < %2 by extent or intensity, all edges of them. It is "
                                  "the network that is significant, not any of its edges.")
                       .arg(title)
                       .arg(significantP));
}

} // namespace

std::vector<const statistics::Component *>
significantNetworks(const statistics::NetworkResult &network)
{
    std::vector<const statistics::Component *> components;
    for (const statistics::Component &component : network.components)
        if (std::min(component.p_extent, component.p_intensity) < significantP)
            components.push_back(&component);
    return components;
}

std::vector<GroupPicture> contrastPictures(const GroupData &data, const ContrastResult &result,
                                           int number)
{
    const QString name = QString::fromStdString(result.hypothesis.name);
    const QString stem = QStringLiteral("contrast_%1_").arg(number);
    const QString statistic = statisticName(result);
    std::vector<GroupPicture> pictures;

    NetworkPicture all = networkOf(data, result, allEdges(result));
    all.title = QStringLiteral("%1: %2").arg(name, statistic);
    pictures.push_back(painted(all, paintMatrix, stem + statistic + QStringLiteral(".png"),
                               QStringLiteral("%1 of all edges for %2").arg(statistic, name)));

    const std::vector<Index> edges = significantEdges(result);
    NetworkPicture strong = networkOf(data, result, edges);
    strong.title = QStringLiteral("%1: %2").arg(name, counted(qint64(edges.size()), "edge"));
    pictures.push_back(
        painted(strong, paintRing, stem + QStringLiteral("edges.png"),
                QStringLiteral("%1 with p_fwe < %2 (max-T) for %3, in the colours of their %4")
                    .arg(counted(qint64(edges.size()), "edge"))
                    .arg(significantP)
                    .arg(name, statistic)));

    int threshold = 0;
    for (const statistics::NetworkResult &network : result.test.networks)
        pictures.push_back(networkPicture(
            data, result, network, stem + QStringLiteral("networks_%1.png").arg(++threshold)));
    return pictures;
}

std::vector<GroupPicture> motionPictures(const GroupData &data,
                                         const std::vector<QcFcResult> &results)
{
    if (data.motion.distances.size() == 0)
        return {};
    double highest = 0;
    for (const QcFcResult &result : results)
        for (const double r : result.qcfc.r)
            highest = std::isnan(r) ? highest : std::max(highest, std::abs(r));
    std::vector<GroupPicture> pictures;
    for (const QcFcResult &result : results) {
        const QString which = QLatin1String(result.data);
        ScatterPicture cloud;
        cloud.title = QStringLiteral("QC-FC, ") + which;
        cloud.x = QStringLiteral("distance of the nodes in mm");
        cloud.y = QStringLiteral("r of motion and edge");
        cloud.foot = QStringLiteral("p < 0.05 at %1 % of the edges, median |r| %2, Spearman with "
                                    "distance %3")
                         .arg(100 * result.qcfc.share_p_below_05, 0, 'f', 1)
                         .arg(result.qcfc.median_absolute_r, 0, 'f', 3)
                         .arg(result.qcfc.distance_dependence, 0, 'f', 3);
        cloud.xs = data.motion.distances;
        cloud.ys = result.qcfc.r;
        cloud.hasLine = true;
        cloud.low = -1.05 * highest;
        cloud.high = 1.05 * highest;
        const PagePicture picture =
            paintedPicture(cloudSize, sharpness, [&](QPainter &painter, const QRectF &area) {
                paintScatter(painter, area, cloud);
            });
        pictures.push_back({QStringLiteral("qcfc_%1.png").arg(which),
                            QStringLiteral("The correlation of motion and edge against the "
                                           "distance of its nodes, ") +
                                which,
                            picture});
    }
    return pictures;
}

void writeGroupPictures(const OutputFolder &folder, const GroupData &data,
                        const GroupResults &results)
{
    const auto write = [&](const std::vector<GroupPicture> &pictures) {
        for (const GroupPicture &picture : pictures)
            writeFile(folder.path(picture.file), picture.picture.png);
    };
    int number = 0;
    for (const ContrastResult &contrast : results.contrasts)
        write(contrastPictures(data, contrast, ++number));
    write(motionPictures(data, results.qcfc));
}

} // namespace corvane
