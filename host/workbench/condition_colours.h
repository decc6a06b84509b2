// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QString>

namespace corvane
{

/// The colour of a condition, wherever conditions are drawn: each name keeps its own, in every run
/// and in later sessions. Names get their colours in the order in which they first come up.
QColor conditionColour(const QString &name);

} // namespace corvane
