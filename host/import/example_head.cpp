// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/example_head.h"

#include "host/import/example_signals.h"

#include <cmath>
#include <cstring>
#include <nifti/nifti1.h>

namespace corvane::example
{

namespace
{

/// A zigzag between -1 and 1 with a period of 1.
double zigzag(double place)
{
    return 4 * std::abs(place - std::floor(place + 0.5)) - 1;
}

nifti_1_header niftiHeader(const Grid &grid, int volumes, SampleType type, Space space)
{
    nifti_1_header header{};
    header.sizeof_hdr = sizeof header;
    header.dim[0] = volumes > 1 ? 4 : 3;
    header.pixdim[0] = 1;
    for (int axis = 0; axis < 3; ++axis) {
        header.dim[axis + 1] = static_cast<short>(grid.size[axis]);
        header.pixdim[axis + 1] = static_cast<float>(grid.voxel);
    }
    header.dim[4] = static_cast<short>(volumes);
    header.pixdim[4] = volumes > 1 ? static_cast<float>(repetitionTime) : 0;
    for (int axis = 5; axis < 8; ++axis)
        header.dim[axis] = 1;
    header.datatype = static_cast<short>(type);
    header.bitpix = type == Bytes ? 8 : 16;
    header.vox_offset = 352;
    header.xyzt_units = NIFTI_UNITS_MM | NIFTI_UNITS_SEC;
    header.qform_code = static_cast<short>(space);
    header.sform_code = static_cast<short>(space);
    header.qoffset_x = header.srow_x[3] = static_cast<float>(grid.first[0]);
    header.qoffset_y = header.srow_y[3] = static_cast<float>(grid.first[1]);
    header.qoffset_z = header.srow_z[3] = static_cast<float>(grid.first[2]);
    header.srow_x[0] = header.srow_y[1] = header.srow_z[2] = static_cast<float>(grid.voxel);
    std::memcpy(header.magic, "n+1", 4);
    return header;
}

} // namespace

double squaredRadius(double x, double y, double z, const std::array<double, 3> &centre,
                     const std::array<double, 3> &radii)
{
    const double a = (x - centre[0]) / radii[0];
    const double b = (y - centre[1]) / radii[1];
    const double c = (z - centre[2]) / radii[2];
    return a * a + b * b + c * c;
}

Tissue tissueAt(double x, double y, double z)
{
    const std::array<double, 3> centre{0, -18, 14};
    const double brain = squaredRadius(x, y, z, centre, {68, 86, 66});
    if (brain > 1) {
        if (squaredRadius(x, y, z, centre, {71, 89, 69}) <= 1)
            return Fluid;
        if (squaredRadius(x, y, z, centre, {76, 94, 74}) <= 1)
            return Skull;
        return squaredRadius(x, y, z, centre, {81, 99, 79}) <= 1 ? Scalp : Air;
    }
    if (squaredRadius(std::abs(x), y, z, {10, -14, 16}, {5, 26, 8}) <= 1)
        return Fluid;
    const double folds = zigzag(x / 19) + zigzag(y / 23) + zigzag(z / 17);
    return std::sqrt(brain) > 0.88 + 0.03 * folds ? Grey : White;
}

quint8 labelAt(double x, double y, double z)
{
    for (int number = 0; number < regionCount; ++number)
        if (squaredRadius(x, y, z, regions[number].centre,
                          {regionRadius, regionRadius, regionRadius}) <= 1)
            return static_cast<quint8>(number + 1);
    return 0;
}

void writeHeader(GzipFile &file, const Grid &grid, int volumes, SampleType type, Space space)
{
    const nifti_1_header header = niftiHeader(grid, volumes, type, space);
    file.write(&header, sizeof header);
    const char noExtension[4] = {0, 0, 0, 0};
    file.write(noExtension, sizeof noExtension);
}

} // namespace corvane::example
