// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/network_result.h"
#include "host/files/label_table.h"

/// @file
/// To which network and side a node belongs, from tables or from its name.

namespace corvane
{

/// "Vis" of "7Networks_LH_Vis_1", "VisCent" of "17Networks_RH_VisCent_ExStr_2"; empty for names of
/// another form.
QString networkOfName(const QString &name);

/// "Left" or "Right" when a part of the name says so: "LH", "lh", "L", "Left" and their like,
/// between underscores, hyphens, points, blanks, or at an end; empty otherwise.
QString hemisphereOfName(const QString &name);

/// "Left" for "L", "lh", "left" and "Left"; likewise "Right"; another text as it stands.
QString hemisphereName(const QString &text);

/// Takes networks and sides from the table of names, for the nodes that it names and that have none
/// yet. Throws InputError when it names none of the nodes.
void takeLabels(std::vector<ResultNode> &nodes, const LabelTable &labels, const QString &path);

/// Fills in what only the names tell: networks if no node has one, the side of every node without.
void takeNames(std::vector<ResultNode> &nodes);

} // namespace corvane
