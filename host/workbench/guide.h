// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

class QWidget;

/// @file
/// The user's guide: pages of HTML beside the program, which the user's browser shows.

namespace corvane
{

/// Where the pages are: the folder that the environment variable CORVANE_GUIDE names, else the one
/// that is installed.
QString guideFolder();

/// The page about a window or what it belongs to, by its name without ending. The windows of
/// plugins are known by the names of their classes.
QString guidePageOf(const QWidget *widget);

/// Opens a page in the browser. Gives what is wrong, empty when nothing is.
QString openGuide(const QString &page);

/// F1 in any window of the program, also in a modal one: opens the page of that window.
class HelpKey : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

Q_SIGNALS:
    void pressed(QWidget *widget);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace corvane
