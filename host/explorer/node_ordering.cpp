// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/node_ordering.h"

#include <algorithm>
#include <numeric>

namespace corvane
{

namespace
{

/// The texts by their first nodes; no text is the last one.
QStringList textsOf(const std::vector<ResultNode> &nodes, QString ResultNode::*field)
{
    QStringList texts;
    for (const ResultNode &node : nodes)
        if (!(node.*field).isEmpty() && !texts.contains(node.*field))
            texts += node.*field;
    return texts << QString();
}

/// The left side first, whatever comes first in the file.
QStringList sidesOf(const std::vector<ResultNode> &nodes)
{
    QStringList sides = textsOf(nodes, &ResultNode::hemisphere);
    const int left = sides.indexOf(QStringLiteral("Left"));
    if (left > 0)
        sides.move(left, 0);
    return sides;
}

OrderedNodes grouped(const std::vector<ResultNode> &nodes, QString ResultNode::*field,
                     const QStringList &texts, QString ResultNode::*inner,
                     const QStringList &innerTexts, const QString &without)
{
    OrderedNodes order;
    order.nodes.resize(nodes.size());
    std::iota(order.nodes.begin(), order.nodes.end(), 0);
    std::vector<std::pair<int, int>> ranks;
    for (const ResultNode &node : nodes)
        ranks.emplace_back(texts.indexOf(node.*field), innerTexts.indexOf(node.*inner));
    if (texts.size() == 1)
        return order;
    std::stable_sort(order.nodes.begin(), order.nodes.end(),
                     [&](int a, int b) { return ranks[std::size_t(a)] < ranks[std::size_t(b)]; });
    for (int place = 0; place < int(order.nodes.size()); ++place) {
        const QString &text = nodes[std::size_t(order.nodes[std::size_t(place)])].*field;
        const QString name = text.isEmpty() ? without : text;
        if (order.groups.empty() || order.groups.back().name != name)
            order.groups.push_back({name, place, 0});
        ++order.groups.back().count;
    }
    return order;
}

} // namespace

OrderedNodes orderedNodes(const std::vector<ResultNode> &nodes, NodeOrdering ordering,
                          const Eigen::MatrixXd &values)
{
    OrderedNodes order;
    switch (ordering) {
    case NodeOrdering::Network:
        return grouped(nodes, &ResultNode::network, textsOf(nodes, &ResultNode::network),
                       &ResultNode::hemisphere, sidesOf(nodes), QStringLiteral("no network"));
    case NodeOrdering::Hemisphere:
        return grouped(nodes, &ResultNode::hemisphere, sidesOf(nodes), &ResultNode::network,
                       textsOf(nodes, &ResultNode::network), QStringLiteral("no side"));
    case NodeOrdering::Similarity:
        order.nodes = similarityOrder(values);
        return order;
    case NodeOrdering::File:
        break;
    }
    order.nodes.resize(nodes.size());
    std::iota(order.nodes.begin(), order.nodes.end(), 0);
    return order;
}

} // namespace corvane
