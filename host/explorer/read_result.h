// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/network_result.h"

namespace corvane
{

struct ResultRequest {
    /// A folder of `Corvane connectome`, of a subject's runs in a study, of `Corvane compute` or
    /// `group`, or one matrix in a file; also a folder that holds one of these with matrices of
    /// runs.
    QString path;
    QString run = {}; ///< what the run's files begin with, up to the atlas; empty for the first
    /// A table of labels with networks and sides; for a matrix without names also a list of names
    /// in the order of its rows. Empty for none.
    QString labels = {};
    QString centroids = {}; ///< a table of nodes with x, y and z; empty for none
    QString atlas = {}; ///< an image of the atlas or the anatomy, for its outline; empty for none
};

/// Reads a finished result. Networks, sides and places come from the tables that are named in the
/// request, then from those beside the matrices, then from names. Throws InputError.
NetworkResult readResult(const ResultRequest &request);

} // namespace corvane
