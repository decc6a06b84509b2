// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tour/step_list.h"

namespace corvane
{

class MainWindow;

/// The second part of the tour: from the run that is open to the connectome window, and through
/// that. Files go into a folder.
void addConnectomeSteps(StepList &steps, MainWindow &window, const QString &exports);

} // namespace corvane
