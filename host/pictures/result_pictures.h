// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/connectivity_object.h"
#include "engine/graph_measures.h"
#include "host/compute/compute.h"
#include "plots/view_matrix.h"
#include "results/connectivity_object_ui.h"

#include <QPixmap>

namespace corvane
{

/// Pictures of the result of a compute, drawn by the plugin's own plots. Needs a QApplication; its
/// windows are opened, so that the application's platform decides whether they are seen.
class ResultPictures
{
public:
    /// `result` must outlive this object.
    explicit ResultPictures(const ComputeResult &result);

    /// The ring of a slice, with the edges of its spanning tree in red.
    QPixmap ring(std::size_t slice);
    /// The matrix of a slice as a map of colours, and as the small one of the browser's overview.
    QPixmap map(std::size_t slice);
    QPixmap overview(std::size_t slice);
    /// The values of a measure, one line per slice over the nodes, of which those of events are
    /// hidden; of a measure of the matrix one value per slice that is no event.
    QPixmap measure(const GraphMeasure &measure) const;

private:
    void browse(std::size_t slice);

    const ComputeResult &m_result;
    ConnectivityObject m_object;   ///< for the browser, which finds it through
    ConnectivityObjectUI m_dialog; ///< the results dialog, never shown
    ViewMatrix m_browser;
    int m_browsed = -1; ///< the slice that the browser shows
};

} // namespace corvane
