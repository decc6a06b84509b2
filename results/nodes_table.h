// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QStringList;
class QTableView;

/// Gives the view a model of its own with one row per label, and a checked box for the inclusion of
/// each, which knows its row by the property "row".
void fillNodesTable(QTableView *view, const QStringList &labels);
