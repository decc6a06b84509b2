// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPainterPath>
#include <vector>

namespace corvane
{

/// Cells of a grid that belong to a shape, x fastest.
struct ShapeMask {
    int width = 0;
    int height = 0;
    std::vector<bool> cells;

    std::size_t place(int x, int y) const
    {
        return std::size_t(y) * std::size_t(width) + std::size_t(x);
    }
    bool at(int x, int y) const
    {
        return x >= 0 && y >= 0 && x < width && y < height && cells[place(x, y)];
    }
};

/// The border of a shape as closed lines, in cells: cell (0, 0) covers 0 to 1 both ways. The
/// corners of the cells are rounded off by a mean over five of them, holes and islands of fewer
/// than `least` corners are left out.
QPainterPath outlineOf(const ShapeMask &shape, int least = 12);

} // namespace corvane
