// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/connectivity_matrix_widget.h"

#include "plots/picture_export.h"

#include <QFileDialog>
#include <QMenu>
#include <QPointer>

void ConnectivityMatrixWidget::showContextMenu(QPoint pos)
{
    QPointer<QMenu> menu = new QMenu(this);
    menu->addAction(tr("Export to image..."), this, &ConnectivityMatrixWidget::saveImage);
    menu->addAction(tr("Export to CSV..."), this, &ConnectivityMatrixWidget::saveCSV);
    menu->exec(mapToGlobal(pos));
    delete menu;
}

void ConnectivityMatrixWidget::highlightTable(QGraphicsSceneMouseEvent *) {}

void ConnectivityMatrixWidget::saveImage()
{
    exportPicture(this, this);
}

void ConnectivityMatrixWidget::saveCSV()
{
    QFileDialog dialog(this, QStringLiteral("Save as..."));
    dialog.setNameFilter(QStringLiteral("Comma-separated values (*.csv)"));
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(QStringLiteral(".csv"));
}
