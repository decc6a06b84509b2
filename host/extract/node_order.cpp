// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/extract/node_order.h"

#include <numeric>

namespace corvane
{

namespace
{

/// The networks by their first nodes; no network is the last one.
QStringList networksOf(const std::vector<Node> &nodes)
{
    QStringList networks;
    for (const Node &node : nodes)
        if (!node.network.isEmpty() && !networks.contains(node.network))
            networks += node.network;
    return networks << QString();
}

} // namespace

NodeOrder orderByNetwork(const std::vector<Node> &nodes)
{
    NodeOrder order;
    const QStringList networks = networksOf(nodes);
    if (networks.size() == 1) {
        order.nodes.resize(nodes.size());
        std::iota(order.nodes.begin(), order.nodes.end(), 0);
        return order;
    }
    for (const QString &network : networks) {
        const int first = int(order.nodes.size());
        for (std::size_t node = 0; node < nodes.size(); ++node)
            if (nodes[node].network == network)
                order.nodes.push_back(int(node));
        const int count = int(order.nodes.size()) - first;
        if (count > 0)
            order.groups.push_back(
                {network.isEmpty() ? QStringLiteral("no network") : network, first, count});
    }
    return order;
}

} // namespace corvane
