// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
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
    QString name; ///< empty when it has none
    std::optional<Colour> colour;
    QString network = {};    ///< empty when it is not known
    QString hemisphere = {}; ///< as the table writes it; empty when it is not known
};

/// Names of the labels of an atlas, by label. Label 0 is the background and has none.
using LabelTable = std::map<qint32, LabelEntry>;

/// An image with more labels than this is something else than an atlas.
constexpr std::size_t mostLabels = 20000;

/// Reads the names of labels, and their colours where there are any, in one of two forms:
///
/// - tab-separated text with the columns "index" and "name", or in older files "label" in its
///   place. Colours stand in a column "color" as "#RRGGBB", "RRGGBB", "#RGB" or "#RRGGBBAA", or in
///   columns for red, green and blue. The network that a region belongs to stands in the
///   first of the columns "network", "network_label", "network_name", "system", "community" and
///   "module" that there is, in any case of letters; its side in "hemisphere", "hemi" or "side". A
///   text that is empty or "n/a" is none.
/// - a colour table: index, name, red, green, blue and alpha with blanks between them in each line,
///   and no line of names.
///
/// A colour that is not understood is none. What was skipped is appended to `notes`. Throws
/// InputError, also for an index that comes twice.
LabelTable readLabelTable(const QString &path, QStringList &notes);

} // namespace corvane
