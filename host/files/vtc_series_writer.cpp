// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/vtc_series_writer.h"

namespace corvane
{

VtcSeriesWriter::VtcSeriesWriter(const QString &path, const VtcInfo &info)
    : m_info(info), m_file(path)
{
    Q_ASSERT(info.type == VtcInfo::Float);
    m_info.checksum.clear();
    m_headerLength = vtcFileHeader(m_info).size();
    m_file.reserve(m_headerLength + info.sampleCount() * info.sampleSize());
}

void VtcSeriesWriter::add(const float *samples, qint64 count)
{
    Q_ASSERT(m_added + count <= m_info.sampleCount());
    m_sum.add(samples, count, quint64(m_added));
    const auto size = qint64(sizeof(float));
    m_file.writeAt(m_headerLength + m_added * size, reinterpret_cast<const char *>(samples),
                   count * size);
    m_added += count;
}

void VtcSeriesWriter::commit()
{
    Q_ASSERT(m_added == m_info.sampleCount());
    m_info.checksum = m_sum.text();
    const QByteArray header = vtcFileHeader(m_info);
    m_file.writeAt(0, header.constData(), header.size());
    m_file.commit();
}

} // namespace corvane
