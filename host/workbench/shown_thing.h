// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QPixmap>
#include <QString>
#include <functional>

class QPoint;
class QWidget;

namespace corvane
{

/// What a view shows, for those who want to take it along.
struct ShownThing {
    QString name; ///< for a file, without ending
    std::function<QPixmap()> picture;
    std::function<QByteArray()> table; ///< with tabs between its cells; empty: there is none
};

/// The menu of a right click: copies or saves the picture or the table. What cannot be written is
/// told in a box.
void popupShownThing(QWidget *view, const QPoint &globalPlace, const ShownThing &thing);

} // namespace corvane
