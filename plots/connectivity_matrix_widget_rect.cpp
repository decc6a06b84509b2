// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/connectivity_matrix_widget_rect.h"

#include <QTableWidget>

ConnectivityMatrixWidgetRect::ConnectivityMatrixWidgetRect() = default;

ConnectivityMatrixWidgetRect::~ConnectivityMatrixWidgetRect() = default;

void ConnectivityMatrixWidgetRect::mousePressEvent(QGraphicsSceneMouseEvent *)
{
    if (const QTableWidgetItem *const item = table ? table->item(row, column) : nullptr)
        table->scrollToItem(item, QAbstractItemView::PositionAtCenter);
}
