// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/group_tests.h"

#include "host/group/group_rearrangements.h"
#include "statistics/error.h"
#include "statistics/paired.h"

namespace corvane
{

namespace
{

using statistics::Index;

/// The column that a contrast of pairs is about.
std::string testedColumn(const statistics::Contrast &contrast, const statistics::Design &design)
{
    std::string tested;
    for (std::size_t c = 0; c < design.columns.size(); ++c) {
        if ((contrast.weights.col(static_cast<Index>(c)).array() == 0.0).all())
            continue;
        if (!tested.empty())
            throw statistics::Error("contrast " + contrast.name +
                                    ": one of pairs is about a single column, this one about " +
                                    tested + " and " + design.columns[c]);
        tested = design.columns[c];
    }
    return tested;
}

/// A contrast's model and the data that it is of.
struct Model {
    statistics::Hypothesis hypothesis;
    statistics::EdgeData edges;
    std::vector<std::string> participants;
};

Model modelOf(const GroupData &data, bool paired, const QString &text)
{
    const statistics::Contrast contrast =
        statistics::read_contrast(text.toStdString(), data.design.columns);
    if (!paired)
        return {statistics::make_hypothesis(data.design.matrix, data.design.columns, contrast),
                data.edges, data.participants};
    const statistics::PairedDesign pairs =
        statistics::pair_rows(data.design, data.participants, testedColumn(contrast, data.design));
    const statistics::Contrast ofPairs =
        statistics::read_contrast(text.toStdString(), pairs.columns);
    return {statistics::make_hypothesis(pairs.matrix, pairs.columns, ofPairs),
            statistics::differences(data.edges, pairs), pairs.participants};
}

/// Whether the reduced model has what is common to the rows of each block.
bool holdsBlocks(const statistics::Hypothesis &hypothesis, const std::vector<std::string> &blocks)
{
    for (const std::string &label : blocks) {
        Eigen::VectorXd inBlock(static_cast<Index>(blocks.size()));
        for (std::size_t i = 0; i < blocks.size(); ++i)
            inBlock(static_cast<Index>(i)) = blocks[i] == label ? 1.0 : 0.0;
        const double explained = (hypothesis.nuisance.transpose() * inBlock).squaredNorm();
        if (explained < inBlock.squaredNorm() * (1.0 - 1e-9))
            return false;
    }
    return true;
}

QStringList notesOf(const statistics::Hypothesis &hypothesis, const GroupData &data,
                    const QString &blocks)
{
    const bool hasCovariates = hypothesis.nuisance.cols() > 1;
    if (!hasCovariates || holdsBlocks(hypothesis, data.blocks))
        return {};
    return {QStringLiteral("contrast %1: with covariates the formula should name the blocks as "
                           "well, as in \"+ C(%2)\"; else p values are only rough")
                .arg(QString::fromStdString(hypothesis.name), blocks)};
}

} // namespace

ContrastResult testContrast(const GroupData &data, const GroupRequest &request,
                            const QString &contrast, const StepWatch &steps)
{
    Model model = modelOf(data, request.paired, contrast);
    const statistics::Rearrangements rearrangements(model.hypothesis,
                                                    rearrangementOptions(data, request));
    statistics::PermutationTestOptions options;
    options.sides = request.sides;
    options.thresholds = request.thresholds;
    options.threads = request.threads;
    const ProgressWatch watch = beginStep(steps, QStringLiteral("testing"));
    options.progress = [&](Index done, Index count) { tellProgress(watch, done, count); };

    ContrastResult result;
    result.notes = notesOf(model.hypothesis, data, request.blocks);
    result.bySigns = rearrangements.has_signs();
    result.test =
        statistics::permutation_test(model.edges, model.hypothesis, rearrangements, options);
    if (!model.hypothesis.is_f() && model.hypothesis.df > 1.0) {
        beginStep(steps, QStringLiteral("leaving each participant out"));
        const auto threshold =
            request.thresholds.empty() ? std::nullopt : std::optional(request.thresholds.front());
        result.influences = statistics::LeaveOneOut(model.edges, model.hypothesis)
                                .influences(threshold, request.sides, request.threads);
    }
    result.hypothesis = std::move(model.hypothesis);
    result.participants = std::move(model.participants);
    return result;
}

} // namespace corvane
