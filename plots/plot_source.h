// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class ConnectivityObject;
class QWidget;

/// The result that a plot window shows: that of the results dialog which is its parent. Null
/// without one. Defined beside the results dialog, so that the plots need not know it.
ConnectivityObject *connectivityObjectOf(const QWidget *plotWindow);

/// The name at a place, or its number where the list is too short: a subject's record may change
/// after the compute.
inline QString nameAt(const QStringList &names, int place)
{
    return place < names.size() ? names[place] : QString::number(place);
}
