// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/provenance.h"

#include <QString>
#include <utility>
#include <vector>

/// @file
/// Stimulation protocols: `.prt`, tab-separated text; docs/file-formats.md has it exactly.

namespace corvane
{

struct PrtCondition {
    QString name; ///< not empty, without control characters; names may repeat
    /// (from, to) in volumes: they count from 1 and both ends belong to the interval, 1 <= from <=
    /// to.
    std::vector<std::pair<int, int>> intervals;
};

struct Prt {
    QString name; ///< without control characters, may be empty
    Provenance provenance;
    int timeUnit = 1; ///< 1: volumes; any other value from 0 is handed to plugins as it stands
    std::vector<PrtCondition> conditions;
};

/// Throws InputError.
Prt readPrtFile(const QString &path);

/// Throws InputError, also for a protocol that readPrtFile would refuse.
void writePrtFile(const QString &path, const Prt &prt);

} // namespace corvane
