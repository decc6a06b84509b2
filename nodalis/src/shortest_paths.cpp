// SPDX-License-Identifier: GPL-3.0-or-later
#include "shortest_paths.h"

#include <algorithm>
#include <numeric>

namespace nodalis::detail
{
namespace
{

/// Shortest paths among the first \p count nodes, in place. The matrix is symmetric; where no path
/// leads to a node none leads on from there.
void floyd_warshall(Eigen::MatrixXd &d, Eigen::Index count)
{
    for (Eigen::Index k = 0; k < count; ++k) {
        for (Eigen::Index j = 0; j < count; ++j) {
            if (j != k && d(k, j) < no_path) {
                d.col(j) = d.col(j).cwiseMin((d.col(k).array() + d(k, j)).matrix());
            }
        }
    }
}

} // namespace

PathLengths::PathLengths(const PathLengths &whole, const std::vector<int> &nodes)
    : m_lengths(static_cast<int>(nodes.size()))
{
    const int n = size();
    std::vector<std::size_t> from(nodes.size());
    std::transform(nodes.begin(), nodes.end(), from.begin(), SymmetricTiles::column_offset);
    for (int j = 0; j < width(); ++j) {
        for (int i = 0; i <= j; ++i) {
            Tile &target = m_lengths.tile(i, j);
            for (int a = 0; a < tile_size; ++a) {
                const int row = i * tile_size + a;
                const int first = j * tile_size;
                const int count = row < n ? std::min(tile_size, n - first) : 0;
                double *const values = target.row[a].value;
                std::fill(values + count, values + tile_size, no_path);
                if (count > 0) {
                    const double *const source =
                        whole.m_lengths.data() + SymmetricTiles::row_offset(nodes[row]);
                    for (int b = i == j ? a : 0; b < count; ++b) {
                        values[b] = source[from[first + b]];
                    }
                }
            }
        }
        Tile &diagonal = m_lengths.tile(j, j);
        for (int a = 0; a < tile_size; ++a) {
            for (int b = 0; b < a; ++b) {
                diagonal.row[a].value[b] = diagonal.row[b].value[a];
            }
            diagonal.row[a].value[a] = 0.0;
        }
    }
}

void PathLengths::relax(const std::vector<int> &through, Report &report)
{
    const int count = static_cast<int>(through.size());
    for (int k = 0; k < count; k += panel_depth) {
        relax(Panel(*this, through.data() + k, std::min(panel_depth, count - k)), 1);
        report.add(0.0);
    }
}

void PathLengths::relax_all(const Effort &effort)
{
    std::vector<int> all(static_cast<std::size_t>(size()));
    std::iota(all.begin(), all.end(), 0);
    Report report(effort, size());
    for (int k = 0; k < size(); k += panel_depth) {
        const int depth = std::min(panel_depth, size() - k);
        relax(Panel(*this, all.data() + k, depth), effort.threads);
        report.add(depth);
    }
}

void PathLengths::relax(const Panel &panel, int threads)
{
    for_each_index(static_cast<std::size_t>(width()), threads, [&](std::size_t column) {
        const int j = static_cast<int>(column);
        for (int i = 0; i <= j; ++i) {
            panel.relax(m_lengths.tile(i, j).data(), *this, i, j);
        }
    });
}

PathLengths::Panel::Panel(const PathLengths &lengths, const int *through, int depth)
    : m_depth(depth), m_height(tiles_for(depth) * tile_size), m_width(lengths.width()),
      m_rows(static_cast<std::size_t>(m_height) * static_cast<std::size_t>(m_width))
{
    extract(lengths, through);
    close(through);
}

void PathLengths::Panel::relax(double *out, const PathLengths &lengths, int i, int j) const
{
    kernels().min_plus(out, lengths.tile(i, j).data(), strip(i), strip(j), m_depth);
}

/// Copies the rows of the nodes out of the half that is stored.
void PathLengths::Panel::extract(const PathLengths &lengths, const int *through)
{
    for (int j = 0; j < m_width; ++j) {
        Row *const rows = m_rows.data() + offset(j);
        for (int r = 0; r < m_depth; ++r) {
            const int i = through[r] / tile_size;
            const int within = through[r] % tile_size;
            if (i <= j) {
                rows[r] = lengths.tile(i, j).row[within];
            } else {
                const Tile &mirrored = lengths.tile(j, i);
                for (int b = 0; b < tile_size; ++b) {
                    rows[r].value[b] = mirrored.row[b].value[within];
                }
            }
        }
        std::for_each(rows + m_depth, rows + m_height, [](Row &row) {
            std::fill(std::begin(row.value), std::end(row.value), no_path);
        });
    }
}

/// Lets the panel's paths pass through all of its nodes: first the paths among these, then from
/// them to everything else. Strips of both have the panel's height.
void PathLengths::Panel::close(const int *through)
{
    Eigen::MatrixXd among = Eigen::MatrixXd::Constant(m_height, m_height, no_path);
    for (int s = 0; s < m_depth; ++s) {
        const Row *const rows = m_rows.data() + offset(through[s] / tile_size);
        for (int r = 0; r < m_depth; ++r) {
            among(r, s) = rows[r].value[through[s] % tile_size];
        }
    }
    floyd_warshall(among, m_depth);

    std::vector<Row> among_strips(offset(tiles_for(m_depth)));
    for (int s = 0; s < m_height; ++s) {
        Row *const strip = among_strips.data() + offset(s / tile_size);
        for (int r = 0; r < m_height; ++r) {
            strip[r].value[s % tile_size] = among(r, s);
        }
    }
    std::vector<Row> before(offset(1));
    for (int j = 0; j < m_width; ++j) {
        Row *const rows = m_rows.data() + offset(j);
        std::copy_n(rows, m_height, before.begin());
        for (int s = 0; s < m_height; s += tile_size) {
            const Row *const strip = among_strips.data() + offset(s / tile_size);
            kernels().min_plus(rows[s].value, before[s].value, strip->value, before[0].value,
                               m_depth);
        }
    }
}

} // namespace nodalis::detail
