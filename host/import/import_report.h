// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

namespace corvane
{

/// What is to be told of an import.
struct ImportReport {
    QStringList notes;   ///< what the user should look at, one line each
    QStringList summary; ///< what was made, one line each
};

/// Notes go to standard error and the summary to standard output.
void printReport(const ImportReport &report);

} // namespace corvane
