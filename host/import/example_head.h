// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/gzip_file.h"

#include <QtGlobal>
#include <array>

/// @file
/// The head of the example dataset in space: its tissues and regions on any grid, and images of it.

namespace corvane::example
{

/// A grid whose axes run to the right, to the front and up.
struct Grid {
    int size[3];
    double voxel;    ///< mm
    double first[3]; ///< centre of the first voxel, mm

    int voxelCount() const { return size[0] * size[1] * size[2]; }
    double place(int axis, int index) const { return first[axis] + voxel * index; }
};

/// Calls `visit(x, y, z)` for each voxel in the order of the file.
template <typename Visit>
void forEachVoxel(const Grid &grid, Visit visit)
{
    for (int k = 0; k < grid.size[2]; ++k)
        for (int j = 0; j < grid.size[1]; ++j)
            for (int i = 0; i < grid.size[0]; ++i)
                visit(grid.place(0, i), grid.place(1, j), grid.place(2, k));
}

enum Tissue { Air, Scalp, Skull, Fluid, Grey, White };

/// Distance from the centre of an ellipsoid, squared; 1 on its surface.
double squaredRadius(double x, double y, double z, const std::array<double, 3> &centre,
                     const std::array<double, 3> &radii);

/// A head of shells, with a folded border between grey and white matter and two ventricles.
Tissue tissueAt(double x, double y, double z);

/// The label of the region at a place, 0 outside all of them.
quint8 labelAt(double x, double y, double z);

/// Kinds of samples, with the numbers that NIfTI gives them.
enum SampleType { Bytes = 2, Shorts = 4 };

/// Coordinate systems, with the numbers that NIfTI gives them.
enum Space { Scanner = 1, Template = 4 };

/// The header of an image and what follows it before the samples; a run has more than one volume.
void writeHeader(GzipFile &file, const Grid &grid, int volumes, SampleType type,
                 Space space = Scanner);

} // namespace corvane::example
