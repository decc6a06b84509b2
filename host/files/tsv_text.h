// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayList>

/// @file
/// What tables with tabs between their cells are written of.

namespace corvane
{

/// The shortest decimal that reads back as the same number; "n/a" for NaN.
QByteArray cell(double number);

/// A line of a table.
QByteArray line(const QByteArrayList &cells);

} // namespace corvane
