// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/prt_file.h"
#include "host/files/voi_file.h"
#include "host/files/vtc_file.h"
#include "plugin/host_records.h"

#include <vector>

/// @file
/// What the host has loaded, together with the records that plugins get of it. The records are made
/// once per load: zero-filled, texts terminated. A text that had to be cut or changed for its field
/// is said in the log. Names keep their beginning, paths their end.

namespace corvane
{

struct LinkedVtc {
    explicit LinkedVtc(VtcFile vtc);

    VtcFile file;
    VTCHeader header;
};

struct LoadedVois {
    explicit LoadedVois(VoiSet voiSet);

    VoiSet set;
    VOIsHeader header;
    std::vector<VOIRecord> records;

    /// Voxel triples of a VOI, one after the other. Never null, also for a VOI without voxels.
    const int *voxels(int index) const;
};

/// The records point into the protocol's own arrays, so it is moved but never copied.
struct LoadedProtocol {
    explicit LoadedProtocol(Prt protocol);
    LoadedProtocol(LoadedProtocol &&) = default;
    LoadedProtocol &operator=(LoadedProtocol &&) = default;

    Prt prt;
    ProtocolHeader header;
    std::vector<ConditionRecord> records;

private:
    std::vector<std::vector<int>> m_bounds; ///< starts and ends of each condition, in turn
};

VMRHeader vmrHeader(const QString &path);

} // namespace corvane
