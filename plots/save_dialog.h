// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QWidget;

/// Asks for the file to write. `suffix` is added to a name without one. Empty when the dialog is
/// cancelled or when the window closed under it.
QString askForTarget(QWidget *window, const QString &filter, const QString &suffix);
