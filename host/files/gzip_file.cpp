// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/gzip_file.h"

#include <algorithm>
#include <new>
#include <vector>
#define ZLIB_CONST // what is packed is not written to
#include <zlib.h>

namespace corvane
{

namespace
{

constexpr int gzipOfLargestWindow = MAX_WBITS + 16;
constexpr int mostMemory = 9;
constexpr int unknownSystem = 255;

} // namespace

class GzipFile::Packer
{
public:
    Packer() : m_packed(1 << 18)
    {
        if (deflateInit2(&m_stream, Z_BEST_SPEED, Z_DEFLATED, gzipOfLargestWindow, mostMemory,
                         Z_DEFAULT_STRATEGY) != Z_OK)
            throw std::bad_alloc();
        m_header.os = unknownSystem;
        deflateSetHeader(&m_stream, &m_header);
    }
    Packer(const Packer &) = delete;
    Packer &operator=(const Packer &) = delete;
    ~Packer() { deflateEnd(&m_stream); }

    void pack(const void *bytes, qint64 length, int flush, OutputFile &to)
    {
        m_stream.next_in = static_cast<const Bytef *>(bytes);
        do {
            const qint64 piece = std::min<qint64>(length, 1 << 30);
            m_stream.avail_in = static_cast<uInt>(piece);
            packPiece(flush, to);
            length -= piece;
        } while (length > 0);
    }

private:
    void packPiece(int flush, OutputFile &to)
    {
        do {
            m_stream.next_out = m_packed.data();
            m_stream.avail_out = static_cast<uInt>(m_packed.size());
            deflate(&m_stream, flush);
            to.write(reinterpret_cast<const char *>(m_packed.data()),
                     static_cast<qint64>(m_packed.size()) - m_stream.avail_out);
        } while (m_stream.avail_out == 0);
    }

    std::vector<Bytef> m_packed;
    z_stream m_stream{};
    gz_header m_header{};
};

GzipFile::GzipFile(const QString &path) : m_file(path), m_packer(std::make_unique<Packer>()) {}

GzipFile::~GzipFile() = default;

void GzipFile::write(const void *bytes, qint64 length)
{
    m_packer->pack(bytes, length, Z_NO_FLUSH, m_file);
}

void GzipFile::commit()
{
    m_packer->pack(nullptr, 0, Z_FINISH, m_file);
    m_file.commit();
}

} // namespace corvane
