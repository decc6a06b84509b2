// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/vtc_writer.h"

#include "host/input_error.h"

#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <cstring>
#ifdef Q_OS_UNIX
#include <fcntl.h>
#endif

namespace corvane
{

namespace
{

/// Memory for volumes that wait to be laid across the file: half of the samples, so that the file
/// is gone through twice, within these bounds.
constexpr qint64 smallestBlock = qint64(64) << 20;
constexpr qint64 largestBlock = qint64(512) << 20;

/// How much of the file is mapped at a time.
constexpr qint64 windowBytes = qint64(4) << 20;

/// Voxels whose series are laid down together: two cache lines of each volume.
constexpr qint64 tile = 64;

int blockLength(const VtcInfo &info, qint64 voxelCount)
{
    const qint64 volumeBytes = voxelCount * info.sampleSize();
    const qint64 half = volumeBytes * ((info.nrOfVolumes + 1) / 2);
    const qint64 wanted = std::min(std::max(half, smallestBlock), largestBlock);
    const qint64 volumes = std::max<qint64>(1, wanted / volumeBytes);
    return static_cast<int>(std::min<qint64>(volumes, info.nrOfVolumes));
}

} // namespace

VtcWriter::VtcWriter(const QString &path, const VtcInfo &info)
    : m_path(path), m_info(info), m_file(path)
{
    m_info.checksum.clear();
    m_headerLength = vtcFileHeader(m_info).size();
    m_voxelCount = qint64(info.dimX()) * info.dimY() * info.dimZ();
    m_blockLength = blockLength(info, m_voxelCount);

    const QString expected = QStringLiteral("a place where a file can be written");
    if (QFileInfo(path).isDir())
        throw InputError(path, QStringLiteral("writing"), QStringLiteral("a folder"), expected);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        fail(QStringLiteral("writing"), expected);
    reserve();
    m_block.resize(static_cast<std::size_t>(m_voxelCount * info.sampleSize() * m_blockLength));
}

VtcWriter::~VtcWriter() = default;

short *VtcWriter::shortVolume()
{
    Q_ASSERT(m_info.type == VtcInfo::Short);
    return reinterpret_cast<short *>(nextVolume());
}

float *VtcWriter::floatVolume()
{
    Q_ASSERT(m_info.type == VtcInfo::Float);
    return reinterpret_cast<float *>(nextVolume());
}

void VtcWriter::addVolume()
{
    if (m_info.type == VtcInfo::Short)
        addToChecksum<short>();
    else
        addToChecksum<float>();
    ++m_inBlock;
    if (m_inBlock == m_blockLength)
        flush();
}

void VtcWriter::commit()
{
    flush();
    Q_ASSERT(m_firstInBlock == m_info.nrOfVolumes);
    m_info.checksum = m_sum.text();
    writeHeader();
    if (!m_file.commit())
        fail(QStringLiteral("finishing"), QStringLiteral("a file that can be completed"));
}

/// Gives the file its length with real room on the disk. Writing into mapped memory that has no
/// room behind it would end the process.
void VtcWriter::reserve()
{
    const qint64 length = m_headerLength + m_info.sampleCount() * m_info.sampleSize();
    const QString place = QStringLiteral("writing");
    const QString expected = QStringLiteral("room for %1 bytes").arg(length);
#ifdef Q_OS_UNIX
    const int status = posix_fallocate(m_file.handle(), 0, length);
    if (status != 0)
        throw InputError(m_path, place, QString::fromLocal8Bit(std::strerror(status)), expected);
#else
    if (!m_file.resize(length))
        fail(place, expected);
#endif
}

char *VtcWriter::nextVolume()
{
    Q_ASSERT(m_inBlock < m_blockLength);
    return m_block.data() + m_inBlock * m_voxelCount * m_info.sampleSize();
}

template <typename Sample>
void VtcWriter::addToChecksum()
{
    const auto *const volume = reinterpret_cast<const Sample *>(nextVolume());
    m_sum.add(volume, m_voxelCount, static_cast<quint64>(m_firstInBlock + m_inBlock),
              static_cast<quint64>(m_info.nrOfVolumes));
}

void VtcWriter::flush()
{
    if (m_inBlock == 0)
        return;
    if (m_info.type == VtcInfo::Short)
        layAcross<short>();
    else
        layAcross<float>();
    m_firstInBlock += m_inBlock;
    m_inBlock = 0;
}

template <typename Sample>
void VtcWriter::layAcross()
{
    const qint64 seriesBytes = qint64(m_info.nrOfVolumes) * qint64(sizeof(Sample));
    const qint64 perWindow = std::max<qint64>(1, windowBytes / seriesBytes);
    const auto *const block = reinterpret_cast<const Sample *>(m_block.data());
    for (qint64 first = 0; first < m_voxelCount; first += perWindow) {
        const qint64 end = std::min(m_voxelCount, first + perWindow);
        uchar *const window =
            m_file.map(m_headerLength + first * seriesBytes, (end - first) * seriesBytes);
        if (window == nullptr)
            fail(QStringLiteral("mapping"), QStringLiteral("a file that can be mapped"));
        Sample *const series = reinterpret_cast<Sample *>(window) + m_firstInBlock;
        for (qint64 low = first; low < end; low += tile) {
            const qint64 high = std::min(end, low + tile);
            for (qint64 voxel = low; voxel < high; ++voxel) {
                Sample *const to = series + (voxel - first) * m_info.nrOfVolumes;
                for (int t = 0; t < m_inBlock; ++t)
                    to[t] = block[t * m_voxelCount + voxel];
            }
        }
        m_file.unmap(window);
    }
}

void VtcWriter::writeHeader()
{
    const QByteArray header = vtcFileHeader(m_info);
    Q_ASSERT(header.size() == m_headerLength);
    if (!m_file.seek(0) || m_file.write(header) != header.size())
        fail(QStringLiteral("writing the header"), QStringLiteral("a file that can be written"));
}

void VtcWriter::fail(const QString &place, const QString &expected) const
{
    throw InputError(m_path, place, m_file.errorString(), expected);
}

} // namespace corvane
