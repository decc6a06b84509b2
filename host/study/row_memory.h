// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/study/study_row.h"

namespace corvane
{

/// About how many bytes a process takes that computes these rows one after the other: by the
/// headers of their images. Rows whose images cannot be read take none.
qint64 memoryFor(const std::vector<StudyRow> &rows);

} // namespace corvane
