// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/view_matrix_table.h"

ViewMatrixTable::ViewMatrixTable(QWidget *parent) : QTableWidget(parent) {}

ViewMatrixTable::~ViewMatrixTable() = default;

void ViewMatrixTable::leaveEvent(QEvent *event)
{
    QTableWidget::leaveEvent(event);
    emit mouseLeave();
}
