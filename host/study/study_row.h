// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/derivatives/run_index.h"
#include "host/extract/connectome_files.h"
#include "host/study/row_name.h"

#include <QJsonObject>
#include <QString>

/// @file
/// A row of a study: a run and an atlas, and how matrices are made of them.

namespace corvane
{

struct StudyAtlas {
    QString file;
    QString labels; ///< table of their names; empty for none
    QString name;   ///< letters and digits
};

/// What is the same for all rows of a study.
struct StudySettings {
    QString dataset; ///< absolute path
    QString out;
    ConnectomeRequest request; ///< without files
    bool conditions = false;   ///< also a matrix for each condition of a run's table of events
    /// The options that `request` was made of, each with its value: by them it can be made again,
    /// and two calls are compared.
    QJsonObject options;
    std::vector<StudyAtlas> atlases;
    bool pages = true; ///< a page of HTML for each row, each participant and the study
};

struct StudyRow {
    RowName name;
    QString reason; ///< why it cannot be computed: a file is missing; else empty
    ConnectomeRequest request;
};

/// The rows of runs: each with each atlas, in the order of the runs.
std::vector<StudyRow> rowsOf(const std::vector<StudyRun> &runs, const StudySettings &settings);

/// The names of a row's outputs, and the dataset by which their sources are named.
ConnectomeNames namesOf(const StudyRow &row, const QString &dataset);

/// A sum of all settings of a row but its files: equal for rows that are made alike.
QString settingsSum(const QJsonObject &options);

} // namespace corvane
