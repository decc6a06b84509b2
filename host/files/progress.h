// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QString>

namespace corvane
{

/// Progress of long work in one line on standard error, when that is a terminal; elsewhere nothing.
/// The line disappears with the object.
class Progress
{
public:
    Progress(const QString &what, qint64 total);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// Cheap enough to be called for every volume.
    void update(qint64 done);

private:
    QString m_what;
    qint64 m_total;
    bool m_onTerminal;
    bool m_shown = false;
    QElapsedTimer m_sinceShown;
};

} // namespace corvane
