// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/compute/node_measures.h"

#include <nodalis/nodalis.h>

namespace corvane
{

namespace
{

Eigen::ArrayXf globalEfficiency(const Eigen::MatrixXf &weights)
{
    return Eigen::ArrayXf::Constant(weights.rows(), nodalis::global_efficiency(weights));
}

} // namespace

const std::vector<NodeMeasure> &nodeMeasures()
{
    static const std::vector<NodeMeasure> measures = {
        {"clustering_coeff", nodalis::clustering_coeff},
        {"local_efficiency", nodalis::local_efficiency},
        {"degree", nodalis::degree},
        {"eigenvector_centrality", nodalis::eigenvector_centrality},
        {"strength", nodalis::strength},
        {"nodal_global_efficiency", nodalis::nodal_global_efficiency},
        {"global_efficiency", globalEfficiency, true},
    };
    return measures;
}

} // namespace corvane
