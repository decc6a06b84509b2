// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/output_file.h"
#include "host/files/vtc_checksum.h"
#include "host/files/vtc_file.h"

namespace corvane
{

/// Writes a `.vtc` of floats whose samples come in the order of the file: a whole series of one
/// voxel after the other. The file is there after commit(); destroyed without it, nothing is left.
class VtcSeriesWriter
{
public:
    /// `info` need not hold a checksum. Throws InputError when there is no room or no access.
    VtcSeriesWriter(const QString &path, const VtcInfo &info);

    /// Takes the next samples. Throws InputError.
    void add(const float *samples, qint64 count);

    /// Writes the checksum and gives the file its name. All samples must have been added. Throws
    /// InputError.
    void commit();

private:
    VtcInfo m_info;
    OutputFile m_file;
    qint64 m_headerLength = 0;
    qint64 m_added = 0;
    VtcChecksum m_sum;
};

} // namespace corvane
