// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QMargins>
#include <QRect>
#include <optional>
#include <vector>

class QWidget;

/// @file
/// Where windows stand while people watch a tour: side by side, so that none covers what another
/// shows, with a column at the right for the card that tells of it.

namespace corvane
{

/// What a window needs. Sizes are without its frame.
struct StageWindow {
    QSize wanted;
    QSize least;
    QMargins frame;
    bool isNeeded = false; ///< it cannot be put away: those before it leave room for it
};

/// The column of the card, and what is left for windows.
struct Stage {
    QRect windows;
    QRect card;
};
Stage stageOf(const QRect &screen);

/// Places for the insides of windows on a stage, in columns from the right, those that matter most
/// first: the first always has one, and the last takes all that is left. None for those that have no
/// room.
std::vector<std::optional<QRect>> placesOn(const QRect &stage,
                                           const std::vector<StageWindow> &windows);

/// Arranges the windows of the program on the screen of `front`, which matters most; those that
/// have no room are minimised, unless `front` belongs to them. Windows of menus and tips stay.
void arrangeWindows(QWidget *front);

} // namespace corvane
