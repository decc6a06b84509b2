// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/report/html_page.h"
#include "host/report/subject_page.h"

/// @file
/// What the pages of a subject and of a study say of their runs alike.

namespace corvane
{

/// "20 done, 1 excluded, 2 missing": the counts of every status that there is.
QString statusText(const std::vector<ReportedRun> &runs);

/// The cells for a run's name, with a link to its page, its atlas and its status.
std::vector<PageCell> runCells(const ReportedRun &run);

} // namespace corvane
