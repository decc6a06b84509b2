// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

/// @file
/// Names of files as BIDS makes them: "sub-01_task-rest_space-T1w_bold.nii.gz".

namespace corvane
{

/// A file's name in its parts.
struct BidsName {
    QString file;         ///< the name as it is, without its folder
    QStringList entities; ///< "sub-01", "task-rest", in the order of the name
    QString suffix;       ///< "bold"; empty without one
    QString ending;       ///< all from the first dot: ".nii.gz"

    /// The label of an entity: "rest" for "task"; empty without it.
    QString label(const QString &entity) const;
};

BidsName bidsName(const QString &path);

/// The letters and digits of a text, of which a label may consist.
QString bidsLabel(const QString &text);

/// The label of an entity in a file's name: "T1w" for "space"; empty without it.
QString entityOf(const QString &path, const QString &entity);

/// What the files made of a run begin with: its name's entities but desc; without entities its name
/// without ending.
QString runPrefix(const QString &path);

/// What an atlas is called: its file's entity atlas, seg or desc, else the letters and digits of
/// its name.
QString atlasName(const QString &path);

} // namespace corvane
