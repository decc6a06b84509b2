// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/clustering.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "graph.h"
#include "tiles.h"

namespace nodalis
{
namespace
{

using detail::Row;
using detail::tile_size;

/// Rows of the product that are summed up in one go; more would leave the second cache.
constexpr int depth_at_once = 128;

/// The cube roots of the weights as strips of tile_size columns, one below the other.
struct RootStrips {
    int size = 0;
    std::vector<Row> rows;

    int width() const { return detail::tiles_for(size); }
    const Row *strip(int j) const
    {
        return rows.data() + static_cast<std::size_t>(j) * static_cast<std::size_t>(size);
    }
    Row *strip(int j)
    {
        return rows.data() + static_cast<std::size_t>(j) * static_cast<std::size_t>(size);
    }
    double &at(int i, int j) { return strip(j / tile_size)[i].value[j % tile_size]; }
};

RootStrips roots_of(const Eigen::MatrixXf &weights)
{
    RootStrips roots;
    roots.size = static_cast<int>(weights.rows());
    roots.rows.resize(static_cast<std::size_t>(roots.size) * roots.width());
    for (int j = 0; j < roots.size; ++j) {
        for (int i = 0; i < j; ++i) {
            if (weights(i, j) > 0.0F) {
                roots.at(i, j) = roots.at(j, i) = std::cbrt(double{weights(i, j)});
            }
        }
    }
    return roots;
}

/// Sum over j, h of r_ij r_ih r_jh for each i: the diagonal of the third power, taken as the sum
/// of R times its square, of which only half is computed as both are symmetric.
Eigen::ArrayXd triangles(const RootStrips &roots)
{
    const int n = roots.size;
    Eigen::ArrayXd sums = Eigen::ArrayXd::Zero(Eigen::Index{roots.width()} * tile_size);
    for (int first = 0; first < n; first += depth_at_once) {
        const int depth = std::min(depth_at_once, n - first);
        for (int j = 0; j < roots.width(); ++j) {
            for (int i = 0; i <= j; ++i) {
                detail::Tile square;
                detail::kernels().multiply(square.data(), roots.strip(i)[first].value,
                                           roots.strip(j)[first].value, depth);
                for (int a = 0; a < std::min(tile_size, n - i * tile_size); ++a) {
                    const Row &edges = roots.strip(j)[i * tile_size + a];
                    double row = 0.0;
                    for (int b = i == j ? a + 1 : 0; b < tile_size; ++b) {
                        const double term = edges.value[b] * square.row[a].value[b];
                        row += term;
                        sums[j * tile_size + b] += term;
                    }
                    sums[i * tile_size + a] += row;
                }
            }
        }
    }
    return sums.head(n);
}

} // namespace

inline namespace NODALIS_ABI
{

Eigen::ArrayXf clustering_coeff(const Eigen::MatrixXf &matrix)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "clustering_coeff");
    const Eigen::ArrayXd degrees = (weights.array() > 0.0F).cast<double>().colwise().sum();
    return (degrees > 1.0)
        .select(triangles(roots_of(weights)) / (degrees * (degrees - 1.0)), 0.0)
        .cast<float>();
}

} // namespace NODALIS_ABI
} // namespace nodalis
