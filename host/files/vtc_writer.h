// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/output_file.h"
#include "host/files/vtc_checksum.h"
#include "host/files/vtc_file.h"

#include <vector>

namespace corvane
{

/// Writes a `.vtc` from volumes that come one after the other, though in the file the time runs
/// fastest. A block of volumes is gathered in memory and then laid across the file, which has its
/// full length from the start: that takes a fraction of the memory of the run, and a disk that is
/// too small is noticed before the work begins. The file is there after commit(); destroyed
/// without it, nothing is left.
class VtcWriter
{
public:
    /// `info` need not hold a checksum. `blockBytes` is the memory for waiting volumes, at least
    /// one; 0 takes half of the samples, but 64 MiB or more and 1 GiB or less. Throws InputError
    /// when there is no room or no access.
    VtcWriter(const QString &path, const VtcInfo &info, qint64 blockBytes = 0);
    VtcWriter(const VtcWriter &) = delete;
    VtcWriter &operator=(const VtcWriter &) = delete;

    /// Where the next volume goes, first axis fastest: short or float, whichever the file holds.
    short *shortVolume();
    float *floatVolume();

    /// Takes the volume that was filled in. Throws InputError.
    void addVolume();

    /// Writes what is left, the checksum and the file's name. All volumes must have been added.
    /// Throws InputError.
    void commit();

    const QString &checksum() const { return m_info.checksum; }

private:
    void flush();
    template <typename Sample>
    void addToChecksum();
    template <typename Sample>
    void layAcross();
    void writeHeader();
    char *nextVolume();

    VtcInfo m_info;
    OutputFile m_file;
    qint64 m_headerLength = 0;
    qint64 m_voxelCount = 0;
    int m_blockLength = 0;  ///< volumes that fit in m_block
    int m_firstInBlock = 0; ///< volume with which m_block begins
    int m_inBlock = 0;      ///< volumes in m_block
    std::vector<char> m_block;
    VtcChecksum m_sum;
};

} // namespace corvane
