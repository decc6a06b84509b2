// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;

namespace corvane
{

/// What this program is, with the pages of its guide.
void showAbout(QWidget *window);

} // namespace corvane
