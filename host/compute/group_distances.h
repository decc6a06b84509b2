// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/progress.h"

#include <Eigen/Core>
#include <QString>
#include <QStringList>

#include <vector>

/// @file
/// The distances of the plugin's group comparison, for results that are files.

namespace corvane
{

/// A finished subject as the comparison takes it.
struct ComparedSubject {
    QString name;
    Eigen::MatrixXf matrix; ///< its first one
    QStringList notes;      ///< what was skipped, one line for each kind
};

/// Reads a subject, which is called as the file or folder is: from a folder of "Corvane compute"
/// its first matrix, which with a protocol is that of the first interval, or from a table as
/// readGraphTable takes it. Throws InputError.
ComparedSubject readComparedSubject(const QString &path);

/// How many nodes all are padded to, at least: those of the largest matrix but the first, which the
/// plugin does not ask. A pair of which one has more takes its number.
int paddedSize(const std::vector<ComparedSubject> &subjects);

/// The spectral distance of each pair, both halves filled, exactly as the plugin has it in the
/// upper one.
Eigen::MatrixXf groupDistances(const std::vector<ComparedSubject> &subjects,
                               const ProgressWatch &watch = {});

/// Puts the spanning tree of each matrix in its place.
void keepSpanningTrees(std::vector<ComparedSubject> &subjects);

} // namespace corvane
