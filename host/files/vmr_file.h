// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/provenance.h"

#include <QString>
#include <array>
#include <memory>
#include <optional>

/// @file
/// Anatomical volumes: `.vmr`, a cube of 256 voxels of 1 mm. The file is a NRRD with attached
/// header and raw data; docs/file-formats.md has it exactly.

namespace corvane
{

class MappedFile;

/// Where a cube lies in the scanner's or a standard space: the axes run to the right, to the front
/// and up, in millimetres.
struct VmrSpace {
    /// Step from a voxel to the next along each axis of the cube; each of length 1 (to 1e-3).
    std::array<std::array<double, 3>, 3> directions{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    std::array<double, 3> origin{}; ///< centre of voxel (0, 0, 0)
};

struct Vmr {
    static constexpr int size = 256; ///< voxels on each axis
    static constexpr qint64 voxelCount = qint64(size) * size * size;

    enum SampleType { UChar, UShort };

    SampleType type = UChar;
    Provenance provenance;
    std::optional<VmrSpace> space; ///< unset: nothing is known of it
    /// voxelCount samples of `type`, the first axis fastest: voxel (i, j, k) is at
    /// i + 256 * (j + 256 * k). Shared with whatever owns the memory, a mapped file or a buffer.
    std::shared_ptr<const void> voxels;
    /// The file that the voxels are mapped from, null for a buffer. Another program may shorten it;
    /// voxels that are gone read as 0.
    std::shared_ptr<const MappedFile> file;

    qint64 byteCount() const { return voxelCount * (type == UChar ? 1 : 2); }
};

/// Opens a `.vmr` and maps it. Throws InputError.
Vmr readVmr(const QString &path);

/// Writes a `.vmr`. Throws InputError.
void writeVmr(const QString &path, const Vmr &vmr);

} // namespace corvane
