// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QHash>
#include <QString>
#include <QStringList>

/// One colour per distinct condition name: hues spread evenly from red to violet, in the order in
/// which the names first appear.
QHash<QString, QColor> conditionColors(const QStringList &names);

/// Style sheet that fills a widget with a colour.
QString backgroundStyle(const QColor &color);
