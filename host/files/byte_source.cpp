// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/byte_source.h"

#include "host/files/input_error.h"
#include "host/files/input_file.h"

#include <QFile>
#include <algorithm>
#include <isa-l/igzip_lib.h>
#include <vector>

namespace corvane
{

namespace
{

qint64 readFile(QFile &file, void *bytes, qint64 length)
{
    qint64 done = 0;
    while (done < length) {
        const qint64 got = file.read(static_cast<char *>(bytes) + done, length - done);
        if (got < 0)
            throw InputError(file.fileName(), QStringLiteral("byte %1").arg(file.pos()),
                             file.errorString(), QStringLiteral("a file that can be read"));
        if (got == 0)
            break;
        done += got;
    }
    return done;
}

class PlainBytes : public ByteSource
{
public:
    explicit PlainBytes(std::unique_ptr<QFile> file) : m_file(std::move(file)) {}

    qint64 read(void *bytes, qint64 length) override { return readFile(*m_file, bytes, length); }
    qint64 mostBytes() const override { return m_file->size(); }

private:
    std::unique_ptr<QFile> m_file;
};

class GzipBytes : public ByteSource
{
public:
    explicit GzipBytes(std::unique_ptr<QFile> file) : m_file(std::move(file)), m_packed(packedSize)
    {
        startMember();
        m_state->avail_in = 0;
    }

    qint64 read(void *bytes, qint64 length) override;

    // Deflate packs at most 258 bytes into two bits.
    qint64 mostBytes() const override { return m_file->size() * 1032; }

private:
    static constexpr std::size_t packedSize = 1 << 18;

    /// Makes sure that there is a packed byte to look at. False at the end of the file.
    bool fill();
    /// Goes to the next member. False when there is none.
    bool nextMember();
    void startMember();
    void inflate();
    [[noreturn]] void fail(const QString &found, const QString &expected) const;

    std::unique_ptr<QFile> m_file;
    std::vector<std::uint8_t> m_packed;
    std::unique_ptr<inflate_state> m_state = std::make_unique<inflate_state>();
    bool m_ended = false;
};

qint64 GzipBytes::read(void *bytes, qint64 length)
{
    qint64 done = 0;
    while (done < length && !m_ended) {
        const qint64 piece = std::min<qint64>(length - done, 1 << 30);
        m_state->next_out = static_cast<std::uint8_t *>(bytes) + done;
        m_state->avail_out = static_cast<std::uint32_t>(piece);
        inflate();
        done += piece - m_state->avail_out;
        if (m_state->block_state == ISAL_BLOCK_FINISH)
            m_ended = !nextMember();
    }
    return done;
}

void GzipBytes::inflate()
{
    // At the end of the file the decoder may still hold bytes of its own to give out.
    const bool more = fill();
    const std::uint32_t room = m_state->avail_out;
    const int status = isal_inflate(m_state.get());
    if (status == ISAL_INCORRECT_CHECKSUM)
        fail(QStringLiteral("a wrong check sum"), QStringLiteral("that of the unpacked data"));
    if (status != ISAL_DECOMP_OK && status != ISAL_END_INPUT)
        fail(QStringLiteral("damaged packed data"), QStringLiteral("gzip data"));
    if (!more && m_state->avail_out == room && m_state->block_state != ISAL_BLOCK_FINISH)
        fail(QStringLiteral("the end of the file"), QStringLiteral("more gzip data"));
}

bool GzipBytes::fill()
{
    if (m_state->avail_in > 0)
        return true;
    const qint64 got = readFile(*m_file, m_packed.data(), static_cast<qint64>(m_packed.size()));
    m_state->next_in = m_packed.data();
    m_state->avail_in = static_cast<std::uint32_t>(got);
    return got > 0;
}

bool GzipBytes::nextMember()
{
    bool padded = false;
    while (fill() && *m_state->next_in == 0) {
        ++m_state->next_in;
        --m_state->avail_in;
        padded = true;
    }
    if (m_state->avail_in == 0)
        return false;
    if (padded || *m_state->next_in != 0x1f)
        fail(QStringLiteral("bytes that are no gzip data"), QStringLiteral("the end of the file"));
    startMember();
    return true;
}

void GzipBytes::startMember()
{
    std::uint8_t *const next = m_state->next_in;
    const std::uint32_t available = m_state->avail_in;
    isal_inflate_init(m_state.get());
    m_state->crc_flag = ISAL_GZIP;
    m_state->next_in = next;
    m_state->avail_in = available;
}

void GzipBytes::fail(const QString &found, const QString &expected) const
{
    const qint64 offset = m_file->pos() - m_state->avail_in;
    throw InputError(m_file->fileName(), QStringLiteral("byte %1").arg(offset), found, expected);
}

} // namespace

std::unique_ptr<ByteSource> openBytes(const QString &path)
{
    auto file = std::make_unique<QFile>(path);
    openInput(*file);
    uchar magic[2] = {0, 0};
    readFile(*file, magic, 2);
    file->seek(0);
    if (magic[0] == 0x1f && magic[1] == 0x8b)
        return std::make_unique<GzipBytes>(std::move(file));
    return std::make_unique<PlainBytes>(std::move(file));
}

} // namespace corvane
