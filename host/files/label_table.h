// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <map>
#include <optional>

namespace corvane
{

/// Red, green and blue, 0 to 255.
struct Colour {
    int r = 0;
    int g = 0;
    int b = 0;
};

struct LabelEntry {
    QString name;
    std::optional<Colour> colour;
};

/// Names of the labels of an atlas, by label. Label 0 is the background and has none.
using LabelTable = std::map<qint32, LabelEntry>;

/// Reads a table of tab-separated text with the columns "index" and "name", or in older files
/// "label" in its place; "color", as "#RRGGBB", if there is one. A name that is not given is the
/// number. Throws InputError, also for an index that comes twice.
LabelTable readLabelTable(const QString &path);

} // namespace corvane
