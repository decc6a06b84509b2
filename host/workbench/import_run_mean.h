// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/import/functional_grid.h"

#include <QString>
#include <atomic>
#include <vector>

namespace corvane
{

/// The mean of all volumes of a run that is about to be imported, at the points of its lattice,
/// first axis fastest. The whole run is read: this is for a thread of its own. Empty once
/// `isOutdated` is true. Throws InputError.
std::vector<double> meanBeforeImport(const QString &run, const FunctionalGrid &grid,
                                     const std::atomic<bool> &isOutdated);

} // namespace corvane
