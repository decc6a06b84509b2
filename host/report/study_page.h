// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/report/subject_page.h"

#include <utility>

namespace corvane
{

/// What the page of a study tells of its participants.
struct StudySummary {
    struct Row {
        QString participant; ///< "sub-01"
        QString page;        ///< the subject's page, relative to the study's; empty for none
        ReportedRun run;     ///< its own page is relative to the study's page too
    };

    QString title;                                     ///< of the dataset; may be empty
    std::vector<std::pair<QString, QString>> settings; ///< what was asked for: name and value
    std::vector<Row> rows;                             ///< a row for each run and atlas
    QString table; ///< the file with the same rows, relative to the page; empty for none
};

/// The HTML page of a study: how many runs are done, those that are not with their reasons,
/// distributions of motion, kept volumes and degrees of freedom, settings, and a table of all runs.
/// Beyond 3,000 rows the table is left out and the page says where it is. Needs a QGuiApplication.
QByteArray studyPage(const StudySummary &study);

} // namespace corvane
