// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/subject.h"
#include "engine/assembly.h"
#include "engine/compute_settings.h"
#include "engine/compute_steps.h"
#include "engine/measures.h"
#include "engine/sign_treatment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nodalis/treatment.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace
{

using Matrices = std::vector<Eigen::MatrixXf>;

/// Courses of four nodes, correlated with both signs.
Eigen::MatrixXf courses()
{
    Eigen::MatrixXf courses(4, 12);
    for (int t = 0; t < 12; ++t) {
        const auto time = static_cast<float>(t);
        courses.col(t) << std::sin(time), -std::sin(time) + 0.1f * time, std::cos(1.7f * time),
            std::cos(1.7f * time) + 0.3f * std::sin(5.0f * time);
    }
    return courses;
}

/// Two intervals, with a slice each.
Subject subjectOf(ConnectivityMeasure measure, MatrixValues values)
{
    SubjectProtocol protocol("task", 1, 1);
    ProtocolCondition condition;
    condition.intervals = {{1, 6}, {7, 12}};
    protocol.conditions[0] = condition;
    protocol.volumeConditions = {{1, 0}, {7, 0}};
    Subject subject;
    subject.setProtocol(protocol);
    subject.setUseProtocol(true);
    subject.setMeasure(static_cast<int>(measure));
    subject.setMatrixValues(static_cast<int>(values));
    return subject;
}

TEST(ComputeSettings, HaveTheNumbersOfASubjectAndNames)
{
    EXPECT_EQ(Subject().measure(), static_cast<int>(ConnectivityMeasure::Correlation));
    EXPECT_EQ(Subject().matrixValues(), static_cast<int>(MatrixValues::Absolute));
    EXPECT_STREQ(nameOf(static_cast<ConnectivityMeasure>(1), measureNames), "correlation");
    EXPECT_STREQ(nameOf(static_cast<ConnectivityMeasure>(2), measureNames), "partial-correlation");
    EXPECT_STREQ(nameOf(static_cast<MatrixValues>(0), matrixValuesNames), "absolute");
    EXPECT_STREQ(nameOf(static_cast<MatrixValues>(1), matrixValuesNames), "positive");
    EXPECT_STREQ(nameOf(static_cast<MatrixValues>(2), matrixValuesNames), "negative");
    EXPECT_EQ(nameOf(static_cast<ConnectivityMeasure>(0), measureNames), nullptr);
    EXPECT_STREQ(nameOf(static_cast<MatrixValues>(3), matrixValuesNames), "signed");
    EXPECT_EQ(nameOf(static_cast<MatrixValues>(4), matrixValuesNames), nullptr);
}

TEST(ComputeSteps, MeasureEachSliceByTheMeasureOfTheSubject)
{
    const Eigen::MatrixXf run = courses();
    const Subject plain = subjectOf(ConnectivityMeasure::Correlation, MatrixValues::Absolute);
    EXPECT_EQ(measureSlices(plain, run),
              (Matrices{correlationMatrix(run.leftCols(6)), correlationMatrix(run.rightCols(6))}));
    const Subject partial =
        subjectOf(ConnectivityMeasure::PartialCorrelation, MatrixValues::Absolute);
    EXPECT_EQ(measureSlices(partial, run), (Matrices{partialCorrelationMatrix(run.leftCols(6)),
                                                     partialCorrelationMatrix(run.rightCols(6))}));
}

TEST(ComputeSteps, TellTheShareOfAllSlicesThatIsMeasured)
{
    for (const auto measure :
         {ConnectivityMeasure::Correlation, ConnectivityMeasure::PartialCorrelation}) {
        const Subject subject = subjectOf(measure, MatrixValues::Absolute);
        std::vector<double> shares;
        EXPECT_EQ(measureSlices(subject, courses(), [&](double share) { shares.push_back(share); }),
                  measureSlices(subject, courses()));
        EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
        EXPECT_EQ(std::count(shares.begin(), shares.end(), 0.5), 1) << "the end of the first slice";
        EXPECT_EQ(shares.back(), 1.0);
    }
}

TEST(ComputeSteps, OfAMeasureThatThereIsNotFail)
{
    Subject subject;
    for (const int measure : {0, 3, 7, -1}) {
        subject.setMeasure(measure);
        EXPECT_THROW(measureSlices(subject, courses()), std::bad_function_call) << measure;
        EXPECT_THROW(measureSlices(subject, courses(), [](double) {}), std::bad_function_call);
    }
}

TEST(ComputeSteps, FollowEachOtherInTheirOrder)
{
    for (const auto &[values, name] : matrixValuesNames) {
        SCOPED_TRACE(name);
        const Subject subject = subjectOf(ConnectivityMeasure::Correlation, values);
        const Matrices measured = measureSlices(subject, courses());
        Matrices signs = measured;
        for (Eigen::MatrixXf &matrix : signs)
            treatSigns(matrix, values);
        Matrices treated = signs;
        for (Eigen::MatrixXf &matrix : treated)
            nodalis::treatment(matrix);
        EXPECT_NE(treated, signs);
        const SpanningTrees trees = spanningTrees(treated);

        std::vector<std::pair<ComputeStep, Matrices>> seen;
        const ComputedMatrices computed =
            finishSlices(subject, measured, [&seen](ComputeStep step, const Matrices &matrices) {
                seen.emplace_back(step, matrices);
            });
        EXPECT_EQ(computed.connectivity, treated);
        EXPECT_EQ(computed.trees.weights, trees.weights);
        EXPECT_EQ(computed.trees.trees, trees.trees);
        EXPECT_EQ(seen, (decltype(seen){{ComputeStep::Measure, measured},
                                        {ComputeStep::SignTreatment, signs},
                                        {ComputeStep::Treatment, treated},
                                        {ComputeStep::SpanningTrees, trees.weights}}));
    }
}

TEST(ComputeSteps, EndWithoutTreesThatAreNotWanted)
{
    Subject subject = subjectOf(ConnectivityMeasure::Correlation, MatrixValues::Absolute);
    subject.setComputeMst(false);
    std::vector<ComputeStep> seen;
    const ComputedMatrices computed =
        finishSlices(subject, measureSlices(subject, courses()),
                     [&seen](ComputeStep step, const Matrices &) { seen.push_back(step); });
    EXPECT_EQ(computed.connectivity.size(), 2U);
    EXPECT_TRUE(computed.trees.weights.empty());
    EXPECT_TRUE(computed.trees.trees.empty());
    EXPECT_EQ(seen, (std::vector{ComputeStep::Measure, ComputeStep::SignTreatment,
                                 ComputeStep::Treatment}));
}

TEST(ComputeSteps, NeedNobodyWhoWatches)
{
    const Subject subject = subjectOf(ConnectivityMeasure::Correlation, MatrixValues::Negative);
    const Matrices measured = measureSlices(subject, courses());
    EXPECT_EQ(finishSlices(subject, measured).connectivity.size(), 2U);
    EXPECT_TRUE(finishSlices(subject, {}).connectivity.empty());
}

} // namespace
