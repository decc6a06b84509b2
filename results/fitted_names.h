// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plots/plot_source.h"

/// The names of the first `count` nodes or slices of a result: one that is missing is its number,
/// since the subject's record may have changed after the compute. No names at all stay none.
inline QStringList fittedNames(const QStringList &names, int count)
{
    QStringList fitted;
    for (int place = 0; place < count && !names.isEmpty(); ++place)
        fitted += nameAt(names, place);
    return fitted;
}
