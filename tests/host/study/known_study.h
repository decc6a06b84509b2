// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/host/support/host_files.h"
#include "tests/host/support/program.h"

#include <Eigen/Core>
#include <QJsonObject>
#include <QMap>

/// @file
/// A folder of small runs of which it is known what they hold, and the program at work on it.

namespace corvane
{

/// How a run is made; what is left as it is, is as it should be.
struct KnownRun {
    KnownRun(const char *participantLabel, const char *sessionLabel = "")
        : participant(QLatin1String(participantLabel)), session(QLatin1String(sessionLabel))
    {
    }

    QString participant;
    QString session; ///< empty for none
    QString task = QStringLiteral("rest");
    int volumes = 130; ///< of 2 s
    int confoundRows = 130;
    bool isBroken = false; ///< the packed image is cut off
    bool hasConfounds = true;
    bool hasMask = false;
    bool isOldStyle = false; ///< the table of confounds is called _regressors.tsv
    int copies = 1;          ///< of each voxel: makes the run so much larger
};

class KnownStudy
{
public:
    KnownStudy();

    QString path(const QString &name) const { return m_folder.path(name); }
    QString dataset() const { return path(QStringLiteral("data")); }
    QString out() const { return path(QStringLiteral("out")); }
    QString atlas() const { return path(QStringLiteral("tpl_atlas-Four_dseg.nii.gz")); }

    void add(const KnownRun &run);
    /// Participants 01, 02, ... with a run each.
    void addParticipants(int count);

    /// "data/sub-01/func/sub-01_task-rest_space-T1w" and the rest.
    QString file(const KnownRun &run, const char *rest) const;
    /// A file of a run's row: "out/sub-01/func/sub-01_task-rest_space-T1w_atlas-Four_" and the
    /// rest.
    QString output(const KnownRun &run, const char *rest) const;

    /// What one region of a run holds, as its single precision has it.
    static Eigen::VectorXd region(const KnownRun &run, int number);
    /// The column "trouble" of its confounds.
    static Eigen::VectorXd confound(const KnownRun &run);

    /// Corvane cohort DATASET OUT STEP with the atlas, --clean columns:trouble, --no-pages and
    /// more.
    QStringList arguments(const QString &step, const QStringList &more = {}) const;
    ProgramRun cohort(const QString &step, const QStringList &more = {}) const;
    /// Corvane cohort OUT STEP ...
    ProgramRun ofStudy(const QStringList &step) const;

    /// The arguments of Corvane connectome for one run, into a folder, with --clean
    /// columns:trouble by its own confounds or by another's.
    QStringList connectome(const KnownRun &run, const KnownRun &confounds,
                           const QString &folder) const;
    QStringList connectome(const KnownRun &run, const QString &folder) const
    {
        return connectome(run, run, folder);
    }

    /// The study's table, a line for each row, without its names of columns.
    QStringList table() const;
    /// All files below a folder that are no hidden ones, with their bytes.
    static QMap<QString, QByteArray> filesBelow(const QString &folder);
    /// Hidden files that belong to work that is not finished.
    static QStringList leftBelow(const QString &folder);

private:
    TemporaryFolder m_folder;
};

} // namespace corvane
