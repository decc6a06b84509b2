// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPainterPath>
#include <QString>
#include <array>

namespace corvane
{

/// The outlines of an atlas or a mask (NIfTI, NRRD), or of an anatomy (.vmr), as paintBrain() takes
/// them, on a grid of 2 mm: where a line of sight meets a voxel above 0, in an anatomy above a
/// tenth of its 99th percentile. Gaps
/// of less than about 3 cm are closed and holes filled. Throws InputError.
std::array<QPainterPath, 3> brainOutlines(const QString &path);

} // namespace corvane
