// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QWidget;

/// Asks for a PNG file with a dialog of `window` and saves `source` into it as it looks then.
/// Silent whatever comes of it; a file that cannot be written whole is not left behind.
void exportPicture(QWidget *window, QWidget *source);

/// Lets menus and dialogs look as they do elsewhere where a window has a style sheet for its
/// background, which reaches its children and would leave them white, and half of their controls
/// undrawn.
QString neutralStyleSheet();
