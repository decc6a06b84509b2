// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>

namespace corvane
{

/// Whether an option of `Corvane cohort` that other steps have too says which rows make the group.
bool choosesRowsOfGroup(const QString &option);

/// Whether runGroupOfStudy() knows what is meant, asked before there are rows. Throws UsageError.
void checkGroupOfStudy(const QCommandLineParser &parser, const QString &dataset,
                       const QString &out);

/// Tests the group of a study's rows that are done, with what participants.tsv of the dataset tells
/// of them, and writes into the folder "group" of the study, or another. Throws UsageError,
/// InputError and statistics::Error.
void runGroupOfStudy(const QCommandLineParser &parser, const QString &dataset, const QString &out);

} // namespace corvane
