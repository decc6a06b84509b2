// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/live_measures.h"
#include "host/explorer/view_settings.h"
#include "host/painting/brain_painting.h"
#include "host/painting/course_painting.h"
#include "host/painting/measure_painting.h"

#include <memory>

/// @file
/// From a result and what is asked of it to what pictures and tables hold, the same for the window
/// and for figures without one.

namespace corvane
{

/// A matrix of a result, or the difference of two, with its edges in order of strength. It does not
/// depend on the threshold, so it is made once for many of them.
struct ShownMatrix {
    const ResultMatrix *matrix = nullptr; ///< of the result
    const ResultMatrix *minus = nullptr;  ///< null for none
    QString title;
    Eigen::MatrixXd values;
    /// Of the scale of colours. Matrices of one measure share theirs, and so do all differences
    /// from the same matrix: the largest of any of them.
    double limit = 1;
    RankedEdges ranked;
    std::vector<bool> isKnown; ///< nodes with values
    OrderedNodes order;
};

/// Throws InputError for names that the result does not have.
std::shared_ptr<const ShownMatrix> shownMatrix(const NetworkResult &result,
                                               const ViewSettings &settings);

/// The number of a node's name; -1 for an empty one. Throws InputError for one it does not have.
int nodeNumber(const NetworkResult &result, const QString &name);

/// What is drawn of it.
struct DrawnEdges {
    std::vector<NetworkEdge> edges; ///< strongest first
    QString text;                   ///< what they are, in words
};

/// By the threshold, or those of the networks that a group test found.
DrawnEdges drawnEdges(const NetworkResult &result, const ShownMatrix &shown,
                      const ViewSettings &settings);

/// The text of what is drawn, with how many edges of the selected node are left where ring and
/// brain show these alone.
QString drawnText(const NetworkResult &result, const DrawnEdges &drawn,
                  const ViewSettings &settings);

/// In the order of the picture. For a matrix the foot says what is above the diagonal.
NetworkPicture networkPicture(const NetworkResult &result, const ShownMatrix &shown,
                              const DrawnEdges &drawn, const ViewSettings &settings,
                              NetworkView kind);
BrainPicture brainPicture(const NetworkResult &result, const ShownMatrix &shown,
                          const DrawnEdges &drawn, const ViewSettings &settings,
                          const std::array<QPainterPath, 3> &outlines);
CoursePicture coursePicture(const NetworkResult &result, const ShownMatrix &shown,
                            const ViewSettings &settings);
MeasurePicture measurePicture(const NetworkResult &result, const ShownMatrix &shown,
                              const MeasureCurves &curves, const ViewSettings &settings);

} // namespace corvane
