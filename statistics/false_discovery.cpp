// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/false_discovery.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "statistics/error.h"

namespace statistics
{

Eigen::ArrayXd benjamini_hochberg(const Eigen::ArrayXd &p)
{
    std::vector<Eigen::Index> order;
    for (Eigen::Index i = 0; i < p.size(); ++i) {
        if (std::isnan(p(i))) {
            continue;
        }
        if (p(i) < 0.0 || p(i) > 1.0) {
            throw Error("a p value lies between 0 and 1, number " + std::to_string(i) + " is " +
                        std::to_string(p(i)));
        }
        order.push_back(i);
    }
    std::sort(order.begin(), order.end(),
              [&p](Eigen::Index a, Eigen::Index b) { return p(a) < p(b); });
    Eigen::ArrayXd q = p;
    double least = 1.0;
    for (std::size_t rank = order.size(); rank > 0; --rank) {
        const Eigen::Index i = order[rank - 1];
        least =
            std::min(least, p(i) * static_cast<double>(order.size()) / static_cast<double>(rank));
        q(i) = least;
    }
    return q;
}

} // namespace statistics
