// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/import/voi_grid.h"

/// @file
/// VOIs that are spheres around places in millimetres.

namespace corvane
{

struct Sphere {
    QString name;
    Eigen::Vector3d centre; ///< mm to the right, to the front and up, in the space of the anatomy
    double radius;          ///< mm, above 0
};

/// Spheres of a table that gives no radius have this one, in mm.
constexpr double usualSphereRadius = 5;

/// Reads a table with tabs between the columns "x", "y" and "z" and, if there are any, "radius" and
/// "name" (or "label"). A sphere without a name is named by its number, from 1. What was skipped or
/// assumed is appended to `notes`. Throws InputError.
std::vector<Sphere> readSpheres(const QString &path, QStringList &notes);

/// A VOI for each sphere: the places at most its radius from its centre, and where something was
/// recorded. One without voxels stays as an empty VOI. Counts are in voxels of 1 mm. `path` is the
/// table's; the rest as for voisOfAtlas.
VoiSet voisOfSpheres(const std::vector<Sphere> &spheres, const FunctionalGrid &grid,
                     const Eigen::Affine3d &cubeToWorld, VoiGrid voiGrid, const QString &path,
                     QStringList &notes, std::vector<LabelCount> &counts, int firstColour = 0);

} // namespace corvane
