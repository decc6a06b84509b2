// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/plot_source.h"

#include "engine/connectivity_object.h"
#include "results/connectivity_object_ui.h"

ConnectivityObject *connectivityObjectOf(const QWidget *plotWindow)
{
    const auto *const dialog = qobject_cast<ConnectivityObjectUI *>(plotWindow->parent());
    return dialog ? dialog->connectivityObject : nullptr;
}
