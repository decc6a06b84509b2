// SPDX-License-Identifier: GPL-3.0-or-later
// What the example study was made with comes back from its files: networks, planted differences of
// the groups, motion and what cleaning does about it, participants who stay themselves, the task.
#include "host/derivatives/run_index.h"
#include "host/example_study/example_study.h"
#include "host/example_study/participants.h"
#include "host/extract/connectome.h"
#include "host/files/events_table.h"
#include "statistics/fingerprint.h"
#include "statistics/icc.h"
#include "statistics/parallel.h"
#include "statistics/qcfc.h"
#include "tests/host/support/host_files.h"

#include <cmath>

namespace corvane
{
namespace
{

using namespace example_study;
using Eigen::ArrayXd;
using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

constexpr int participants = 24;
constexpr int edgeCount = nodeCount * (nodeCount - 1) / 2;

/// Fisher's z of the upper triangle, row by row.
Eigen::RowVectorXd edgesOf(const MatrixXd &correlations)
{
    Eigen::RowVectorXd edges(edgeCount);
    Index at = 0;
    for (int a = 0; a < nodeCount; ++a)
        for (int b = a + 1; b < nodeCount; ++b)
            edges[at++] = std::atanh(correlations(a, b));
    return edges;
}

/// Where an edge stands among those.
Index placeOf(int a, int b)
{
    const int first = std::min(a, b);
    return first * (2 * nodeCount - first - 1) / 2 + std::max(a, b) - first - 1;
}

MatrixXd correlations(const MatrixXd &series)
{
    const MatrixXd centred = series.rowwise() - series.colwise().mean();
    const VectorXd scale = centred.colwise().norm().cwiseInverse();
    return scale.asDiagonal() * (centred.transpose() * centred) * scale.asDiagonal();
}

ConnectomeRequest requestFor(const StudyRun &run, const QString &study)
{
    ConnectomeRequest request;
    request.run = run.bold;
    request.mask = run.mask;
    request.atlas = study + "/atlas/tpl-MNI152NLin2009cAsym_res-2_atlas-Example38_dseg.nii.gz";
    request.labels = study + "/atlas/tpl-MNI152NLin2009cAsym_res-2_atlas-Example38_dseg.tsv";
    request.cleaning.confounds = run.confounds;
    request.cleaning.strategy.strategy = "36P";
    return request;
}

/// Edges of all participants: rows in the order of their numbers.
struct Session {
    statistics::EdgeData cleaned{participants, edgeCount};
    statistics::EdgeData uncleaned{participants, edgeCount};
    VectorXd motion{participants}; ///< mean FD, mm
    ArrayXd leastCoverage{participants};
    std::vector<QStringList> notes{std::size_t(participants)};
};

class StudyTruth : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_folder = new TemporaryFolder;
        ExampleStudyRequest request;
        request.folder = study();
        writeExampleStudy(request);
        for (const char *name : {"a", "b"})
            s_sessions.push_back(restIn(QLatin1String(name)));
    }
    static void TearDownTestSuite()
    {
        s_sessions.clear();
        delete s_folder;
    }

    static QString study() { return s_folder->path("study"); }
    static const Session &session(int number) { return s_sessions[std::size_t(number)]; }

    static std::vector<StudyRun> runsOf(const QString &session, const QString &task)
    {
        RunFilter filter;
        filter.sessions = QStringList{session};
        filter.tasks = QStringList{task};
        return indexRuns(study(), filter);
    }

    static Session restIn(const QString &name)
    {
        Session all;
        const std::vector<StudyRun> runs = runsOf(name, QStringLiteral("rest"));
        EXPECT_EQ(runs.size(), std::size_t(participants));
        statistics::for_each_chunk(participants, 0, [&](std::ptrdiff_t row, int) {
            const Connectome found = makeConnectome(requestFor(runs[std::size_t(row)], study()));
            all.cleaned.row(row) = edgesOf(found.matrices.front().matrix.values);
            all.uncleaned.row(row) = edgesOf(correlations(found.uncleaned.values));
            all.motion[row] = found.cleaning.design.ledger.mean_fd_before;
            all.leastCoverage[row] =
                *std::min_element(found.coverage.begin(), found.coverage.end());
            all.notes[std::size_t(row)] = found.notes;
        });
        return all;
    }

    static TemporaryFolder *s_folder;
    static std::vector<Session> s_sessions;
};

TemporaryFolder *StudyTruth::s_folder = nullptr;
std::vector<Session> StudyTruth::s_sessions;

bool isPatient(Index row)
{
    return participant(int(row) + 1).group == Patient;
}

/// Student's t of patients less controls, in each column.
ArrayXd differences(const MatrixXd &values)
{
    ArrayXd result(values.cols());
    for (Index column = 0; column < values.cols(); ++column) {
        double sums[2] = {0, 0};
        for (Index row = 0; row < participants; ++row)
            sums[isPatient(row)] += values(row, column) / 12;
        double squares = 0;
        for (Index row = 0; row < participants; ++row)
            squares += std::pow(values(row, column) - sums[isPatient(row)], 2);
        result[column] = (sums[1] - sums[0]) / std::sqrt(squares / 22 * (2.0 / 12));
    }
    return result;
}

TEST_F(StudyTruth, IsComputedWithoutADoubt)
{
    for (int number = 0; number < 2; ++number) {
        for (const QStringList &notes : session(number).notes)
            EXPECT_EQ(notes, QStringList());
        EXPECT_GT(session(number).leastCoverage.minCoeff(), 0.5);
        EXPECT_LT(session(number).leastCoverage.minCoeff(), 0.95);
    }
}

TEST_F(StudyTruth, HasItsNetworks)
{
    Eigen::RowVectorXd mean = Eigen::RowVectorXd::Zero(edgeCount);
    for (Index row = 0; row < participants; ++row)
        if (!isPatient(row))
            mean += session(0).cleaned.row(row).array().tanh().matrix() / 12;
    double within = 0;
    double between = 0;
    int counts[2] = {0, 0};
    ArrayXd truth(edgeCount);
    for (int a = 0; a < nodeCount; ++a)
        for (int b = a + 1; b < nodeCount; ++b) {
            const bool isWithin = regionOf(a).network == regionOf(b).network;
            (isWithin ? within : between) += mean[placeOf(a, b)];
            ++counts[isWithin];
            truth[placeOf(a, b)] = groupCorrelations(Control)(a, b);
        }
    EXPECT_GT(within / counts[1], 0.4);
    EXPECT_LT(between / counts[0], 0.1);
    const ArrayXd found = mean.transpose().array() - mean.mean();
    const ArrayXd made = truth - truth.mean();
    EXPECT_GT((found * made).sum() / std::sqrt(found.square().sum() * made.square().sum()), 0.95);
}

TEST_F(StudyTruth, HasThePlantedDifferencesAndNoOthers)
{
    for (int number = 0; number < 2; ++number) {
        const ArrayXd t = differences(session(number).cleaned);
        std::vector<bool> isPlanted(edgeCount, false);
        for (const PlantedEdge &edge : plantedEdges()) {
            const Index place = placeOf(edge.first, edge.second);
            isPlanted[std::size_t(place)] = true;
            const double side = edge.patient > edge.control ? 1 : -1;
            EXPECT_GT(side * t[place], 3.2)
                << nodeName(edge.first).constData() << ", " << nodeName(edge.second).constData();
        }
        int others = 0;
        int beyond = 0;
        for (Index place = 0; place < edgeCount; ++place)
            if (!isPlanted[std::size_t(place)]) {
                ++others;
                beyond += std::abs(t[place]) > 2.074; // p = 0.05 with 22 degrees of freedom
                EXPECT_LT(std::abs(t[place]), 4.6);
            }
        EXPECT_EQ(others, edgeCount - 20);
        EXPECT_LT(beyond, 0.09 * others);
    }
}

TEST_F(StudyTruth, HasMoreMotionInPatients)
{
    for (int number = 0; number < 2; ++number) {
        const ArrayXd t = differences(session(number).motion);
        EXPECT_GT(t[0], 2.074);
        EXPECT_GT(session(number).motion.minCoeff(), 0.05);
        EXPECT_LT(session(number).motion.maxCoeff(), 1);
    }
}

TEST_F(StudyTruth, DependsLessOnMotionOnceItIsCleaned)
{
    for (int number = 0; number < 2; ++number) {
        const Session &all = session(number);
        const MatrixXd none(participants, 0);
        const statistics::QcFc before = statistics::qcfc(all.uncleaned, all.motion, none, {});
        const statistics::QcFc after = statistics::qcfc(all.cleaned, all.motion, none, {});
        EXPECT_GT(before.share_p_below_05, 0.18);
        EXPECT_LT(after.share_p_below_05, 0.1);
        EXPECT_LT(after.median_absolute_r, 0.7 * before.median_absolute_r);
    }
}

TEST_F(StudyTruth, HasParticipantsWhoStayThemselves)
{
    const statistics::Fingerprint found =
        statistics::fingerprint(session(0).cleaned, session(1).cleaned, 100, 1);
    // The numbers of the study in docs/users-guide.md.
    EXPECT_NEAR(found.rate_1_to_2, 22.0 / 24, 1e-9);
    EXPECT_NEAR(found.rate_2_to_1, 1, 1e-9);
    EXPECT_GT(found.idiff, 5);
    ArrayXd reliability = statistics::icc({session(0).cleaned, session(1).cleaned}).icc_3_1;
    std::sort(reliability.begin(), reliability.end());
    const double median = reliability[edgeCount / 2];
    EXPECT_NEAR(median, 0.3, 0.02);
}

// ---- censoring

TEST_F(StudyTruth, LosesTheRestlessRunsWhenVolumesAreCensored)
{
    int restless = 0;
    for (int sessionNumber = 0; sessionNumber < 2; ++sessionNumber)
        for (const Task task : {Rest, NBack}) {
            const std::vector<StudyRun> runs =
                runsOf(QLatin1String(sessionNames[std::size_t(sessionNumber)]),
                       QLatin1String(taskNames[task]));
            ASSERT_EQ(runs.size(), std::size_t(participants));
            for (int number = 1; number <= participants; ++number) {
                CleaningRequest cleaning =
                    requestFor(runs[std::size_t(number - 1)], study()).cleaning;
                cleaning.strategy.strategy = "scrubbing";
                QStringList notes;
                const RunCleaning plan = planCleaning(cleaning, volumeCount, repetitionTime, notes);
                const example_study::Run run{participant(number), sessionNumber, task};
                restless += run.isRestless();
                if (run.isRestless())
                    EXPECT_LT(plan.design.ledger.seconds, 230);
                else
                    EXPECT_GT(plan.design.ledger.seconds, 250);
            }
        }
    EXPECT_EQ(restless, 4);
}

// ---- the task

TEST_F(StudyTruth, FollowsItsTask)
{
    const std::vector<StudyRun> runs = runsOf(QStringLiteral("a"), QStringLiteral("nback"));
    std::vector<double> responses[networkCount];
    std::vector<double> couplings;
    for (const StudyRun &run : runs) {
        ConnectomeRequest request = requestFor(run, study());
        request.events = run.events;
        request.parts.delay = 4;
        const Connectome found = makeConnectome(request);
        // The whole run, then the conditions in the order of their names.
        ASSERT_EQ(found.matrices.size(), 3U);
        const PartMatrix *easy = &found.matrices[1];
        const PartMatrix *hard = &found.matrices[2];
        if (easy->part.condition != QStringLiteral("0back"))
            std::swap(easy, hard);
        ASSERT_EQ(hard->part.condition, QStringLiteral("2back"));
        double shared = 0;
        for (int a = 0; a < nodeCount; ++a) {
            const auto meanIn = [&](const PartMatrix &matrix) {
                double sum = 0;
                for (const Index row : matrix.part.rows)
                    sum += found.cleaned.values(row, a);
                return sum / double(matrix.part.rows.size());
            };
            responses[regionOf(a).network].push_back(meanIn(*hard) - meanIn(*easy));
            for (int b = 0; b < nodeCount; ++b)
                if (regionOf(a).network == Frontoparietal && regionOf(b).network == DorsalAttention)
                    shared += (hard->matrix.values(a, b) - easy->matrix.values(a, b)) / 24;
        }
        couplings.push_back(shared);
    }
    const auto t = [](const std::vector<double> &values) {
        const Eigen::Map<const ArrayXd> all(values.data(), Index(values.size()));
        const double deviation =
            std::sqrt((all - all.mean()).square().sum() / double(all.size() - 1));
        return all.mean() / deviation * std::sqrt(double(all.size()));
    };
    EXPECT_GT(t(responses[Frontoparietal]), 8);
    EXPECT_GT(t(responses[DorsalAttention]), 4);
    EXPECT_LT(t(responses[DefaultMode]), -8);
    EXPECT_GT(t(couplings), 4);
}

} // namespace
} // namespace corvane
