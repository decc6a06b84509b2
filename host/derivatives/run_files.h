// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/derivatives/bids_names.h"

#include <QHash>
#include <optional>
#include <vector>

/// @file
/// What belongs to a run: of the files in its folder, those whose entities are all its own.

namespace corvane
{

/// A folder and the names in it, ascending, listed once.
struct ListedFolder {
    QString path;
    std::vector<BidsName> files;
};

ListedFolder listed(const QString &path);

/// The names of the folder with this desc, one of the suffixes and one of the endings.
std::vector<BidsName> filesOf(const ListedFolder &folder, const QString &desc,
                              const QStringList &suffixes, const QStringList &endings);

/// Of some names those that belong to a run: their entities but desc are all among the run's, and
/// as many as possible. Usually one.
std::vector<BidsName> closestTo(const BidsName &run, const std::vector<BidsName> &names);

/// Those of the names that are on the run's own grid: with the same space, res and den.
std::vector<BidsName> onGridOf(const BidsName &run, const std::vector<BidsName> &names);

/// What the JSON files beside images say, each read once.
class Sidecars
{
public:
    explicit Sidecars(const QString &dataset) : m_dataset(dataset) {}

    /// The repetition time of a run in seconds: of the nearest JSON file that belongs to it and has
    /// one, in its folder or in those above it as far as the dataset's. `folder` is its place below
    /// the dataset. None when no file tells it. Throws InputError for a file that is no JSON, or a
    /// time that is none.
    std::optional<double> repetitionTime(const QString &folder, const BidsName &run);

private:
    const std::vector<BidsName> &boldSidecars(const QString &folder);
    std::optional<double> timeIn(const QString &path);

    QString m_dataset;
    QHash<QString, std::vector<BidsName>> m_folders;
    QHash<QString, std::optional<double>> m_times;
};

} // namespace corvane
