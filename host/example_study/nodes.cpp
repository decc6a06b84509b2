// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/example_study/nodes.h"

#include <cmath>
#include <cstring>

namespace corvane::example_study
{

const std::array<Region, regionCount> regions{{
    {"Calcarine", Visual, {10, -82, 6}},
    {"Lateral occipital", Visual, {38, -74, 0}},
    {"Cuneus", Visual, {14, -80, 32}},
    {"Precentral", Somatomotor, {38, -18, 56}},
    {"Postcentral", Somatomotor, {52, -26, 38}},
    {"Supplementary motor", Somatomotor, {10, -6, 62}},
    {"Intraparietal", DorsalAttention, {30, -56, 48}},
    {"Frontal eye field", DorsalAttention, {28, 8, 52}},
    {"Anterior insula", Salience, {38, 18, 0}},
    {"Anterior cingulate", Salience, {9, 28, 28}},
    {"Dorsolateral prefrontal", Frontoparietal, {42, 32, 26}},
    {"Supramarginal", Frontoparietal, {52, -48, 40}},
    {"Posterior temporal", Frontoparietal, {56, -48, -4}},
    {"Medial prefrontal", DefaultMode, {9, 50, 6}},
    {"Posterior cingulate", DefaultMode, {9, -50, 28}},
    {"Angular", DefaultMode, {42, -68, 28}},
    {"Middle temporal", DefaultMode, {56, -14, -14}},
    {"Thalamus", Subcortical, {14, -20, 2}},
    {"Putamen", Subcortical, {27, 2, 2}},
}};

namespace
{

constexpr double regionRadius = 13; ///< mm

constexpr double withinNetwork = 0.48;
constexpr double betweenHemispheres = 0.12; ///< more for the same region of the other side
constexpr double plantedDifference = 0.38;

struct Coupling {
    Network first;
    Network second;
    double correlation;
};

/// Of other pairs of networks: 0.03.
constexpr Coupling couplings[] = {
    {Visual, Somatomotor, 0.12},          {Visual, DorsalAttention, 0.22},
    {Visual, DefaultMode, -0.05},         {Somatomotor, DorsalAttention, 0.15},
    {Somatomotor, Salience, 0.12},        {Somatomotor, DefaultMode, -0.08},
    {DorsalAttention, Salience, 0.15},    {DorsalAttention, Frontoparietal, 0.2},
    {DorsalAttention, DefaultMode, -0.2}, {Salience, Frontoparietal, 0.18},
    {Salience, DefaultMode, -0.15},       {Salience, Subcortical, 0.15},
    {Frontoparietal, DefaultMode, 0.05},  {Somatomotor, Subcortical, 0.08},
};

double betweenNetworks(Network a, Network b)
{
    for (const Coupling &coupling : couplings)
        if ((coupling.first == a && coupling.second == b) ||
            (coupling.first == b && coupling.second == a))
            return coupling.correlation;
    return 0.03;
}

double controlCorrelation(int a, int b)
{
    if (a == b)
        return 1;
    const Network first = regionOf(a).network;
    const Network second = regionOf(b).network;
    if (first != second)
        return betweenNetworks(first, second);
    return withinNetwork + (a / 2 == b / 2 ? betweenHemispheres : 0);
}

struct Difference {
    const char *first;
    const char *second;
    double change;
};

constexpr Difference differences[] = {
    {"Medial prefrontal", "Posterior cingulate", -plantedDifference},
    {"Medial prefrontal", "Angular", -plantedDifference},
    {"Thalamus", "Precentral", plantedDifference},
    {"Thalamus", "Postcentral", plantedDifference},
    {"Thalamus", "Supplementary motor", plantedDifference},
};

int regionNamed(const char *name)
{
    int number = 0;
    while (std::strcmp(regions[std::size_t(number)].name, name) != 0)
        ++number;
    return number;
}

} // namespace

const Region &regionOf(int node)
{
    return regions[std::size_t(node / 2)];
}

bool isRight(int node)
{
    return node % 2 == 1;
}

QByteArray nodeName(int node)
{
    return QByteArray(regionOf(node).name) + (isRight(node) ? " R" : " L");
}

double brainRadiusAt(double x, double y, double z)
{
    return example::squaredRadius(x, y, z, {0, -18, 14}, {68, 86, 66});
}

quint8 nodeLabelAt(double x, double y, double z)
{
    int label = 0;
    double nearest = regionRadius * regionRadius;
    for (int node = 0; node < nodeCount; ++node) {
        const std::array<double, 3> &right = regionOf(node).centre;
        const std::array<double, 3> centre{isRight(node) ? right[0] : -right[0], right[1],
                                           right[2]};
        const double distance = example::squaredRadius(x, y, z, centre, {1, 1, 1});
        if (distance < nearest) {
            nearest = distance;
            label = node + 1;
        }
    }
    return static_cast<quint8>(brainRadiusAt(x, y, z) <= 1 ? label : 0);
}

std::vector<PlantedEdge> plantedEdges()
{
    std::vector<PlantedEdge> edges;
    for (const Difference &difference : differences)
        for (int side = 0; side < 4; ++side) {
            const int first = 2 * regionNamed(difference.first) + side / 2;
            const int second = 2 * regionNamed(difference.second) + side % 2;
            const double control = controlCorrelation(first, second);
            edges.push_back({first, second, control, control + difference.change});
        }
    return edges;
}

Eigen::MatrixXd groupCorrelations(Group group)
{
    Eigen::MatrixXd correlations(nodeCount, nodeCount);
    for (int a = 0; a < nodeCount; ++a)
        for (int b = 0; b < nodeCount; ++b)
            correlations(a, b) = controlCorrelation(a, b);
    if (group == Patient)
        for (const PlantedEdge &edge : plantedEdges())
            correlations(edge.first, edge.second) = correlations(edge.second, edge.first) =
                edge.patient;
    return correlations;
}

} // namespace corvane::example_study
