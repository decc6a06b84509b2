// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/condition_colors.h"

QHash<QString, QColor> conditionColors(const QStringList &names)
{
    constexpr double hueRange = 222.4922359499622;
    QStringList distinct = names;
    distinct.removeDuplicates();

    QHash<QString, QColor> colors;
    for (int i = 0; i < distinct.size(); ++i) {
        const int hue = int(i * (hueRange / distinct.size())); // cut, not rounded
        colors.insert(distinct[i], QColor::fromHsv(hue, 127, 242, 255));
    }
    return colors;
}

QString backgroundStyle(const QColor &color)
{
    return QStringLiteral("background-color: rgb(%1, %2, %3);")
        .arg(color.red())
        .arg(color.green())
        .arg(color.blue());
}
