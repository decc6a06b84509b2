// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/csv_text.h"

#include <charconv>
#include <cmath>

namespace corvane
{

QByteArray csvField(const QString &text)
{
    QByteArray field = text.toUtf8();
    const bool needsQuotes =
        field.contains(',') || field.contains('"') || field.contains('\n') || field.contains('\r');
    if (!needsQuotes)
        return field;
    field.replace("\"", "\"\"");
    return '"' + field + '"';
}

QByteArray csvField(float value)
{
    if (std::isnan(value))
        return "nan";
    char text[32];
    const auto result = std::to_chars(text, text + sizeof text, value);
    return {text, static_cast<int>(result.ptr - text)};
}

} // namespace corvane
