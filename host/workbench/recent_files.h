// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMenu>

namespace corvane
{

/// The menu of the files that were opened last, newest first, remembered between sessions.
class RecentFilesMenu : public QMenu
{
    Q_OBJECT

public:
    explicit RecentFilesMenu(QWidget *parent = nullptr);

    void add(const QString &path);

Q_SIGNALS:
    void chosen(const QString &path);

private:
    void fill();
};

} // namespace corvane
