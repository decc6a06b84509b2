// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/file_lock.h"
#include "host/study/study_plan.h"

namespace corvane
{

/// Rows of a study, counted by what became of them.
struct StudyCounts {
    int rows = 0;
    int done = 0, excluded = 0, missing = 0, failed = 0;
    int inWork = 0; ///< a process is at them now
    int open = 0;   ///< planned only
};

struct StudyStatus {
    StudyCounts counts;
    QStringList lines; ///< one for each row that is neither done nor open
};

/// Of all participants of a study, or of those of the folders. Reads records only. Throws
/// InputError for a folder that holds no study.
StudyStatus studyStatus(const QString &out, const QStringList &folders);

/// "12 rows: 10 done, 1 excluded, 1 failed"
QString text(const StudyCounts &counts);

/// Throws InputError unless there are participants of a study below the folder.
void requireStudy(const QString &out);

} // namespace corvane
