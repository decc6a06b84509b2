// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/compute_settings.h"
#include "host/group/study_table.h"
#include "statistics/glm.h"

#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>
#include <set>
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

/// What may be asked. Networks come from the edges' model, given thresholds.
enum class GroupTest {
    Glm,         ///< a model at every edge
    Nbs,         ///< networks of edges
    Distance,    ///< spectral distances between matrices
    Icc,         ///< intraclass correlations of each edge over sessions
    Fingerprint, ///< whether participants are known again in another session
    QcFc,        ///< how much edges follow motion
    Tangent,     ///< the other tests take the edges in tangent space
};

inline constexpr NamedValue<GroupTest> groupTestNames[] = {{GroupTest::Glm, "glm"},
                                                           {GroupTest::Nbs, "nbs"},
                                                           {GroupTest::Distance, "distance"},
                                                           {GroupTest::Icc, "icc"},
                                                           {GroupTest::Fingerprint, "fingerprint"},
                                                           {GroupTest::QcFc, "qcfc"},
                                                           {GroupTest::Tangent, "tangent"}};

/// What is asked about a group.
struct GroupRequest {
    std::set<GroupTest> tests = {GroupTest::Glm};
    /// The rows of a study's folder, instead of a table.
    std::optional<StudySelection> study;
    QString table; ///< path; its columns participant_id and matrix, and those of the formula
    QString formula = QStringLiteral("1");
    QStringList contrasts; ///< NAME=SUM
    statistics::Sides sides = statistics::Sides::each;
    std::vector<double> thresholds; ///< of networks; none for none
    qint64 permutations = 5000;
    std::uint64_t seed = 1;
    QString permutationFile; ///< path, or empty
    QString blocks;          ///< a column of the table, or empty
    bool paired = false;     ///< two rows per participant
    /// A column of the table; empty for session_id or session, whichever is there.
    QString session;
    QString centroids; ///< path of a table of the nodes' places in mm, or empty
    FisherZ fisherZ = FisherZ::Auto;
    double minNodeSubjects = 0.9;
    int threads = 0; ///< 0: one for each processor

    bool asks(GroupTest test) const { return tests.count(test) > 0; }
    /// Whether a model is made at every edge.
    bool asksForModel() const { return asks(GroupTest::Glm) || asks(GroupTest::Nbs); }
    /// Whether rows are to repeat participants in sessions.
    bool asksForSessions() const { return asks(GroupTest::Icc) || asks(GroupTest::Fingerprint); }
    /// The share of the participants that must have a node: all of them where matrices are
    /// compared as a whole, since their distance depends on the number of nodes.
    double neededNodes() const
    {
        const bool whole = asks(GroupTest::Distance) || asks(GroupTest::Tangent);
        return whole ? 1.0 : minNodeSubjects;
    }
};

} // namespace corvane
