// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// @file
/// What can be told of a library without loading it.

namespace corvane
{

/// Why this program cannot load a library, where the system would say something else or end the
/// program: it was built for another kind of computer, or its end is missing. Empty when nothing of
/// this is the case; what the system says of it counts then.
QString libraryFault(const QString &path);

} // namespace corvane
