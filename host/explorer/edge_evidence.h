// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/network_result.h"

namespace corvane
{

/// What there is behind one number of a matrix.
struct EdgeEvidence {
    int from = 0, to = 0;
    QString title;     ///< the names of both nodes
    QStringList lines; ///< value, intervals, degrees of freedom, voxels and coverage, as text
    double low = 0, high = 0; ///< the 95 % interval of a correlation
    bool hasInterval = false;
};

/// The 95 % interval of a correlation is tanh(atanh r -+ 1.959964/sqrt(nu - 2)) with the degrees of
/// freedom nu of the ledger (signals/intervals.h); a second one takes off what the serial
/// correlation of both series costs, unless nu comes from a band. Of a partial correlation of N
/// nodes the standard error is 1/sqrt(nu - N), none when it was shrunk. Below nu = 3 there is none,
/// which is said.
EdgeEvidence edgeEvidence(const NetworkResult &result, const ResultMatrix &matrix, int from,
                          int to);

} // namespace corvane
