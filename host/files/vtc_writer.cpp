// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/vtc_writer.h"

#include <algorithm>

namespace corvane
{

namespace
{

/// Bounds of the memory for volumes that wait to be laid across the file.
constexpr qint64 smallestBlock = qint64(64) << 20;
constexpr qint64 largestBlock = qint64(1) << 30;

/// How much of the file is in memory at a time.
constexpr qint64 windowBytes = qint64(1) << 20;

/// Voxels whose series are laid down together: two cache lines of each volume.
constexpr qint64 tile = 64;

/// Half of the samples, within the bounds.
qint64 usualBlock(qint64 volumeBytes, int volumes)
{
    const qint64 half = volumeBytes * ((volumes + 1) / 2);
    return std::min(std::max(half, smallestBlock), largestBlock);
}

int blockLength(const VtcInfo &info, qint64 voxelCount, qint64 blockBytes)
{
    const qint64 volumeBytes = voxelCount * info.sampleSize();
    const qint64 wanted = blockBytes > 0 ? blockBytes : usualBlock(volumeBytes, info.nrOfVolumes);
    const qint64 volumes = std::max<qint64>(1, wanted / volumeBytes);
    return static_cast<int>(std::min<qint64>(volumes, info.nrOfVolumes));
}

} // namespace

VtcWriter::VtcWriter(const QString &path, const VtcInfo &info, qint64 blockBytes)
    : m_info(info), m_file(path)
{
    m_info.checksum.clear();
    m_headerLength = vtcFileHeader(m_info).size();
    m_voxelCount = qint64(info.dimX()) * info.dimY() * info.dimZ();
    m_blockLength = blockLength(info, m_voxelCount, blockBytes);
    m_file.reserve(m_headerLength + info.sampleCount() * info.sampleSize());
    m_block.resize(static_cast<std::size_t>(m_voxelCount * info.sampleSize() * m_blockLength));
}

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
    m_file.commit();
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
    m_sum.add(volume, m_voxelCount, quint64(m_firstInBlock) + quint64(m_inBlock),
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
    std::vector<Sample> window(static_cast<std::size_t>(perWindow * m_info.nrOfVolumes));
    auto *const bytes = reinterpret_cast<char *>(window.data());
    for (qint64 first = 0; first < m_voxelCount; first += perWindow) {
        const qint64 end = std::min(m_voxelCount, first + perWindow);
        const qint64 place = m_headerLength + first * seriesBytes;
        const qint64 length = (end - first) * seriesBytes;
        // Beside what is new stands what earlier blocks have left there.
        if (m_firstInBlock > 0)
            m_file.readAt(place, bytes, length);
        for (qint64 low = first; low < end; low += tile) {
            const qint64 high = std::min(end, low + tile);
            for (qint64 voxel = low; voxel < high; ++voxel) {
                Sample *const to =
                    window.data() + (voxel - first) * m_info.nrOfVolumes + m_firstInBlock;
                for (int t = 0; t < m_inBlock; ++t)
                    to[t] = block[t * m_voxelCount + voxel];
            }
        }
        m_file.writeAt(place, bytes, length);
    }
}

void VtcWriter::writeHeader()
{
    const QByteArray header = vtcFileHeader(m_info);
    Q_ASSERT(header.size() == m_headerLength);
    m_file.writeAt(0, header.constData(), header.size());
}

} // namespace corvane
