// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

/// @file
/// The records that the host fills for its plugins: wire formats of the host, declared once and
/// included by both sides. Integers are 32-bit little-endian, floats 32-bit IEEE, texts
/// NUL-terminated single-byte arrays. Bytes without a name are opaque and are only carried along.

/// Volume time course (VTC): header of the linked one. Filled by `zqGetHeaderOfVTCOfCurrentVMR`.
struct VTCHeader {
    std::uint8_t opaque0[4];
    std::int32_t nrOfVolumes; ///< number of time points
    std::uint8_t opaque8[12];
    std::int32_t xStart; ///< start of the bounding box on the first axis, in VMR voxels
    std::int32_t xEnd;
    std::int32_t yStart;
    std::int32_t yEnd;
    std::int32_t zStart;
    std::int32_t zEnd;
    std::int32_t resolution; ///< VMR voxels per VTC voxel
    std::int32_t dataType;   ///< 1: 16-bit signed integers; any other value: 32-bit floats
    std::uint8_t opaque52[268];
    std::int32_t linkedProtocolCount; ///< not 0 when the VTC names a protocol
    char linkedProtocolFile[524];     ///< that protocol's path, Latin-1
};
static_assert(offsetof(VTCHeader, nrOfVolumes) == 4);
static_assert(offsetof(VTCHeader, xStart) == 20);
static_assert(offsetof(VTCHeader, xEnd) == 24);
static_assert(offsetof(VTCHeader, yStart) == 28);
static_assert(offsetof(VTCHeader, yEnd) == 32);
static_assert(offsetof(VTCHeader, zStart) == 36);
static_assert(offsetof(VTCHeader, zEnd) == 40);
static_assert(offsetof(VTCHeader, resolution) == 44);
static_assert(offsetof(VTCHeader, dataType) == 48);
static_assert(offsetof(VTCHeader, linkedProtocolCount) == 320);
static_assert(offsetof(VTCHeader, linkedProtocolFile) == 324);
static_assert(sizeof(VTCHeader) == 848);

/// Volumes of interest (VOIs): header of the loaded file. Filled by `zqGetVOIs`.
struct VOIsHeader {
    std::int32_t voiCount; ///< number of VOIs in the loaded file
    std::uint8_t opaque4[268];
    std::int32_t referenceSpace; ///< below 3: coordinates as they stand; 3 or more: converted
    std::uint8_t opaque276[4];
    float resolutionX; ///< voxel size of the VOI file in mm
    float resolutionY;
    float resolutionZ;
    std::uint8_t opaque292[20];
};
static_assert(offsetof(VOIsHeader, voiCount) == 0);
static_assert(offsetof(VOIsHeader, referenceSpace) == 272);
static_assert(offsetof(VOIsHeader, resolutionX) == 280);
static_assert(offsetof(VOIsHeader, resolutionY) == 284);
static_assert(offsetof(VOIsHeader, resolutionZ) == 288);
static_assert(sizeof(VOIsHeader) == 312);

/// One VOI. Filled by `zqGetVOI`, which returns its voxels as triples of `int`.
struct VOIRecord {
    std::int32_t voxelCount; ///< voxels of this VOI, may be 0
    char name[260];          ///< UTF-8
};
static_assert(offsetof(VOIRecord, voxelCount) == 0);
static_assert(offsetof(VOIRecord, name) == 4);
static_assert(sizeof(VOIRecord) == 264);

/// Stimulation protocol: header of the loaded one. Filled by `zqGetProtocol`.
struct ProtocolHeader {
    std::int32_t conditionCount;
    std::uint8_t opaque4[261];
    char name[303];        ///< Latin-1
    std::int32_t timeUnit; ///< 1: the unit in which a one-point interval marks an event
    std::uint8_t opaque572[24];
};
static_assert(offsetof(ProtocolHeader, conditionCount) == 0);
static_assert(offsetof(ProtocolHeader, name) == 265);
static_assert(offsetof(ProtocolHeader, timeUnit) == 568);
static_assert(sizeof(ProtocolHeader) == 596);

/// One condition of the protocol. Filled by `zqGetProtocolCondition`; the host owns the intervals.
struct ConditionRecord {
    char name[256]; ///< Latin-1
    std::int32_t intervalCount;
    std::uint8_t opaque260[4];
    const int *from; ///< `intervalCount` interval starts
    const int *to;   ///< `intervalCount` interval ends
    std::uint8_t opaque280[8];
};
static_assert(offsetof(ConditionRecord, name) == 0);
static_assert(offsetof(ConditionRecord, intervalCount) == 256);
static_assert(offsetof(ConditionRecord, from) == 264);
static_assert(offsetof(ConditionRecord, to) == 272);
static_assert(sizeof(ConditionRecord) == 288);

/// Anatomical volume (VMR): main header of the current one. Filled by
/// `zqGetMainHeaderOfCurrentVMR`.
struct VMRHeader {
    char path[368]; ///< file path, UTF-8
};
static_assert(offsetof(VMRHeader, path) == 0);
static_assert(sizeof(VMRHeader) == 368);
