// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/condition_colours.h"

#include <QSettings>
#include <QStringList>

#include <cmath>
#include <iterator>

namespace corvane
{

namespace
{

const QString key = QStringLiteral("conditionColours");

/// Beyond so many names the oldest loses its colour to the new one.
constexpr int mostNames = 256;

QColor nthColour(int n)
{
    // Told apart also by those who see fewer colours (Okabe and Ito).
    static const QColor colours[] = {{0, 114, 178},   {230, 159, 0},  {0, 158, 115},
                                     {204, 121, 167}, {86, 180, 233}, {213, 94, 0},
                                     {240, 228, 66},  {128, 128, 128}};
    constexpr int count = static_cast<int>(std::size(colours));
    if (n < count)
        return colours[n];
    // The hue goes on by the golden angle.
    return QColor::fromHsvF(std::fmod(n * 0.6180339887498949, 1.0), 0.75, 0.8);
}

/// The place of a name in the list that is remembered, where it is put when it is new.
int placeOf(const QString &name)
{
    QSettings settings;
    QStringList names = settings.value(key).toStringList();
    const int known = names.indexOf(name);
    if (known >= 0)
        return known;
    // The newest follows the last one; in a full list it takes the place behind that.
    const QString nextKey = key + QStringLiteral("Next");
    const int next = settings.value(nextKey).toInt() % mostNames;
    const int place = names.size() < mostNames ? names.size() : next;
    if (place < names.size())
        names[place] = name;
    else
        names += name;
    settings.setValue(key, names);
    settings.setValue(nextKey, (place + 1) % mostNames);
    return place;
}

} // namespace

QColor conditionColour(const QString &name)
{
    return nthColour(placeOf(name));
}

} // namespace corvane
