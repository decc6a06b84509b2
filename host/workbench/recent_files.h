// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMenu>

namespace corvane
{

/// The menu of the subjects that were opened last, newest first, remembered between sessions: each
/// an anatomy with the run, the VOIs and the protocol that were opened on it.
class RecentFilesMenu : public QMenu
{
    Q_OBJECT

public:
    explicit RecentFilesMenu(QWidget *parent = nullptr);

    /// The files of a subject, which take the place of an entry with only some of them.
    void add(const QStringList &files);

Q_SIGNALS:
    void chosen(const QStringList &files);

private:
    void fill();
};

} // namespace corvane
