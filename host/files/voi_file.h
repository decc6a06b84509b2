// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/provenance.h"

#include <QString>
#include <array>
#include <vector>

/// @file
/// Volumes of interest: `.voi`, JSON; docs/file-formats.md has it exactly.

namespace corvane
{

struct Voi {
    QString name; ///< not empty, without control characters; names may repeat
    int r = 255;  ///< colour, 0 to 255 each
    int g = 255;
    int b = 255;
    /// Voxels, each three whole numbers within the cube of 256: 0 to 255 when `referenceSpace` is
    /// below 3, else -127 to 128 (128 - value is then the VMR coordinate). May be empty.
    std::vector<std::array<int, 3>> voxels;
};

struct VoiSet {
    Provenance provenance;
    int referenceSpace = 0; ///< 0 or more; below 3 voxels are VMR coordinates as they stand
    double resolution[3] = {1, 1, 1}; ///< mm, above 0
    std::vector<Voi> vois;
};

/// Throws InputError.
VoiSet readVoiFile(const QString &path);

/// Throws InputError, also for a set that readVoiFile would refuse.
void writeVoiFile(const QString &path, const VoiSet &set);

} // namespace corvane
