// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLayout>
#include <QSpacerItem>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <string>

/// @file
/// What stands where in a form.

/// The names of a layout's items in their order; a spacer is "-".
inline std::string namesIn(const QWidget &window, const char *layoutName)
{
    const auto *const layout = window.findChild<QLayout *>(QLatin1String(layoutName));
    if (layout == nullptr)
        return "no such layout";
    QStringList names;
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem *const item = layout->itemAt(i);
        names += item->widget()   ? item->widget()->objectName()
                 : item->layout() ? item->layout()->objectName()
                                  : QStringLiteral("-");
    }
    return names.join(' ').toStdString();
}

/// The size that a spacer asks for; invalid where there is none.
inline QSize spacerIn(const QWidget &window, const char *layoutName, int position)
{
    const auto *const layout = window.findChild<QLayout *>(QLatin1String(layoutName));
    QLayoutItem *const item = layout == nullptr ? nullptr : layout->itemAt(position);
    return item == nullptr || item->spacerItem() == nullptr ? QSize() : item->sizeHint();
}
