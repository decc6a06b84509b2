// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

/// @file
/// Folders of subjects as a pipeline leaves them, with runs of a few voxels that can be computed.

namespace corvane
{

class SmallStudy
{
public:
    static constexpr int volumes = 40;
    static constexpr int labels = 4;

    explicit SmallStudy(const QString &folder);

    QString path(const QString &below = {}) const;

    /// Writes a file, and the folders that it lies in.
    void put(const QString &below, const QByteArray &bytes = {}) const;
    void remove(const QString &below) const;

    /// A run as "sub-01/func", "sub-01_task-rest", "space-T1w": image with its JSON (repetition
    /// time 2 s), mask, table of confounds with its JSON. What has no space may be there already.
    void addRun(const QString &folder, const QString &entities, const QString &space) const;

    /// An atlas of four labels with a table of names, in every space: its path.
    QString addAtlas(const QString &name = QStringLiteral("atlas-Four")) const;

    /// Table with the six motion parameters, FD, DVARS, csf, white_matter and a cosine.
    static QByteArray confounds(int rows = volumes, int seed = 0);

private:
    QString m_folder;
};

/// Every odd folder that users have, one participant each, asked for task-rest:
///
/// | participant | task-rest in space-T1w |
/// |---|---|
/// | 01 | one run, no sessions |
/// | 02 | also in space-MNI152NLin6Asym |
/// | 03 | run-1 and run-2 |
/// | 04 | no table of confounds |
/// | 05 | only task-nback |
/// | 06 | table of confounds by its older name, _regressors.tsv |
/// | 07 | packed image that ends in its middle |
/// | 08 | table of confounds with a row too few |
/// | 09 | sessions a and b |
void addOddParticipants(const SmallStudy &study);

} // namespace corvane
