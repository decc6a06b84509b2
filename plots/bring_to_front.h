// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;

/// Shows a window where it is seen, also one that is minimised or covered by others.
void bringToFront(QWidget *window);
