// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tour/tour.h"

namespace corvane
{

class MainWindow;

/// The whole workflow on the example dataset: from the files to the comparison of two subjects, and
/// then through the connectome window.
/// `dataset` is the folder of the example dataset, `exports` one for what the tour exports. The
/// steps find the windows of the plugin by the names of their widgets.
std::vector<TourStep> workflowSteps(MainWindow &window, const QString &dataset,
                                    const QString &exports);

/// The plugin that the tour is about.
QString tourPlugin();

} // namespace corvane
