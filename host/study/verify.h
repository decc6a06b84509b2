// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/study/run_rows.h"

namespace corvane
{

/// Makes the request, without files, that a record's options stand for.
using RequestMaker = std::function<ConnectomeRequest(const QJsonObject &options)>;

struct VerifyCounts {
    int rows = 0;   ///< that were computed again, or whose inputs were read
    int differ = 0; ///< of these
};

/// Computes rows of a study again, those that are done or excluded, and compares them byte for byte
/// with what is there: `sample` of them, spread over the study, or all for 0. Each difference is
/// told. Nothing is written to the study. Throws InputError when it cannot work at all.
VerifyCounts verifyRows(const QString &out, int sample, const RequestMaker &requestOf,
                        const Tell &tell);

/// Reads the inputs of all rows in full and compares their sums with those of the records.
VerifyCounts verifyInputs(const QString &out, const Tell &tell);

} // namespace corvane
