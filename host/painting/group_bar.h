// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/painting/node_group.h"

#include <QPainter>
#include <vector>

namespace corvane
{

/// Paints networks as coloured blocks from the top of the bar down, with their names at its left as
/// far as they fit without overlapping, and cut to the room there. Uses the painter's font.
void paintGroupBar(QPainter &painter, const QRectF &bar, const std::vector<NodeGroup> &groups,
                   int nodes, double roomForNames);

/// The width of the widest name.
double widestGroup(const QFont &font, const std::vector<NodeGroup> &groups);

} // namespace corvane
