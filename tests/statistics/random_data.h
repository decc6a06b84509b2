// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include <Eigen/Core>

#include "statistics/edges.h"
#include "statistics/random.h"

/// Numbers for tests and benchmarks, the same on every system.
class RandomNumbers
{
public:
    explicit RandomNumbers(std::uint64_t seed, std::uint64_t number = 0);

    /// Above 0 and below 1.
    double uniform();
    /// Of mean 0 and variance 1.
    double normal();
    int below(int n);

    Eigen::MatrixXd normal(Eigen::Index rows, Eigen::Index columns);
    statistics::EdgeData data(Eigen::Index subjects, Eigen::Index edges);
    /// Symmetric and positive definite.
    Eigen::MatrixXd covariance(Eigen::Index nodes);

private:
    statistics::RandomSequence m_words;
};
