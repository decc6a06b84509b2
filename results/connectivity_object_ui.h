// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class ConnectivityObject;

/// The results window of one subject. Destroyed when it is closed.
class ConnectivityObjectUI : public QDialog
{
    Q_OBJECT

public:
    /// Shows `object`, which is not owned and outlives the dialog.
    ConnectivityObjectUI(ConnectivityObject *object, QWidget *parent);
    ~ConnectivityObjectUI() override;

    ConnectivityObject *connectivityObject;
};
