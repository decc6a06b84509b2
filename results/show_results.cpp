// SPDX-License-Identifier: GPL-3.0-or-later
//
// The members of ConnectivityObject that know its results dialog.
#include "engine/connectivity_object.h"
#include "plots/bring_to_front.h"
#include "results/connectivity_object_ui.h"

ConnectivityObject::~ConnectivityObject()
{
    delete ui;
}

void ConnectivityObject::showResults()
{
    if (ui == nullptr) {
        // There is no such child, so that the results are a window of their own.
        auto *const parent = findChild<QDialog *>(QStringLiteral("Tessera"));
        ui = new ConnectivityObjectUI(this, parent);
        ui->setAttribute(Qt::WA_DeleteOnClose, true);
        connect(ui, SIGNAL(destroyed(QObject *)), this,
                SLOT(connectivityObjectUIDestroyed(QObject *)));
    }
    bringToFront(ui);
}
