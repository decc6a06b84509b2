// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGraphicsRectItem>

class QTableWidget;

/// A square of the browser's overview. A press on it scrolls a table to one of its items.
class ConnectivityMatrixWidgetRect : public QGraphicsRectItem
{
public:
    ConnectivityMatrixWidgetRect();
    ~ConnectivityMatrixWidgetRect() override;

    void setTable(QTableWidget *target) { table = target; } ///< not owned
    void setRow(int itemRow) { row = itemRow; }
    void setColumn(int itemColumn) { column = itemColumn; }

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;

private:
    QTableWidget *table = nullptr;
    int row = 0;
    int column = 0;
};
