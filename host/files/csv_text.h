// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace corvane
{

/// A text as one field of a CSV file, in quotes where it needs them (RFC 4180).
QByteArray csvField(const QString &text);

/// The shortest text that reads back as the same float; "nan", "inf", "-inf".
QByteArray csvField(float value);

} // namespace corvane
