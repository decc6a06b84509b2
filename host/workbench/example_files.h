// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

class QWidget;

namespace corvane
{

/// The folder with the example dataset, which is made there once, behind a progress dialog over
/// `parent`; empty when that was stopped or failed, which is told in a message.
QString exampleFolder(QWidget *parent);

/// The files of the example dataset in that folder, in the order of opening.
QStringList exampleFiles(const QString &folder);

} // namespace corvane
