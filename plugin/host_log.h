// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Formats into a zeroed buffer of 256 bytes and writes it to the host's log. A longer text is cut
/// at a character boundary of its UTF-8.
#if defined(__GNUC__)
__attribute__((format(printf, 1, 2)))
#endif
void logToHost(const char *format, ...);
