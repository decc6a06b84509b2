// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/nifti_stream.h"

#include "host/files/input_error.h"

#include <algorithm>
#include <nifti/nifti2_io.h>

namespace corvane
{

namespace
{

QByteArray readAtMost(ByteSource &source, qint64 length)
{
    QByteArray bytes(static_cast<int>(length), '\0');
    bytes.truncate(static_cast<int>(source.read(bytes.data(), length)));
    return bytes;
}

} // namespace

NiftiStream::NiftiStream(const QString &path) : m_path(path), m_source(openBytes(path))
{
    QByteArray bytes = readAtMost(*m_source, 4);
    bytes += readAtMost(*m_source, std::max(0, niftiHeaderLength(bytes) - 4));
    m_header = parseNiftiHeader(bytes, m_source->mostBytes(), path);

    // Between header and samples stand extensions, of no use here.
    qint64 position = bytes.size();
    while (position < m_header.dataOffset) {
        const qint64 skipped =
            readAtMost(*m_source, std::min<qint64>(m_header.dataOffset - position, 1 << 16)).size();
        if (skipped == 0)
            throw InputError(path, QStringLiteral("byte %1").arg(position),
                             QStringLiteral("the end of the data"),
                             QStringLiteral("samples from byte %1").arg(m_header.dataOffset));
        position += skipped;
    }
}

void NiftiStream::read(void *samples, qint64 count)
{
    const qint64 length = count * m_header.sampleSize;
    const qint64 got = m_source->read(samples, length);
    if (got < length) {
        const qint64 perVolume = m_header.voxelsPerVolume();
        qint64 total = 1;
        for (const qint64 axis : m_header.dim)
            total *= axis;
        const qint64 complete = (m_samplesRead + got / m_header.sampleSize) / perVolume;
        throw InputError(m_path, QStringLiteral("samples"),
                         QStringLiteral("%1 bytes, %2 complete volumes")
                             .arg(m_samplesRead * m_header.sampleSize + got)
                             .arg(complete),
                         QStringLiteral("%1 bytes, %2 volumes")
                             .arg(total * m_header.sampleSize)
                             .arg(total / perVolume));
    }
    m_samplesRead += count;
    if (m_header.swapped && m_header.sampleSize > 1)
        nifti_swap_Nbytes(count, m_header.sampleSize, samples);
}

void NiftiStream::finish(QStringList &notes)
{
    const qint64 extra =
        readAtMost(*m_source, std::min<qint64>(m_header.bytesPerVolume(), 1 << 30)).size();
    if (extra == 0)
        return;
    if (extra == m_header.bytesPerVolume())
        throw InputError(m_path, QStringLiteral("samples"),
                         QStringLiteral("another volume behind the last one"),
                         QStringLiteral("%1 bytes, as the header says")
                             .arg(m_samplesRead * m_header.sampleSize));
    notes += QStringLiteral("%1: %2 bytes behind the last volume are left out")
                 .arg(printable(m_path, 4096))
                 .arg(extra);
}

} // namespace corvane
