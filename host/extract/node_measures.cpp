// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/extract/node_measures.h"

#include "engine/graph_measures.h"

#include <cmath>
#include <limits>

namespace corvane
{

NodeMeasures nodeMeasures(const Connectome &connectome, int threads, const ProgressWatch &watch)
{
    using Index = Eigen::Index;
    const NodeMatrix pearson = matrixOf(connectome.cleaned, connectome.matrices.front().part,
                                        Relationship::Pearson, false);
    std::vector<Index> nodes;
    for (Index node = 0; node < pearson.values.cols(); ++node)
        if (!std::isnan(pearson.values(node, node)))
            nodes.push_back(node);
    const Eigen::MatrixXf weights = pearson.values(nodes, nodes).cwiseAbs().cast<float>();
    const std::vector<GraphMeasure> measures = graphMeasuresOfTables();
    NodeMeasures result;
    result.values = Eigen::MatrixXd::Constant(pearson.values.cols(), Index(measures.size()),
                                              std::numeric_limits<double>::quiet_NaN());
    for (std::size_t m = 0; m < measures.size(); ++m) {
        result.columns += measures[m].column;
        result.names += QString::fromUtf8(measures[m].name);
        result.perNode += measures[m].perNode != nullptr ? 1 : 0;
        nodalis::Effort effort;
        effort.threads = threads;
        if (watch)
            effort.progress = [part = watchOfPart(watch, qint64(m), qint64(measures.size()))](
                                  double share) { return part(qint64(share * 1000), 1000); };
        result.values(nodes, Index(m)) = columnOf(measures[m], weights, effort).cast<double>();
    }
    return result;
}

} // namespace corvane
