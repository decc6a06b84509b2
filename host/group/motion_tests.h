// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/group/group_data.h"
#include "statistics/qcfc.h"

namespace corvane
{

struct QcFcResult {
    const char *data; ///< "cleaned" or "uncleaned"
    statistics::QcFc qcfc;
};

/// How much the edges follow motion, and where there are uncleaned matrices how much they did
/// before. Throws statistics::Error.
std::vector<QcFcResult> testMotion(const GroupData &data);

/// What the user should know of the result, one line each.
QStringList motionNotes(const GroupData &data);

} // namespace corvane
