// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/compute_settings.h"
#include "statistics/glm.h"

#include <QString>
#include <QStringList>
#include <cstdint>
#include <vector>

namespace corvane
{

/// Whether correlations become Fisher's z.
enum class FisherZ {
    Auto, ///< where a file beside the matrix says so, or the matrix looks like one of correlations
    Yes,
    No,
};

/// The names of values on the command line and in files.
inline constexpr NamedValue<FisherZ> fisherZNames[] = {
    {FisherZ::Auto, "auto"}, {FisherZ::Yes, "yes"}, {FisherZ::No, "no"}};
inline constexpr NamedValue<statistics::Sides> sidesNames[] = {
    {statistics::Sides::each, "each"},
    {statistics::Sides::both, "both"},
    {statistics::Sides::greater, "greater"},
    {statistics::Sides::less, "less"}};

/// What is asked about a group.
struct GroupRequest {
    QString table; ///< path; its columns participant_id and matrix, and those of the formula
    QString formula;
    QStringList contrasts; ///< NAME=SUM
    statistics::Sides sides = statistics::Sides::each;
    std::vector<double> thresholds; ///< of networks; none for none
    qint64 permutations = 5000;
    std::uint64_t seed = 1;
    QString permutationFile; ///< path, or empty
    QString blocks;          ///< a column of the table, or empty
    bool paired = false;     ///< two rows per participant
    FisherZ fisherZ = FisherZ::Auto;
    double minNodeSubjects = 0.9;
    int threads = 0; ///< 0: one for each processor
};

} // namespace corvane
