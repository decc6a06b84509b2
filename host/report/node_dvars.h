// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/connectome.h"

namespace corvane
{

/// DVARS of the cleaned series of all nodes that have values: one value for each volume of the
/// file, NaN where it or the one before is not kept. With a scale the series count as if their
/// median before cleaning, over all these nodes and volumes, were that; else as they are stored.
Eigen::ArrayXd nodeDvars(const Connectome &connectome, std::optional<double> scale);

} // namespace corvane
