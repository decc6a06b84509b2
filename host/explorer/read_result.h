// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/network_result.h"

namespace corvane
{

struct ResultRequest {
    /// A folder of `Corvane connectome`, of a subject's runs in a study, of `Corvane compute` or
    /// `group`, or one matrix in a file.
    QString path;
    QString run = {};    ///< what the run's files begin with, up to the atlas; empty for the first
    QString labels = {}; ///< a table of labels with networks, sides; empty for none
    QString centroids = {}; ///< a table of nodes with x, y and z; empty for none
    QString atlas = {}; ///< an image of the atlas or the anatomy, for its outline; empty for none
};

/// Reads a finished result. Networks, sides and places come from the tables that are named in the
/// request, then from those beside the matrices, then from names. Throws InputError.
NetworkResult readResult(const ResultRequest &request);

} // namespace corvane
