// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/report/atlas_views.h"

#include <cmath>
#include <limits>

namespace corvane
{

namespace
{

/// For an axis of space (right, front, up) the run's axis along it.
struct SpaceAxis {
    int axis = 0;
    bool reversed = false;
    double millimetres = 1; ///< from voxel to voxel
    qint64 size = 0;

    int place(const std::array<qint64, 3> &voxel) const
    {
        const qint64 place = voxel[std::size_t(axis)];
        return int(reversed ? size - 1 - place : place);
    }
};

std::array<SpaceAxis, 3> spaceAxes(const RunGrid &grid)
{
    const Eigen::Matrix3d linear = grid.toWorld.linear();
    std::array<SpaceAxis, 3> axes;
    std::array<bool, 3> taken{};
    for (int direction = 0; direction < 3; ++direction) {
        int best = -1;
        for (int axis = 0; axis < 3; ++axis) {
            if (taken[std::size_t(axis)])
                continue;
            if (best < 0 || std::abs(linear(direction, axis)) > std::abs(linear(direction, best)))
                best = axis;
        }
        taken[std::size_t(best)] = true;
        axes[std::size_t(direction)] = {best, linear(direction, best) < 0, linear.col(best).norm(),
                                        grid.size[std::size_t(best)]};
    }
    return axes;
}

/// Columns and rows of a view; rows come from the top.
struct ViewPlane {
    const char *title, *left, *right;
    int columns;          ///< axis of space
    bool columnsReversed; ///< from the right
    int rows;             ///< axis of space, the larger the higher
};

constexpr ViewPlane planes[] = {{"from above", "L", "R", 0, false, 1},
                                {"from the front", "R", "L", 0, true, 2},
                                {"from the left", "front", "back", 1, true, 2}};

/// The view without rows and columns at its borders that show nothing.
AtlasView cropped(AtlasView view)
{
    const auto shown = (!view.values.array().isNaN()).eval();
    const auto rows = shown.rowwise().any().eval();
    const auto columns = shown.colwise().any().eval();
    const auto range = [](const auto &flags) {
        Eigen::Index first = 0;
        Eigen::Index last = flags.size() - 1;
        while (first < last && !flags(first))
            ++first;
        while (last > first && !flags(last))
            --last;
        return std::pair(first, last - first + 1);
    };
    const auto [top, height] = range(rows);
    const auto [left, width] = range(columns);
    view.width *= double(width) / double(view.values.cols());
    view.height *= double(height) / double(view.values.rows());
    view.values = view.values.block(top, left, height, width).eval();
    return view;
}

} // namespace

std::array<AtlasView, 3> atlasViews(const Connectome &connectome)
{
    const std::array<SpaceAxis, 3> axes = spaceAxes(connectome.grid);
    const GridSize &size = connectome.grid.size;
    std::array<AtlasView, 3> views;
    for (std::size_t n = 0; n < 3; ++n) {
        const SpaceAxis &columns = axes[std::size_t(planes[n].columns)];
        const SpaceAxis &rows = axes[std::size_t(planes[n].rows)];
        views[n] = {QString::fromLatin1(planes[n].title),
                    QString::fromLatin1(planes[n].left),
                    QString::fromLatin1(planes[n].right),
                    Eigen::MatrixXd::Constant(rows.size, columns.size,
                                              std::numeric_limits<double>::quiet_NaN()),
                    double(columns.size) * columns.millimetres,
                    double(rows.size) * rows.millimetres};
    }
    const auto show = [&](qint64 voxel, double coverage) {
        const std::array<qint64, 3> place{voxel % size[0], voxel / size[0] % size[1],
                                          voxel / size[0] / size[1]};
        for (std::size_t n = 0; n < 3; ++n) {
            const SpaceAxis &columns = axes[std::size_t(planes[n].columns)];
            const SpaceAxis &rows = axes[std::size_t(planes[n].rows)];
            int column = columns.place(place);
            if (planes[n].columnsReversed)
                column = int(columns.size) - 1 - column;
            double &value = views[n].values(rows.size - 1 - rows.place(place), column);
            value = std::isnan(value) ? coverage : std::min(value, coverage);
        }
    };
    for (const std::vector<Stretch> *stretches : {&connectome.stretches, &connectome.outside})
        for (const Stretch &stretch : *stretches)
            for (qint64 n = 0; n < stretch.length; ++n)
                show(stretch.start + n, connectome.coverage[std::size_t(stretch.node)]);
    for (AtlasView &view : views)
        view = cropped(view);
    return views;
}

} // namespace corvane
