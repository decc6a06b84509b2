// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <array>
#include <cstdint>

/// @file
/// Random numbers of the example study. Each is a function of what it is for, so that any thread
/// can make any of them, on every machine the same.

namespace corvane::example_study
{

/// What numbers are for.
enum class Draw : std::uint32_t {
    Participant,
    ParticipantConnections,
    SessionConnections,
    Series,
    Task,
    Motion,
    Jerks,
    Nuisance,
    MotionNoise,
    Scanner
};

/// Whose numbers they are: 0 for what is the same in several sessions or tasks.
struct Owner {
    std::uint32_t participant = 0;
    std::uint32_t session = 0;
    std::uint32_t task = 0;
};

class Draws
{
public:
    Draws(Draw purpose, const Owner &owner, std::uint32_t part = 0);

    std::uint32_t word();
    /// Below 1, and 0 or more.
    double uniform() { return word() / 4294967296.0; }
    double between(double least, double most) { return least + (most - least) * uniform(); }
    /// Nearly normal, mean 0 and variance 1: the sum of twelve uniform numbers of 16 bits.
    double normal();
    /// A series of mean 0 and variance 1 that keeps a part of its past from volume to volume.
    Eigen::VectorXd persistentSeries(Eigen::Index volumes, double part);

private:
    std::array<std::uint32_t, 2> m_key;
    std::array<std::uint32_t, 4> m_counter;
    std::array<std::uint32_t, 4> m_words{};
    std::size_t m_used = 4;
};

} // namespace corvane::example_study
