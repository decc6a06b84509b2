// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>

namespace corvane
{

/// The colour of the network of that number. The first eight, after Okabe and Ito 2008, people with
/// any vision of colours tell apart; further ones go round the circle of hues.
QColor categoryColour(int number);

} // namespace corvane
