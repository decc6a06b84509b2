// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/edge_threshold.h"

#include <QLocale>
#include <algorithm>
#include <cmath>
#include <nodalis/nodalis.h>

namespace corvane
{

namespace
{

std::size_t nodesWithValues(const Eigen::MatrixXd &values)
{
    std::size_t count = 0;
    for (Eigen::Index node = 0; node < values.cols(); ++node)
        for (Eigen::Index other = 0; other < values.rows(); ++other)
            if (other != node && std::isfinite(values(other, node))) {
                ++count;
                break;
            }
    return count;
}

QString shareText(double share)
{
    return QString::number(100 * share, 'g', 4) + QStringLiteral(" %");
}

} // namespace

RankedEdges::RankedEdges(const Eigen::MatrixXd &values, EdgeSigns signs)
    : m_nodes(nodesWithValues(values))
{
    for (Eigen::Index to = 1; to < values.cols(); ++to)
        for (Eigen::Index from = 0; from < to; ++from) {
            const double value = values(from, to);
            if (std::isfinite(value) && value != 0 && (signs != EdgeSigns::Positive || value > 0) &&
                (signs != EdgeSigns::Negative || value < 0))
                m_edges.push_back({int(from), int(to), value});
        }
    std::sort(m_edges.begin(), m_edges.end(), [](const NetworkEdge &a, const NetworkEdge &b) {
        const double first = std::abs(a.value);
        const double second = std::abs(b.value);
        if (first != second)
            return first > second;
        return a.from != b.from ? a.from < b.from : a.to < b.to;
    });
    const Eigen::MatrixXi tree = std::get<1>(
        nodalis::mst::minimum_spanning_tree(weightsOf(m_edges, int(values.cols())), false, false));
    for (const NetworkEdge &edge : m_edges) {
        m_isInTree.push_back(tree(edge.from, edge.to) != 0);
        m_treeEdges += m_isInTree.back() ? 1 : 0;
    }
}

std::size_t RankedEdges::countOf(double density) const
{
    return std::size_t(std::llround(std::clamp(density, 0.0, 1.0) * double(pairs())));
}

std::vector<NetworkEdge> RankedEdges::kept(const EdgeThreshold &threshold) const
{
    if (threshold.kind == ThresholdKind::Weight) {
        const auto end =
            std::partition_point(m_edges.begin(), m_edges.end(), [&](const NetworkEdge &edge) {
                return std::abs(edge.value) >= threshold.value;
            });
        return {m_edges.begin(), end};
    }
    const std::size_t most = countOf(threshold.value);
    if (threshold.kind == ThresholdKind::Density)
        return {m_edges.begin(), m_edges.begin() + std::ptrdiff_t(std::min(most, m_edges.size()))};
    std::size_t others = most > m_treeEdges ? most - m_treeEdges : 0;
    std::vector<NetworkEdge> kept;
    for (std::size_t n = 0; n < m_edges.size(); ++n) {
        if (!m_isInTree[n] && others == 0)
            continue;
        others -= m_isInTree[n] ? 0 : 1;
        kept.push_back(m_edges[n]);
    }
    return kept;
}

QString groupedNumber(std::size_t number)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(qulonglong(number));
}

QString drawnText(const EdgeThreshold &threshold, std::size_t drawn, std::size_t pairs)
{
    const QString signs = threshold.signs == EdgeSigns::Both ? QString()
                          : threshold.signs == EdgeSigns::Positive
                              ? QStringLiteral(", positive ones only")
                              : QStringLiteral(", negative ones only");
    const QString all = groupedNumber(pairs);
    const QString count = groupedNumber(drawn);
    switch (threshold.kind) {
    case ThresholdKind::Weight:
        return QStringLiteral("edges of at least %1 of %2%3, %4")
            .arg(QString::number(threshold.value, 'g', 4), all, signs, count);
    case ThresholdKind::TreeAndDensity:
        return QStringLiteral("spanning tree and strongest edges to %1 of %2%3, %4")
            .arg(shareText(threshold.value), all, signs, count);
    case ThresholdKind::Density:
        break;
    }
    return QStringLiteral("strongest %1 of %2 edges%3, %4")
        .arg(shareText(threshold.value), all, signs, count);
}

Eigen::MatrixXf weightsOf(const std::vector<NetworkEdge> &edges, int nodes)
{
    Eigen::MatrixXf weights = Eigen::MatrixXf::Zero(nodes, nodes);
    for (const NetworkEdge &edge : edges)
        weights(edge.from, edge.to) = weights(edge.to, edge.from) = float(std::abs(edge.value));
    return weights;
}

} // namespace corvane
