// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <vector>

namespace corvane
{

/// A run with an atlas, as the pages of its subject and its study tell of it.
struct ReportedRun {
    QString name;       ///< "ses-1_task-rest_space-T1w", without the subject
    QString atlas;      ///< as files are named
    QString status;     ///< "done", "excluded", "missing", "failed" or "open"
    QString reason;     ///< why it is not done; empty for none
    QString page;       ///< the run's page, relative to the subject's; empty for none
    QJsonObject ledger; ///< of ledgerJson(); empty when it is not known
};

/// The HTML page of a subject: its runs with status, ledger and links to their pages. Needs no
/// QGuiApplication.
QByteArray subjectPage(const QString &participant, const std::vector<ReportedRun> &runs);

} // namespace corvane
