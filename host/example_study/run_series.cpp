// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/example_study/run_series.h"

#include <Eigen/Cholesky>

#include <algorithm>
#include <cmath>

namespace corvane::example_study
{

namespace
{

using Eigen::MatrixXd;
using Eigen::VectorXd;

constexpr double persistence = 0.45; ///< from volume to volume

/// Random factors that add to the variances what the group's correlations lose for them.
constexpr int factorCount = 4;
constexpr double ofParticipant = 0.035; ///< variance of a node by one factor
constexpr double ofSession = 0.02;

MatrixXd factors(Draw purpose, const Owner &owner, double variance)
{
    Draws draws(purpose, owner);
    MatrixXd loadings(nodeCount, factorCount);
    for (double &loading : loadings.reshaped())
        loading = std::sqrt(variance) * draws.normal();
    return loadings;
}

// ---- the task

/// The answer of the blood to a volume of activity, at the volumes behind it: a curve that is
/// highest after 6 s.
constexpr double response[] = {0, 0.08, 0.24, 0.27, 0.2, 0.12, 0.06, 0.03};

/// How much of a volume lies in blocks of a load.
VectorXd activity(const Run &run, int load)
{
    VectorXd active = VectorXd::Zero(volumeCount);
    for (const TaskBlock &block : taskBlocks(run.of))
        if (block.load == load)
            for (int t = 0; t < volumeCount; ++t) {
                const double from = std::max(block.onset, t * repetitionTime);
                const double to = std::min(block.onset + block.duration, (t + 1) * repetitionTime);
                active[t] += std::max(to - from, 0.0) / repetitionTime;
            }
    return active;
}

VectorXd responseTo(const VectorXd &active)
{
    VectorXd answer = VectorXd::Zero(volumeCount);
    for (int t = 0; t < volumeCount; ++t)
        for (int behind = 0; behind < int(std::size(response)) && behind <= t; ++behind)
            answer[t] += response[behind] * active[t - behind];
    return answer;
}

struct TaskEffect {
    double easy; ///< height of the response in standard deviations
    double hard;
    double shared; ///< of a series that is shared in hard blocks
};

TaskEffect effectOn(Network network)
{
    switch (network) {
    case Visual:
        return {0.8, 0.8, 0};
    case DorsalAttention:
        return {0.4, 0.8, 0.7};
    case Salience:
        return {0.2, 0.6, 0};
    case Frontoparietal:
        return {0.3, 1, 0.7};
    case DefaultMode:
        return {-0.2, -0.7, 0};
    default:
        return {0, 0, 0};
    }
}

void addTask(const Run &run, MatrixXd &series)
{
    const VectorXd easy = responseTo(activity(run, 0));
    const VectorXd hard = responseTo(activity(run, 2));
    Draws draws(Draw::Task, run.owner());
    const VectorXd shared = draws.persistentSeries(volumeCount, persistence).cwiseProduct(hard);
    for (int node = 0; node < nodeCount; ++node) {
        const TaskEffect effect = effectOn(regionOf(node).network);
        series.col(node) += effect.easy * easy + effect.hard * hard + effect.shared * shared;
    }
}

} // namespace

MatrixXd correlationsOf(const Run &run)
{
    const auto number = static_cast<std::uint32_t>(run.of.number);
    const MatrixXd own = factors(Draw::ParticipantConnections, {number, 0, 0}, ofParticipant);
    const MatrixXd today =
        factors(Draw::SessionConnections, {number, run.owner().session, 0}, ofSession);
    MatrixXd covariance = groupCorrelations(run.of.group);
    covariance.diagonal().array() -= factorCount * (ofParticipant + ofSession);
    covariance += own * own.transpose() + today * today.transpose();
    const VectorXd scale = covariance.diagonal().cwiseSqrt().cwiseInverse();
    return scale.asDiagonal() * covariance * scale.asDiagonal();
}

MatrixXd nodeSeriesOf(const Run &run)
{
    MatrixXd independent(volumeCount, nodeCount);
    for (int node = 0; node < nodeCount; ++node)
        independent.col(node) = Draws(Draw::Series, run.owner(), std::uint32_t(node))
                                    .persistentSeries(volumeCount, persistence);
    const MatrixXd root = correlationsOf(run).llt().matrixL();
    MatrixXd series = independent * root.transpose();
    if (run.task == NBack)
        addTask(run, series);
    return series;
}

} // namespace corvane::example_study
