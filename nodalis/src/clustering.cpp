// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/clustering.h>

#include <algorithm>
#include <vector>

#include "graph.h"
#include "tiles.h"

namespace nodalis
{
namespace
{

using detail::Row;
using detail::tile_size;

/// Below this share of possible edges going through the edges is faster than the product.
constexpr double sparse = 0.2;

/// Rows of the product that are summed up in one go; more would leave the second cache.
constexpr int depth_at_once = 128;

/// The cube roots of the weights as strips of tile_size columns, one below the other.
class RootStrips
{
public:
    explicit RootStrips(const Eigen::MatrixXf &weights)
        : m_size(static_cast<int>(weights.rows())),
          m_rows(static_cast<std::size_t>(m_size) * static_cast<std::size_t>(width()), Row{})
    {
        for (int j = 0; j < width(); ++j) {
            const int first = j * tile_size;
            for (int i = 0; i < m_size; ++i) {
                // The column of a symmetric matrix is its row, and lies together in memory.
                detail::kernels().cube_roots(row(i, j).value, weights.col(i).data() + first,
                                             std::min(tile_size, m_size - first));
            }
        }
    }

    int size() const { return m_size; }
    int width() const { return detail::tiles_for(m_size); }
    /// Row i of strip j; the following rows come behind it.
    const Row &row(int i, int j) const { return m_rows[index(i, j)]; }

private:
    Row &row(int i, int j) { return m_rows[index(i, j)]; }
    std::size_t index(int i, int j) const
    {
        return static_cast<std::size_t>(j) * static_cast<std::size_t>(m_size) +
               static_cast<std::size_t>(i);
    }

    int m_size;
    std::vector<Row> m_rows;
};

/// Sum over j, h of r_ij r_ih r_jh for each i: the diagonal of the third power, taken as the sum
/// of R times its square, of which only half is computed as both are symmetric.
Eigen::ArrayXd triangles_by_product(const RootStrips &roots)
{
    const int n = roots.size();
    Eigen::ArrayXd sums = Eigen::ArrayXd::Zero(Eigen::Index{roots.width()} * tile_size);
    for (int first = 0; first < n; first += depth_at_once) {
        const int depth = std::min(depth_at_once, n - first);
        for (int j = 0; j < roots.width(); ++j) {
            for (int i = 0; i <= j; ++i) {
                detail::Tile square;
                detail::kernels().multiply(square.data(), roots.row(first, i).value,
                                           roots.row(first, j).value, depth);
                for (int a = 0; a < std::min(tile_size, n - i * tile_size); ++a) {
                    const Row &edges = roots.row(i * tile_size + a, j);
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

/// The edges to higher nodes, with the cube roots of their weights.
struct UpwardEdges {
    std::vector<int> nodes;
    std::vector<double> roots;
};

std::vector<UpwardEdges> upward_edges(const Eigen::MatrixXf &weights)
{
    const Eigen::Index n = weights.rows();
    std::vector<UpwardEdges> edges(n);
    std::vector<float> found;
    for (Eigen::Index i = 0; i < n; ++i) {
        found.clear();
        for (Eigen::Index j = i + 1; j < n; ++j) {
            if (weights(j, i) > 0.0F) {
                edges[i].nodes.push_back(static_cast<int>(j));
                found.push_back(weights(j, i));
            }
        }
        edges[i].roots.resize(found.size());
        detail::kernels().cube_roots(edges[i].roots.data(), found.data(),
                                     static_cast<int>(found.size()));
    }
    return edges;
}

/// The same sums, triangle by triangle i < j < h. Each counts twice, as j, h and h, j.
Eigen::ArrayXd triangles_by_edges(const std::vector<UpwardEdges> &edges)
{
    const Eigen::Index n = static_cast<Eigen::Index>(edges.size());
    Eigen::ArrayXd sums = Eigen::ArrayXd::Zero(n);
    Eigen::ArrayXd to_i = Eigen::ArrayXd::Zero(n);
    for (Eigen::Index i = 0; i < n; ++i) {
        const UpwardEdges &from_i = edges[i];
        for (std::size_t e = 0; e < from_i.nodes.size(); ++e) {
            to_i[from_i.nodes[e]] = from_i.roots[e];
        }
        for (std::size_t e = 0; e < from_i.nodes.size(); ++e) {
            const int j = from_i.nodes[e];
            const UpwardEdges &from_j = edges[j];
            double of_edge = 0.0;
            for (std::size_t f = 0; f < from_j.nodes.size(); ++f) {
                const int h = from_j.nodes[f];
                const double triangle = from_i.roots[e] * from_j.roots[f] * to_i[h];
                of_edge += triangle;
                sums[h] += triangle;
            }
            sums[i] += of_edge;
            sums[j] += of_edge;
        }
        for (const int node : from_i.nodes) {
            to_i[node] = 0.0;
        }
    }
    return 2.0 * sums;
}

} // namespace

inline namespace NODALIS_ABI
{

Eigen::ArrayXf clustering_coeff(const Eigen::MatrixXf &matrix)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "clustering_coeff");
    const double n = static_cast<double>(weights.rows());
    Eigen::ArrayXd degrees(weights.rows());
    for (Eigen::Index i = 0; i < weights.rows(); ++i) {
        degrees[i] = static_cast<double>((weights.col(i).array() > 0.0F).count());
    }
    const Eigen::ArrayXd triangles = degrees.sum() < sparse * n * n
                                         ? triangles_by_edges(upward_edges(weights))
                                         : triangles_by_product(RootStrips(weights));
    return (degrees > 1.0).select(triangles / (degrees * (degrees - 1.0)), 0.0).cast<float>();
}

} // namespace NODALIS_ABI
} // namespace nodalis
