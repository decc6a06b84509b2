// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/output_file.h"

#include <cstdint>
#include <memory>
#include <vector>

struct isal_zstream;

namespace corvane
{

/// A gzip file that is written from its first byte to its last. It appears whole or not at all, as
/// an OutputFile.
class GzipFile
{
public:
    /// Throws InputError when nothing can be written there.
    explicit GzipFile(const QString &path);
    ~GzipFile();

    /// Throws InputError when the packed bytes do not fit.
    void write(const void *bytes, qint64 length) { pack(bytes, length, false); }

    /// Throws InputError.
    void commit();

private:
    void pack(const void *bytes, qint64 length, bool last);

    OutputFile m_file;
    std::vector<std::uint8_t> m_packed;
    std::vector<std::uint8_t> m_working;
    std::unique_ptr<isal_zstream> m_stream;
};

} // namespace corvane
