// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/label_table.h"
#include "host/files/voi_file.h"
#include "host/import/voi_grid.h"

#include <QStringList>

namespace corvane
{

/// The VOIs of an atlas: one for each label but 0 that the atlas or the table holds, in ascending
/// order. Labels are taken by nearest neighbour. No VOI holds a place where nothing was recorded. A
/// label without a name is named by its number. One without voxels stays as an empty VOI. Whatever
/// loses voxels is said in `notes`, with its voxels in the atlas and those of them that lie inside
/// the run. Throws InputError for an image with so many labels that it is no atlas; `path` is the
/// atlas's. `counts`, if given, gets one entry for each VOI.
/// Labels without a colour in the table get those from `firstColour` on.
VoiSet voisOfAtlas(const Image3d<qint32> &atlas, const LabelTable &table,
                   const FunctionalGrid &grid, const Eigen::Affine3d &cubeToWorld, VoiGrid voiGrid,
                   const QString &path, QStringList &notes,
                   std::vector<LabelCount> *counts = nullptr, int firstColour = 0);

} // namespace corvane
