// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGraphicsView>
#include <QPoint>
#include <QString>

class QGraphicsSceneMouseEvent;

/// Declared for an overview of a matrix that can be exported. Not in use: the browser's overview is
/// a plain QGraphicsView.
class ConnectivityMatrixWidget : public QGraphicsView
{
    Q_OBJECT

public:
    using QGraphicsView::QGraphicsView;

signals:
    void pickValue(QString value); ///< not emitted
    void clearValue();             ///< not emitted

public slots:
    void showContextMenu(QPoint pos);
    void highlightTable(QGraphicsSceneMouseEvent *event); ///< nothing
    void saveImage();
    void saveCSV(); ///< writes nothing: matrices are exported by the results dialog
};
