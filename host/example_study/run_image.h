// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/example_study/participants.h"

#include <QString>

/// @file
/// The images of the example study.

namespace corvane::example_study
{

struct BrainVoxel {
    int place; ///< in the images' grid
    example::Tissue tissue;
    int node;      ///< -1 outside all nodes
    double radius; ///< squared, 1 on the brain's surface
};

/// The head that all participants share once they are in the template's space.
struct Brain {
    std::vector<BrainVoxel> voxels;
    /// voxels x sources: how much of each source of artefacts a voxel has.
    Eigen::MatrixXf weights;
};

Brain makeBrain();

/// Samples of a run: voxels of the brain x volumes.
using Samples = Eigen::Matrix<qint16, Eigen::Dynamic, Eigen::Dynamic>;

/// The series of the nodes, and on top of them drift, what motion does to the signal, a wave of the
/// whole brain, signals of fluid and white matter, the scanner's start and its noise.
Samples samplesOf(const Run &run, const Brain &brain, const Eigen::MatrixXd &motion);

/// Which voxels of the brain are in the run's mask: each run's lacks a bit of the surface.
std::vector<int> maskOf(const Run &run, const Brain &brain);

void writeBold(const QString &path, const Brain &brain, const Samples &samples);
/// The mean of the volumes behind the scanner's start.
void writeReference(const QString &path, const Brain &brain, const Samples &samples);
void writeMask(const QString &path, const Brain &brain, const std::vector<int> &mask);
void writeAtlas(const QString &path);

/// Volumes of the scanner's start.
constexpr int unsteadyVolumes = 2;

} // namespace corvane::example_study
