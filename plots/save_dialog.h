// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

class QPixmap;
class QWidget;

/// Asks for the file to write. `suffix` is added to a name without one. Empty when the dialog is
/// cancelled or when the window closed under it.
QString askForTarget(QWidget *window, const QString &filter, const QString &suffix);

/// Writes a file. Silent whatever comes of it: a file that cannot be written whole is not left
/// behind, and an existing one stays as it was. Only where the folder takes no new file beside an
/// existing one, that one is written in place.
void saveFile(const QByteArray &contents, const QString &path);

/// Saves a picture as PNG, as `saveFile` does.
void savePicture(const QPixmap &picture, const QString &path);
