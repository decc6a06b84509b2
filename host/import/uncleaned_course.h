// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/vtc_file.h"

#include <array>
#include <atomic>
#include <vector>

namespace corvane
{

/// The time course of a lattice point of a cleaned file before the cleaning, at the volumes that
/// were kept, from the run itself: it is read from its beginning to its end. Empty when
/// `isOutdated` becomes true before. Throws InputError when the run is not there or has changed.
/// The file has `uncleaned` in its header.
std::vector<double> uncleanedCourseAt(const VtcInfo &vtc, const std::array<int, 3> &point,
                                      const std::atomic<bool> &isOutdated);

} // namespace corvane
