// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/picture_export.h"

#include "dataset/scoped_dialog.h"
#include "plots/save_dialog.h"

#include <QFileDialog>
#include <QPixmap>
#include <QPointer>

void exportPicture(QWidget *window, QWidget *source)
{
    const QPointer<QWidget> shown(source);
    const ScopedDialog dialog(new QFileDialog(window, QStringLiteral("Save as...")));
    dialog->setStyleSheet(neutralStyleSheet());
    dialog->setNameFilter(QStringLiteral("PNG (*.png)"));
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setDefaultSuffix(QStringLiteral(".png"));
    QString path;
    if (dialog->exec() != 0 && dialog)
        path = dialog->selectedFiles().value(0);
    if (!path.isEmpty() && shown)
        savePicture(shown->grab(), path);
}

QString neutralStyleSheet()
{
    return QStringLiteral("* { background: none; }");
}
