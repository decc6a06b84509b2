// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

namespace corvane
{

/// The names of files without their folders, in one line: "sub-01.vmr, .vtc, .voi, blocks.prt". One
/// that differs from the one before it by its ending alone is that ending.
QString namesTogether(const QStringList &files);

} // namespace corvane
