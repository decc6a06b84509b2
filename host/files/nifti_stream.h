// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/byte_source.h"
#include "host/files/nifti_header.h"

namespace corvane
{

/// A NIfTI-1 or NIfTI-2 file, plain or packed with gzip, read from its first sample to its last.
/// It opens the very file that it is told, whatever lies beside it.
class NiftiStream
{
public:
    /// Reads and checks the header. Throws InputError.
    explicit NiftiStream(const QString &path);

    const QString &path() const { return m_path; }
    const NiftiHeader &header() const { return m_header; }

    /// Reads the next samples as they are stored, in this machine's byte order.
    /// Throws InputError when the data end before.
    void read(void *samples, qint64 count);

    /// To be called behind the last sample. Says in `notes` when a few bytes follow, which some
    /// programs leave there. Throws InputError when as much as another volume follows, which the
    /// header does not know of, and when the end of packed data is damaged.
    void finish(QStringList &notes);

private:
    QString m_path;
    std::unique_ptr<ByteSource> m_source;
    NiftiHeader m_header;
    qint64 m_samplesRead = 0;
};

} // namespace corvane
