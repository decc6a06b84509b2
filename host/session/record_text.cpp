// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/session/record_text.h"

#include "host/files/input_error.h"
#include "host/session/log.h"

#include <QVector>
#include <algorithm>
#include <cstring>

namespace corvane
{

namespace
{

constexpr int shownInLog = 400;

bool continuesCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// Fills the field with what fits of the bytes; `continues` tells the bytes inside a character.
template <typename Continues>
void putBytes(char *field, std::size_t size, const QByteArray &bytes, Keep keep,
              const QString &what, const QString &text, Continues continues)
{
    const int room = static_cast<int>(size) - 1;
    int from = 0;
    int to = bytes.size();
    if (to > room) {
        if (keep == Keep::End) {
            from = to - room;
            while (from < to && continues(bytes[from]))
                ++from;
        } else {
            to = room;
            while (to > 0 && continues(bytes[to]))
                --to;
        }
        logText(QStringLiteral("%1 is %2 bytes long, plugins get %3 of them: %4")
                    .arg(what, QString::number(bytes.size()), QString::number(to - from),
                         quoted(text, shownInLog)));
    }
    std::memset(field, 0, size);
    std::copy(bytes.begin() + from, bytes.begin() + to, field);
}

} // namespace

void putUtf8(char *field, std::size_t size, const QString &text, Keep keep, const QString &what)
{
    putBytes(field, size, text.toUtf8(), keep, what, text, continuesCharacter);
}

void putLatin1(char *field, std::size_t size, const QString &text, Keep keep, const QString &what)
{
    QByteArray bytes;
    bool lacking = false;
    // Composed, so that an accent that comes as a character of its own is not lost.
    for (uint character : text.normalized(QString::NormalizationForm_C).toUcs4()) {
        const bool known = character < 256;
        bytes += known ? static_cast<char>(character) : '?';
        lacking = lacking || !known;
    }
    if (lacking)
        logText(QStringLiteral("%1 has characters that Latin-1 lacks, plugins get '?' for them: %2")
                    .arg(what, quoted(text, shownInLog)));
    putBytes(field, size, bytes, keep, what, text, [](char) { return false; });
}

} // namespace corvane
