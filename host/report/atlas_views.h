// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/connectome.h"
#include "host/painting/coverage_painting.h"

namespace corvane
{

/// The atlas on the run's grid from above, from the front and from the left, each place in the
/// colour of the node with the least coverage along the line of sight. The grid is taken as
/// parallel to the axes of space that its own are nearest to.
std::array<AtlasView, 3> atlasViews(const Connectome &connectome);

} // namespace corvane
