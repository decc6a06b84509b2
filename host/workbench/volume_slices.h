// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/cube_voxel.h"
#include "host/files/vmr_file.h"

#include <QByteArray>
#include <QImage>
#include <array>
#include <optional>

/// @file
/// From an anatomy to pictures of its slices. The axes of the cube run to the back, down and to the
/// left, so that the patient's right is on the left of a picture, unless the file says otherwise.

namespace corvane
{

class RunOverlay;
class VoiOverlay;

enum class SlicePlane { Sagittal, Coronal, Axial };

/// Axes of the cube that run across and down a picture, and the one through it.
struct PlaneAxes {
    int across;
    int down;
    int through;
};

PlaneAxes axesOf(SlicePlane plane);

/// The intensities between black and white: level is the one in the middle, width from one to the
/// other.
struct GreyWindow {
    double level = 128;
    double width = 256;

    bool operator==(const GreyWindow &other) const
    {
        return level == other.level && width == other.width;
    }
};

/// A window for the first look: from the 1st to the 99.5th percentile of what is not 0. That of an
/// image of few values, such as a mask or an atlas, begins at 0, so that the least is not black.
GreyWindow automaticWindow(const Vmr &vmr);

bool isInCube(const CubeVoxel &voxel);

/// The intensity at a voxel of the cube.
int intensityAt(const Vmr &vmr, const CubeVoxel &voxel);

/// What lies over the anatomy; null for nothing. Opacities are 0 to 1. VOIs lie on top.
struct SliceLayers {
    const VoiOverlay *vois = nullptr;
    double voiOpacity = 0.5;
    const RunOverlay *run = nullptr;
    double runOpacity = 0.5;
};

/// The picture of one slice: 256 x 256 pixels, one for each voxel.
QImage sliceImage(const Vmr &vmr, SlicePlane plane, int position, const GreyWindow &window,
                  const SliceLayers &layers = {});

/// Its intensities as a table: the first row and column hold the coordinates across and down.
QByteArray sliceTable(const Vmr &vmr, SlicePlane plane, int position);

/// The voxels from `low` to `high`.
struct CubeBox {
    CubeVoxel low;
    CubeVoxel high;
};

/// Where the head is: the box of what is brighter than the darkest tenth of the automatic window,
/// without specks. Nothing for a volume that is black. Looks at the whole volume.
std::optional<CubeBox> headBox(const Vmr &vmr);

/// Letters for the two ends of an axis of the cube: R and L, A and P, S and I. None when the file
/// does not say where the cube lies.
struct AxisEnds {
    QString low;
    QString high;
};
AxisEnds axisEnds(const Vmr &vmr, int axis);

/// Whether the picture of a plane is turned over from left to right so that it shows the patient's
/// right on the left (radiological) or on the right (neurological). A plane without that axis, and
/// a volume that does not say where it lies, is not.
bool isMirrored(const Vmr &vmr, SlicePlane plane, bool neurological);

} // namespace corvane
