// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/edge_threshold.h"
#include "host/explorer/node_ordering.h"
#include "host/explorer/read_result.h"

#include <vector>

namespace corvane
{

enum class NetworkView { Matrix, Ring, Brain, Nodes, Evidence, Measures };

inline constexpr NamedValue<NetworkView> networkViewNames[] = {
    {NetworkView::Matrix, "matrix"},     {NetworkView::Ring, "ring"},
    {NetworkView::Brain, "brain"},       {NetworkView::Nodes, "nodes"},
    {NetworkView::Evidence, "evidence"}, {NetworkView::Measures, "measures"}};

/// What of a result is shown, and how: the same for all views.
struct ViewSettings {
    QString matrix = {}; ///< its name; empty for the first
    QString minus = {};  ///< of the matrix that is taken off; empty for none
    NodeOrdering ordering = NodeOrdering::Network;
    EdgeThreshold threshold = {};
    std::vector<int> components =
        {};             ///< networks of a group test in place of the threshold, from 1
    QString node = {};  ///< that is selected, its name; empty without
    QString other = {}; ///< the second one, of an edge
    bool alone = false; ///< only edges of the selected node
};

/// A picture on paper.
struct FigureFormat {
    double width = 120;   ///< millimetres
    double pointSize = 8; ///< of the texts
    bool dark = false;
    int dotsPerInch = 300; ///< of PNG
};

/// Everything that makes a figure: the files, what is shown of them, and the paper.
struct FigureRequest {
    ResultRequest result;
    ViewSettings view;
    NetworkView kind = NetworkView::Matrix;
    FigureFormat format = {};
};

/// The arguments of `Corvane figure` that make it, those left out that are usual; without the name
/// of the program, with `out` as the file.
QStringList figureArguments(const FigureRequest &request, const QString &out);

/// A command line of this system's shell, each argument quoted where it needs to be
/// (command_words_posix.cpp, command_words_windows.cpp).
QString commandText(const QStringList &words);

} // namespace corvane
