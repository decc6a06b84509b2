// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/output_folder.h"
#include "host/group/group_results.h"

#include <QJsonObject>

/// @file
/// The tables of the tests beside the model (docs/file-formats.md), and what the file of settings
/// says of them.

namespace corvane
{

/// "distances.tsv", "distance_tests.tsv", "dbicc.tsv"
void writeDistanceTables(const OutputFolder &folder, const GroupData &data,
                         const DistanceResult &result);
/// "icc.tsv"
void writeIccTable(const OutputFolder &folder, const GroupData &data, const IccResult &result);
/// "fingerprint.tsv", "similarity.tsv"
void writeFingerprintTables(const OutputFolder &folder,
                            const std::vector<FingerprintResult> &results);
/// "qcfc.tsv", "qcfc_summary.tsv"
void writeQcFcTables(const OutputFolder &folder, const GroupData &data,
                     const std::vector<QcFcResult> &results);
/// "tangent_mean.tsv"
void writeTangentTable(const OutputFolder &folder, const GroupData &data);

/// An object for each of these tests that was done.
QJsonObject testFacts(const GroupData &data, const GroupResults &results);

} // namespace corvane
