// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/import/example_head.h"

#include <Eigen/Core>
#include <array>
#include <vector>

/// @file
/// The nodes of the example study, their networks, and where its groups differ.

namespace corvane::example_study
{

enum Network {
    Visual,
    Somatomotor,
    DorsalAttention,
    Salience,
    Frontoparietal,
    DefaultMode,
    Subcortical,
    networkCount
};

constexpr std::array<const char *, networkCount> networkNames{
    "Visual",         "Somatomotor", "DorsalAttention", "Salience",
    "Frontoparietal", "Default",     "Subcortical"};

enum Group { Control, Patient };

constexpr std::array<const char *, 2> groupNames{"Control", "Patient"};

/// A region that both hemispheres have.
struct Region {
    const char *name;
    Network network;
    std::array<double, 3> centre; ///< of the right one: mm to the right, to the front and up
};

constexpr int regionCount = 19;
constexpr int nodeCount = 2 * regionCount; ///< left and right by turns

extern const std::array<Region, regionCount> regions;

/// "Thalamus L"
const Region &regionOf(int node);
bool isRight(int node);
QByteArray nodeName(int node);

/// The grid of all images of the study.
constexpr example::Grid studyGrid{{18, 23, 18}, 8, {-68, -106, -54}};

/// The distance of a place from the centre of the brain, squared; 1 on its surface.
double brainRadiusAt(double x, double y, double z);

/// The label at a place: the number of its node from 1 on, 0 outside all of them and of the brain.
quint8 nodeLabelAt(double x, double y, double z);

/// A pair of nodes whose correlation differs between the groups.
struct PlantedEdge {
    int first;
    int second;
    double control; ///< correlation
    double patient;
};

/// Where the groups differ, and nowhere else: patients have lower correlations of the medial
/// prefrontal cortex with posterior cingulate and angular regions, and higher ones of the thalamus
/// with precentral, postcentral and supplementary motor regions.
std::vector<PlantedEdge> plantedEdges();

/// Correlations of the nodes at rest in a group.
Eigen::MatrixXd groupCorrelations(Group group);

} // namespace corvane::example_study
