// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/row_memory.h"

#include "host/files/input_error.h"
#include "host/files/nifti_stream.h"

#include <algorithm>

namespace corvane
{

namespace
{

constexpr qint64 ofProgram = 48 << 20;
constexpr qint64 volumesAtOnce = 5;      // read ahead, and in use
constexpr qint64 bytesOfVoxel = 40;      // of the run: mask, node, flags, first value
constexpr qint64 bytesOfAtlasVoxel = 16; // as read, and as labels
constexpr qint64 mostNodes = 1000;
constexpr qint64 seriesAtOnce = 6; // as read, cleaned, uncleaned, and in work

std::optional<NiftiHeader> headerOf(const QString &path)
{
    try {
        return NiftiStream(path).header();
    } catch (const InputError &) {
        return std::nullopt;
    }
}

qint64 memoryFor(const ConnectomeRequest &request)
{
    const auto run = headerOf(request.run);
    if (!run)
        return ofProgram;
    const auto atlas = headerOf(request.atlas);
    const qint64 number = sizeof(double);
    const qint64 matrices = 2 + qint64(request.relationships.size());
    return ofProgram + volumesAtOnce * run->bytesPerVolume() +
           bytesOfVoxel * run->voxelsPerVolume() +
           (atlas ? bytesOfAtlasVoxel * atlas->voxelsPerVolume() : 0) +
           seriesAtOnce * run->dim[3] * mostNodes * number +
           matrices * mostNodes * mostNodes * number;
}

} // namespace

qint64 memoryFor(const std::vector<StudyRow> &rows)
{
    qint64 most = 0;
    for (const StudyRow &row : rows)
        if (row.reason.isEmpty())
            most = std::max(most, memoryFor(row.request));
    return most;
}

} // namespace corvane
