// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/brain_outline.h"

#include "host/files/file_kind.h"
#include "host/files/image_reader.h"
#include "host/files/vmr_file.h"
#include "host/painting/outline_path.h"

#include <QTransform>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

constexpr double cell = 2; // mm
constexpr int cells = 140;
constexpr double start = -cell * cells / 2;

/// The two axes of each projection.
constexpr std::array<std::array<int, 2>, 3> axes{{{0, 1}, {0, 2}, {1, 2}}};

Image3d<float> readAnatomy(const QString &path)
{
    const Vmr vmr = readVmr(path);
    Image3d<float> image;
    image.size = {Vmr::size, Vmr::size, Vmr::size};
    if (vmr.space)
        for (int axis = 0; axis < 3; ++axis) {
            const auto &direction = vmr.space->directions[std::size_t(axis)];
            image.toWorld.matrix().col(axis).head<3>() =
                Eigen::Vector3d(direction[0], direction[1], direction[2]);
            image.toWorld.translation()[axis] = vmr.space->origin[std::size_t(axis)];
        }
    image.voxels.resize(std::size_t(Vmr::voxelCount));
    for (std::size_t voxel = 0; voxel < image.voxels.size(); ++voxel)
        image.voxels[voxel] = vmr.type == Vmr::UChar
                                  ? static_cast<const quint8 *>(vmr.voxels.get())[voxel]
                                  : static_cast<const quint16 *>(vmr.voxels.get())[voxel];
    return image;
}

/// An anatomy has noise around the head; whatever is above 0 in an atlas or a mask belongs to it.
float backgroundOf(const Image3d<float> &anatomy)
{
    std::vector<float> sample;
    for (std::size_t voxel = 0; voxel < anatomy.voxels.size();
         voxel += std::max<std::size_t>(1, anatomy.voxels.size() / 100000))
        sample.push_back(anatomy.voxels[voxel]);
    if (sample.empty())
        return 0;
    const auto place = sample.begin() + std::ptrdiff_t(double(sample.size() - 1) * 0.99);
    std::nth_element(sample.begin(), place, sample.end());
    return *place / 10;
}

/// Whether any cell within a disc around is in the shape, or all of them are.
ShapeMask grown(const ShapeMask &shape, int radius, bool grow)
{
    ShapeMask result = shape;
    for (int y = 0; y < shape.height; ++y)
        for (int x = 0; x < shape.width; ++x) {
            bool found = false;
            for (int dy = -radius; dy <= radius && !found; ++dy)
                for (int dx = -radius; dx <= radius && !found; ++dx)
                    found =
                        dx * dx + dy * dy <= radius * radius && shape.at(x + dx, y + dy) == grow;
            result.cells[shape.place(x, y)] = found == grow;
        }
    return result;
}

/// Everything that cannot be reached from the corner of the grid.
void fillHoles(ShapeMask &shape)
{
    std::vector<bool> isOutside(shape.cells.size(), false);
    std::vector<std::pair<int, int>> open{{0, 0}};
    while (!open.empty()) {
        const auto [x, y] = open.back();
        open.pop_back();
        if (x < 0 || y < 0 || x >= shape.width || y >= shape.height || shape.at(x, y) ||
            isOutside[shape.place(x, y)])
            continue;
        isOutside[shape.place(x, y)] = true;
        open.insert(open.end(), {{x - 1, y}, {x + 1, y}, {x, y - 1}, {x, y + 1}});
    }
    for (std::size_t place = 0; place < shape.cells.size(); ++place)
        shape.cells[place] = !isOutside[place];
}

/// Regions that stand apart, and voxels larger than a cell, become one shape without holes.
ShapeMask closed(const ShapeMask &shape)
{
    constexpr int reach = 9; // cells
    ShapeMask wide = grown(shape, reach, true);
    fillHoles(wide);
    return grown(wide, reach - 1, false);
}

} // namespace

std::array<QPainterPath, 3> brainOutlines(const QString &path)
{
    QStringList notes;
    const bool isVmr = fileKind(path) == FileKind::Vmr;
    const Image3d<float> image = isVmr ? readAnatomy(path) : readImage(path, notes);
    const float background = isVmr ? backgroundOf(image) : 0;
    std::array<ShapeMask, 3> masks;
    for (ShapeMask &mask : masks)
        mask = {cells, cells, std::vector<bool>(std::size_t(cells * cells), false)};
    std::size_t voxel = 0;
    for (qint64 k = 0; k < image.size[2]; ++k)
        for (qint64 j = 0; j < image.size[1]; ++j)
            for (qint64 i = 0; i < image.size[0]; ++i, ++voxel) {
                if (!(image.voxels[voxel] > background))
                    continue;
                const Eigen::Vector3d mm =
                    image.toWorld * Eigen::Vector3d(double(i), double(j), double(k));
                for (std::size_t panel = 0; panel < 3; ++panel) {
                    const int x = int(std::floor((mm[axes[panel][0]] - start) / cell));
                    const int y = int(std::floor((mm[axes[panel][1]] - start) / cell));
                    if (x >= 0 && y >= 0 && x < cells && y < cells)
                        masks[panel].cells[masks[panel].place(x, y)] = true;
                }
            }
    std::array<QPainterPath, 3> outlines;
    for (std::size_t panel = 0; panel < 3; ++panel)
        outlines[panel] =
            QTransform(cell, 0, 0, cell, start, start).map(outlineOf(closed(masks[panel]), 24));
    return outlines;
}

} // namespace corvane
