// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/file_sum.h"

#include "host/files/input_error.h"
#include "host/files/input_file.h"

#include <QFile>

#include <isa-l/crc64.h>
#include <vector>

namespace corvane
{

quint64 fileSum(const QString &path)
{
    constexpr std::size_t pieceLength = 1 << 18;
    QFile file(path);
    openInput(file);
    std::vector<char> piece(pieceLength);
    quint64 sum = 0;
    for (;;) {
        const qint64 length = file.read(piece.data(), qint64(piece.size()));
        if (length < 0)
            throw InputError(path, QStringLiteral("reading"), file.errorString(),
                             QStringLiteral("a file that can be read"));
        if (length == 0)
            return sum;
        sum = crc64_ecma_refl(sum, reinterpret_cast<const unsigned char *>(piece.data()),
                              quint64(length));
    }
}

} // namespace corvane
