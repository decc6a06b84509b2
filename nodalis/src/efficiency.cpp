// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/efficiency.h>

#include "graph.h"
#include "shortest_paths.h"

namespace nodalis
{
namespace
{

/// Sum over j != i of 1/d_ij for each node i.
Eigen::ArrayXd inverse_lengths(const detail::PathLengths &paths)
{
    using detail::tile_size;
    Eigen::ArrayXd sums = Eigen::ArrayXd::Zero(Eigen::Index{paths.width()} * tile_size);
    for (int j = 0; j < paths.width(); ++j) {
        for (int i = 0; i <= j; ++i) {
            const detail::Tile &tile = paths.tile(i, j);
            auto rows = sums.segment<tile_size>(Eigen::Index{i} * tile_size);
            auto columns = sums.segment<tile_size>(Eigen::Index{j} * tile_size);
            for (int a = 0; a < tile_size; ++a) {
                for (int b = i == j ? a + 1 : 0; b < tile_size; ++b) {
                    const double inverse = 1.0 / tile.row[a].value[b];
                    rows[a] += inverse;
                    columns[b] += inverse;
                }
            }
        }
    }
    return sums.head(paths.size());
}

/// Nodal global efficiency in double precision.
Eigen::ArrayXd nodal_efficiency(const Eigen::MatrixXf &weights, const Effort &effort)
{
    const Eigen::Index n = weights.rows();
    if (n < 2) {
        return Eigen::ArrayXd::Zero(n);
    }
    detail::PathLengths paths(weights,
                              [](float w) { return w > 0.0F ? 1.0 / double{w} : detail::no_path; });
    paths.relax_all(effort);
    return inverse_lengths(paths) / static_cast<double>(n - 1);
}

} // namespace

inline namespace NODALIS_ABI
{

float global_efficiency(const Eigen::MatrixXf &matrix)
{
    return global_efficiency(matrix, {});
}

float global_efficiency(const Eigen::MatrixXf &matrix, const Effort &effort)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "global_efficiency");
    return weights.rows() == 0 ? 0.0F
                               : static_cast<float>(nodal_efficiency(weights, effort).mean());
}

Eigen::ArrayXf nodal_global_efficiency(const Eigen::MatrixXf &matrix)
{
    return nodal_global_efficiency(matrix, {});
}

Eigen::ArrayXf nodal_global_efficiency(const Eigen::MatrixXf &matrix, const Effort &effort)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "nodal_global_efficiency");
    return nodal_efficiency(weights, effort).cast<float>();
}

} // namespace NODALIS_ABI
} // namespace nodalis
