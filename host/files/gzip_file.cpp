// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/gzip_file.h"

#include <algorithm>
#include <isa-l/igzip_lib.h>

namespace corvane
{

GzipFile::GzipFile(const QString &path)
    : m_file(path), m_packed(1 << 18), m_working(ISAL_DEF_LVL1_DEFAULT),
      m_stream(std::make_unique<isal_zstream>())
{
    isal_deflate_init(m_stream.get());
    m_stream->gzip_flag = IGZIP_GZIP;
    m_stream->level = 1;
    m_stream->level_buf = m_working.data();
    m_stream->level_buf_size = static_cast<std::uint32_t>(m_working.size());
}

GzipFile::~GzipFile() = default;

void GzipFile::commit()
{
    pack(nullptr, 0, true);
    m_file.commit();
}

void GzipFile::pack(const void *bytes, qint64 length, bool last)
{
    // The library takes its input through a pointer to bytes that it might write, and does not.
    auto *next = static_cast<std::uint8_t *>(const_cast<void *>(bytes));
    do {
        const qint64 piece = std::min<qint64>(length, 1 << 30);
        m_stream->next_in = next;
        m_stream->avail_in = static_cast<std::uint32_t>(piece);
        m_stream->end_of_stream = last;
        do {
            m_stream->next_out = m_packed.data();
            m_stream->avail_out = static_cast<std::uint32_t>(m_packed.size());
            isal_deflate(m_stream.get());
            m_file.write(reinterpret_cast<const char *>(m_packed.data()),
                         static_cast<qint64>(m_packed.size()) - m_stream->avail_out);
        } while (m_stream->avail_out == 0);
        next += piece;
        length -= piece;
    } while (length > 0);
}

} // namespace corvane
