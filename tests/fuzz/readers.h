// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <string>

/// @file
/// Every reader of files and texts that needs no image library but libnifti, each as a function of
/// bytes: for libFuzzer (fuzz_readers.cpp), and for the files that it found (test_corpus.cpp).

namespace reading
{

struct Reader {
    const char *name;
    /// Reads the bytes, from a file where it reads files, and looks at all of the result.
    void (*read)(const QByteArray &bytes);
    bool namesFile; ///< whether its errors begin with a path
};

const Reader *begin();
const Reader *end();

/// The error that a reader gives for the bytes, empty for none. Aborts, with a text, for a result
/// or an error that is not as it must be.
std::string errorOf(const Reader &reader, const QByteArray &bytes);

} // namespace reading
