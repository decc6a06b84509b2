// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/save_dialog.h"

#include "dataset/scoped_dialog.h"

#include <QBuffer>
#include <QFileDialog>
#include <QPixmap>
#include <QSaveFile>

QString askForTarget(QWidget *window, const QString &filter, const QString &suffix)
{
    const ScopedDialog dialog(new QFileDialog(window, QStringLiteral("Save as...")));
    dialog->setNameFilter(filter);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(suffix);
    QString path;
    if (dialog->exec() == QDialog::Accepted && dialog)
        path = dialog->selectedFiles().value(0);
    return path;
}

void saveFile(const QByteArray &contents, const QString &path)
{
    QSaveFile file(path);
    file.setDirectWriteFallback(true);
    // The flush tells of a disk that is full; a commit alone would keep what fitted on it.
    if (file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() && file.flush())
        file.commit();
}

void savePicture(const QPixmap &picture, const QString &path)
{
    // Through memory: the writer of the format leaks when its device fails under it.
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (buffer.open(QIODevice::WriteOnly) && picture.save(&buffer, "PNG"))
        saveFile(bytes, path);
}
