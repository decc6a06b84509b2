// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/save_dialog.h"

#include <QFileDialog>
#include <QPointer>

QString askForTarget(QWidget *window, const QString &filter, const QString &suffix)
{
    // On the heap: the window may go, and its dialogs with it, while this one is open.
    QPointer<QFileDialog> dialog = new QFileDialog(window, QStringLiteral("Save as..."));
    dialog->setNameFilter(filter);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(suffix);
    QString path;
    if (dialog->exec() == QDialog::Accepted && dialog)
        path = dialog->selectedFiles().value(0);
    delete dialog;
    return path;
}
