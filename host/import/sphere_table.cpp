// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/sphere_table.h"

#include "dataset/counted.h"
#include "host/files/input_error.h"
#include "host/files/text_check.h"
#include "host/files/tsv_table.h"

#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

double numberIn(const TsvTable &table, int row, int column)
{
    const std::optional<double> number = finiteNumber(table.cell(row, column));
    if (!number)
        throw InputError(table.path(), table.place(row, column), quoted(table.cell(row, column)),
                         QStringLiteral("millimetres"));
    return *number;
}

double radiusIn(const TsvTable &table, int row, int column)
{
    if (column < 0)
        return usualSphereRadius;
    const double radius = numberIn(table, row, column);
    if (radius <= 0)
        throw InputError(table.path(), table.place(row, column), quoted(table.cell(row, column)),
                         QStringLiteral("millimetres above 0"));
    return radius;
}

QString nameIn(const TsvTable &table, int row, int column)
{
    QString name = column < 0 ? QString() : table.cell(row, column);
    if (name.isEmpty() || name == QLatin1String("n/a"))
        return QString::number(row + 1);
    if (const std::optional<QString> fault = nameFault(name))
        throw InputError(table.path(), table.place(row, column), *fault,
                         QStringLiteral("the name of a VOI"));
    return name;
}

/// Those of a range that a sphere can reach, on one axis.
void narrow(VoxelRange &range, int axis, double centre, double radius)
{
    const auto n = static_cast<std::size_t>(axis);
    const double steps = std::ceil((centre - radius - range.first[n]) / range.step);
    if (steps > 0)
        range.first[n] += range.step * static_cast<int>(std::min(steps, 1.0 * cubeSize));
    range.last[n] =
        static_cast<int>(std::clamp<double>(std::floor(centre + radius), -1, range.last[n]));
}

/// Calls back with each voxel of the range in the sphere, whose centre is in cube voxels. The
/// cube's voxels are 1 mm wide.
template <typename Visit>
void visitSphere(VoxelRange range, const Eigen::Vector3d &centre, double radius, Visit visit)
{
    for (int axis = 0; axis < 3; ++axis)
        narrow(range, axis, centre[axis], radius);
    // What is on the surface belongs to it, whatever the rounding of its coordinates.
    const double limit = radius * radius + 1e-6;
    for (int k = range.first[2]; k <= range.last[2]; k += range.step)
        for (int j = range.first[1]; j <= range.last[1]; j += range.step)
            for (int i = range.first[0]; i <= range.last[0]; i += range.step) {
                const Eigen::Vector3d voxel(i, j, k);
                if ((voxel - centre).squaredNorm() <= limit)
                    visit(voxel);
            }
}

LabelCount countVoxels(const FunctionalGrid &grid, const Eigen::Vector3d &centre, double radius)
{
    LabelCount count;
    visitSphere({{0, 0, 0}, {cubeSize - 1, cubeSize - 1, cubeSize - 1}, 1}, centre, radius,
                [&](const Eigen::Vector3d &voxel) {
                    ++count.inAtlas;
                    if (grid.recordedPoint(voxel))
                        ++count.insideRun;
                });
    return count;
}

Voi voiOf(const Sphere &sphere, const FunctionalGrid &grid, const VoxelRange &range,
          const Eigen::Vector3d &centre, const Colour &colour)
{
    Voi voi{sphere.name, colour.r, colour.g, colour.b, {}};
    visitSphere(range, centre, sphere.radius, [&](const Eigen::Vector3d &voxel) {
        if (grid.recordedPoint(voxel))
            voi.voxels.push_back({static_cast<int>(voxel[0]), static_cast<int>(voxel[1]),
                                  static_cast<int>(voxel[2])});
    });
    return voi;
}

void noteLoss(const Voi &voi, const LabelCount &count, QStringList &notes)
{
    if (count.insideRun == count.inAtlas && !voi.voxels.empty())
        return;
    QString note = QStringLiteral("VOI %1: %2 of 1 mm in the sphere, %3 of them inside the run")
                       .arg(quoted(voi.name), counted(count.inAtlas, "voxel"),
                            QString::number(count.insideRun));
    if (voi.voxels.empty())
        note += QStringLiteral(": no functional voxel lies in it, the VOI is empty");
    notes += note;
}

} // namespace

std::vector<Sphere> readSpheres(const QString &path, QStringList &notes)
{
    const TsvTable table(path);
    notes += table.notes();
    const int x = table.requiredColumn(QStringLiteral("x"));
    const int y = table.requiredColumn(QStringLiteral("y"));
    const int z = table.requiredColumn(QStringLiteral("z"));
    const int radius = table.column(QStringLiteral("radius"));
    const int name = table.column(QStringLiteral("name")) < 0
                         ? table.column(QStringLiteral("label"))
                         : table.column(QStringLiteral("name"));
    std::vector<Sphere> spheres;
    for (int row = 0; row < table.rowCount(); ++row)
        spheres.push_back(
            {nameIn(table, row, name),
             {numberIn(table, row, x), numberIn(table, row, y), numberIn(table, row, z)},
             radiusIn(table, row, radius)});
    if (radius < 0)
        notes += QStringLiteral("%1: no column radius: the spheres have %2 mm")
                     .arg(printable(path, 4096))
                     .arg(usualSphereRadius);
    return spheres;
}

VoiSet voisOfSpheres(const std::vector<Sphere> &spheres, const FunctionalGrid &grid,
                     const Eigen::Affine3d &cubeToWorld, VoiGrid voiGrid, const QString &path,
                     QStringList &notes, std::vector<LabelCount> &counts, int firstColour)
{
    const Eigen::Affine3d worldToCube = cubeToWorld.inverse();
    const VoxelRange range = voxelRange(grid, voiGrid);
    VoiSet set;
    for (const Sphere &sphere : spheres) {
        const Eigen::Vector3d centre = worldToCube * sphere.centre;
        set.vois.push_back(voiOf(sphere, grid, range, centre,
                                 nthColour(firstColour + static_cast<int>(set.vois.size()))));
        counts.push_back(countVoxels(grid, centre, sphere.radius));
        noteLoss(set.vois.back(), counts.back(), notes);
    }
    if (voiGrid == VoiGrid::Anatomy)
        notes += precisionNotes(set, grid, path);
    return set;
}

} // namespace corvane
