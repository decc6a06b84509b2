// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/image3d.h"
#include "host/files/vmr_file.h"

#include <QString>
#include <QStringList>

namespace corvane
{

/// An anatomy on the cube of 256 voxels of 1 mm.
struct Anatomy {
    Vmr vmr;
    Eigen::Affine3d toWorld = Eigen::Affine3d::Identity(); ///< from voxels of the cube
    /// What the image covers, in voxels of the cube.
    Eigen::AlignedBox3d field;
    bool copied = false; ///< every voxel is one of the image's, none was interpolated
};

/// Where the cube lies for an image: its axes are those of the image, in the order and direction
/// that come nearest to back, down and left, and voxel centres of the image fall on voxel centres
/// of the cube. The origin of the world stands at voxel 128 of each axis on which the image then
/// fits; on the others the image is centred. Returns the map from cube voxels to the world.
Eigen::Affine3d layCube(const Eigen::Affine3d &imageToWorld, const GridSize &size);

/// Brings an image onto the cube. One of 1 mm is copied; any other is interpolated trilinearly.
/// Whole numbers from 0 to 65535 are kept as they are; other values are scaled to that range. Where
/// the image does not reach, the cube is 0, which is no brighter than anything of the image.
/// What is cut off or changed is appended to `notes`; `path` is named there.
Anatomy resampleAnatomy(const Image3d<float> &image, const QString &path, QStringList &notes);

/// Opens any anatomy that readImage reads and brings it onto the cube. Throws InputError.
Anatomy openAnatomy(const QString &path, QStringList &notes);

/// The same for the workspace, which needs no more than the cube; the notes go to the log.
Vmr openForeignAnatomy(const QString &path);

} // namespace corvane
