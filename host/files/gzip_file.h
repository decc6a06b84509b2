// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/output_file.h"

#include <memory>

namespace corvane
{

/// A gzip file that is written from its first byte to its last. It appears whole or not at all, as
/// an OutputFile.
///
/// By zlib, whose bytes are the same for the same content wherever it runs. ISA-L, which reads such
/// files here, takes an address for a part of the content: one file of some thousands would differ.
class GzipFile
{
public:
    /// Throws InputError when nothing can be written there.
    explicit GzipFile(const QString &path);
    ~GzipFile();

    /// Throws InputError when the packed bytes do not fit.
    void write(const void *bytes, qint64 length);

    /// Throws InputError.
    void commit();

private:
    class Packer;

    OutputFile m_file;
    std::unique_ptr<Packer> m_packer;
};

} // namespace corvane
