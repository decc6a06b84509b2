// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host_log.h"

#include "plugin/host_functions.h"

#include <cstdarg>
#include <cstddef>
#include <cstdio>

namespace
{

bool isContinuationByte(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0u) == 0x80u;
}

} // namespace

void logToHost(const char *format, ...)
{
    char buffer[256] = {};
    va_list arguments;
    va_start(arguments, format);
    const int wanted = std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);

    if (wanted >= static_cast<int>(sizeof buffer)) {
        // What was cut may be the middle of a character: take its lead byte away too, unless the
        // character happens to be complete.
        std::size_t lead = sizeof buffer - 2;
        while (lead > 0 && isContinuationByte(buffer[lead]))
            --lead;
        const auto byte = static_cast<unsigned char>(buffer[lead]);
        const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
        if (lead + length > sizeof buffer - 1)
            buffer[lead] = '\0';
    }
    hostFunctions().zqLogText(buffer);
}
