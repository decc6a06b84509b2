// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <string>

namespace corvane
{

/// Lines as one text that a failing test can show.
inline std::string joined(const QStringList &lines)
{
    return lines.join(QLatin1Char('\n')).toStdString();
}

} // namespace corvane
