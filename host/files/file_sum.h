// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace corvane
{

/// CRC-64 (ECMA-182, bits reflected) of all bytes of a file: at gigabytes a second, a sum by which
/// damage is found, not forgery. Throws InputError.
quint64 fileSum(const QString &path);

} // namespace corvane
