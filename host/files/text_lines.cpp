// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/text_lines.h"

#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"
#include "host/files/text_check.h"

namespace corvane
{

std::vector<TextLine> readTextLines(const QString &path)
{
    const InputFile file(path);
    QByteArray bytes = file.all(largestTable);
    if (bytes.startsWith("\xef\xbb\xbf"))
        bytes = bytes.mid(3);
    std::vector<TextLine> lines;
    int number = 0;
    for (const QByteArray &line : bytes.split('\n')) {
        ++number;
        const std::optional<QString> text = fromStrictUtf8(line);
        if (!text || text->contains(QChar(0)))
            throw InputError(path, QStringLiteral("line %1").arg(number), quoted(line),
                             QStringLiteral("text in UTF-8"));
        if (!text->trimmed().isEmpty())
            lines.push_back({number, text->endsWith(QLatin1Char('\r')) ? text->chopped(1) : *text});
    }
    return lines;
}

bool isComment(const QString &line)
{
    return line.trimmed().startsWith(QLatin1Char('#'));
}

} // namespace corvane
