// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

#include "kernels/kernels.h"

namespace nodalis::detail
{

/// Part of a matrix row, as wide as a tile.
struct alignas(64) Row {
    double value[tile_size];
};

struct alignas(64) Tile {
    Row row[tile_size];

    double *data() { return row[0].value; }
    const double *data() const { return row[0].value; }
};

/// Number of tiles that n values take.
constexpr int tiles_for(int n)
{
    return (n + tile_size - 1) / tile_size;
}

/// A symmetric matrix of doubles in tiles: those on and above the diagonal are stored, column of
/// tiles by column of tiles. Tiles on the diagonal hold both halves. The last tiles reach beyond
/// the matrix.
class SymmetricTiles
{
public:
    explicit SymmetricTiles(int n)
        : m_size(n), m_tiles(static_cast<std::size_t>(tiles_for(n)) * (tiles_for(n) + 1) / 2)
    {
    }

    int size() const { return m_size; }
    /// Tiles per row.
    int width() const { return tiles_for(m_size); }

    /// Tile of row \p i and column \p j, counted in tiles, i <= j.
    Tile &tile(int i, int j) { return m_tiles[index(i, j)]; }
    const Tile &tile(int i, int j) const { return m_tiles[index(i, j)]; }

    /// The entry of nodes i <= j is at data()[row_offset(i) + column_offset(j)].
    static std::size_t row_offset(int i)
    {
        return static_cast<std::size_t>(i / tile_size) * tile_area +
               static_cast<std::size_t>(i % tile_size) * tile_size;
    }
    static std::size_t column_offset(int j)
    {
        const std::size_t column = static_cast<std::size_t>(j / tile_size);
        return column * (column + 1) / 2 * tile_area + static_cast<std::size_t>(j % tile_size);
    }
    double *data() { return m_tiles.data()->data(); }
    const double *data() const { return m_tiles.data()->data(); }

private:
    static constexpr std::size_t tile_area = std::size_t{tile_size} * tile_size;

    static std::size_t index(int i, int j)
    {
        return static_cast<std::size_t>(j) * (static_cast<std::size_t>(j) + 1) / 2 +
               static_cast<std::size_t>(i);
    }

    int m_size;
    std::vector<Tile> m_tiles;
};

} // namespace nodalis::detail
