// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/image_grid.h"

#include <QStringList>
#include <cmath>

namespace corvane
{

namespace
{

/// Keeps places that stand on the border between two voxels from falling on either side by chance.
constexpr double borderSlack = 1e-6;

/// A size in millimetres, which comes out of a matrix and is not exact.
QString millimetres(double length)
{
    return QString::number(std::round(length * 1000) / 1000, 'g', 6);
}

} // namespace

QString voxelText(const Eigen::Affine3d &toWorld)
{
    QStringList sizes;
    for (int axis = 0; axis < 3; ++axis)
        sizes += millimetres(toWorld.linear().col(axis).norm());
    return sizes.join(QStringLiteral(" x ")) + QStringLiteral(" mm");
}

QString gridText(const GridSize &size, const Eigen::Affine3d &toWorld)
{
    return QStringLiteral("%1 x %2 x %3 voxels of %4")
        .arg(QString::number(size[0]), QString::number(size[1]), QString::number(size[2]),
             voxelText(toWorld));
}

qint64 nearestVoxel(const GridSize &size, const Eigen::Vector3d &place)
{
    qint64 index[3];
    for (int axis = 0; axis < 3; ++axis) {
        const double nearest = std::floor(place[axis] + 0.5 + borderSlack);
        if (!(nearest >= 0 && nearest < static_cast<double>(size[axis])))
            return -1;
        index[axis] = static_cast<qint64>(nearest);
    }
    return index[0] + size[0] * (index[1] + size[1] * index[2]);
}

} // namespace corvane
