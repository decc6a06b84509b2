// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

class QMimeData;

namespace corvane
{

/// Paths of the files of this computer among what is dragged or dropped.
QStringList droppedFiles(const QMimeData *data);

} // namespace corvane
