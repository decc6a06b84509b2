// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/report/node_dvars.h"

#include "signals/dvars.h"

#include <limits>

namespace corvane
{

using Eigen::Index;

Eigen::ArrayXd nodeDvars(const Connectome &connectome, std::optional<double> scale)
{
    std::vector<Index> covered;
    for (std::size_t node = 0; node < connectome.nodes.size(); ++node)
        if (connectome.isCovered(node))
            covered.push_back(Index(node));
    const CleanedSeries &cleaned = connectome.cleaned;
    Eigen::ArrayXd values = signals::dvars(cleaned.values(Eigen::all, covered)).plain;
    if (scale) // what the library gives brings the median to 1000
        values *= *scale / 1000 * signals::dvars_scale(connectome.series(Eigen::all, covered));
    Eigen::ArrayXd all = Eigen::ArrayXd::Constant(connectome.series.rows(),
                                                  std::numeric_limits<double>::quiet_NaN());
    for (std::size_t row = 1; row < cleaned.volumes.size(); ++row)
        if (cleaned.volumes[row] == cleaned.volumes[row - 1] + 1)
            all[cleaned.volumes[row]] = values[Index(row)];
    return all;
}

} // namespace corvane
