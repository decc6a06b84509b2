// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <limits>
#include <vector>

#include <Eigen/Core>
#include <nodalis/effort.h>

#include "tiles.h"

namespace nodalis::detail
{

constexpr double no_path = std::numeric_limits<double>::infinity();

/// Lengths of paths between all nodes: no_path where there is none, 0 from a node to itself.
/// Rows and columns beyond the last node are filled with no_path.
///
/// The lengths start as those of single edges. relax() lets paths pass through more nodes; after
/// all nodes they are the shortest ones. This is the method of Floyd and Warshall with the nodes
/// taken in blocks, on half of the symmetric matrix.
class PathLengths
{
public:
    /// Edges have the length that \p length gives for the entries of a symmetric matrix, whose
    /// diagonal is not read.
    template <typename Matrix, typename Length>
    PathLengths(const Matrix &symmetric, Length length);
    /// The part of \p whole among \p nodes, in ascending order.
    PathLengths(const PathLengths &whole, const std::vector<int> &nodes);

    int size() const { return m_lengths.size(); }
    int width() const { return m_lengths.width(); }
    const Tile &tile(int i, int j) const { return m_lengths.tile(i, j); }

    void relax(const std::vector<int> &through);
    /// Throws Ended.
    void relax_all(const Effort &effort);

    /// The shortest paths that start at some nodes and may pass through them.
    class Panel
    {
    public:
        Panel(const PathLengths &lengths, const int *through, int depth);

        /// out = the tile of lengths after relaxing through the panel's nodes.
        void relax(double *out, const PathLengths &lengths, int i, int j) const;

    private:
        const double *strip(int j) const { return m_rows[offset(j)].value; }
        /// Where strip j begins.
        std::size_t offset(int j) const
        {
            return static_cast<std::size_t>(j) * static_cast<std::size_t>(m_height);
        }
        void extract(const PathLengths &lengths, const int *through);
        void close(const int *through);

        int m_depth;
        int m_height; ///< depth, rounded up to whole tiles
        int m_width;
        std::vector<Row> m_rows; ///< strip by strip
    };

    /// Nodes per panel: more take longer to close, fewer pass over the matrix more often.
    static constexpr int panel_depth = 32;

private:
    void relax(const Panel &panel, int threads);

    SymmetricTiles m_lengths;
};

template <typename Matrix, typename Length>
PathLengths::PathLengths(const Matrix &symmetric, Length length)
    : m_lengths(static_cast<int>(symmetric.rows()))
{
    const int n = size();
    for (int j = 0; j < width(); ++j) {
        const int first = j * tile_size;
        for (int i = 0; i <= j; ++i) {
            for (int a = 0; a < tile_size; ++a) {
                const int row = i * tile_size + a;
                const int count = row < n ? std::min(tile_size, n - first) : 0;
                double *const values = m_lengths.tile(i, j).row[a].value;
                // The column of a symmetric matrix is its row, and lies together in memory.
                const auto *const source = symmetric.data() + Eigen::Index{n} * row + first;
                for (int b = 0; b < count; ++b) {
                    values[b] = length(source[b]);
                }
                std::fill(values + count, values + tile_size, no_path);
            }
        }
        for (int a = 0; a < tile_size; ++a) {
            m_lengths.tile(j, j).row[a].value[a] = 0.0;
        }
    }
}

} // namespace nodalis::detail
