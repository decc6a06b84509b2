// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>
#include <array>
#include <vector>

/// @file
/// What happens in the brain of the example dataset: its regions, their networks, the task and the
/// series that follow from them. Only arithmetic that every machine does alike is used, so that the
/// example is the same everywhere.

namespace corvane::example
{

constexpr int regionCount = 16;
constexpr int networkCount = 4;
constexpr int volumeCount = 200;
constexpr double repetitionTime = 2; ///< seconds

enum Network { Visual, Motor, Attention, Default };

struct Region {
    const char *name;
    Network network;
    std::array<double, 3> centre; ///< mm to the right, to the front and up
};

extern const std::array<Region, regionCount> regions;
constexpr double regionRadius = 9; ///< mm

struct TaskEvent {
    double onset;    ///< seconds
    double duration; ///< seconds, 0 for the cues
    const char *condition;
};

/// Rest and movement in blocks of 30 s, with a cue of no duration before each movement.
std::vector<TaskEvent> taskEvents();

/// Random numbers, the same on each machine.
class Random
{
public:
    explicit Random(quint64 seed) : m_state(seed) {}

    quint64 next();
    /// Nearly normal, mean 0 and variance 1: the sum of twelve uniform numbers.
    double normal();

private:
    quint64 m_state;
};

using Series = std::vector<double>; ///< volumeCount values

/// The series of each region without drift and noise, in units of the image: the shared series of
/// its network and one of its own. Networks are correlated as networkCorrelation says.
std::array<Series, regionCount> regionSeries();

/// The same at rest: no movement, no cues, other series.
std::array<Series, regionCount> restSeries();

/// Correlation between the shared series of two networks. While the subject moves, the motor
/// network also follows the visual one.
double networkCorrelation(Network a, Network b);

/// Correlation of two regions of one network.
constexpr double correlationWithinNetwork = 0.7;

/// Pearson's correlation of two series.
double correlation(const Series &a, const Series &b);

/// A series of mean 0 and variance 1 that keeps a part of its past from volume to volume.
Series persistentSeries(Random &random, double part);

/// What is not from the brain's networks, common to all voxels up to a factor.
struct Nuisance {
    Series drift;
    Series breathing;
    Series pulse;
};

Nuisance nuisance();

} // namespace corvane::example
