// SPDX-License-Identifier: GPL-3.0-or-later
#include "results/connectivity_object_ui.h"

ConnectivityObjectUI::ConnectivityObjectUI(ConnectivityObject *object, QWidget *parent)
    : QDialog(parent), connectivityObject(object)
{
    setObjectName(QStringLiteral("ConnectivityObjectUI"));
    setWindowTitle(QStringLiteral("Dialog"));
    resize(641, 640);
}

ConnectivityObjectUI::~ConnectivityObjectUI() = default;
