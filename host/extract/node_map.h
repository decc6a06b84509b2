// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/image3d.h"
#include "host/files/label_table.h"

#include <QString>
#include <QStringList>
#include <vector>

/// @file
/// The nodes of an atlas on the grid of a run.

namespace corvane
{

/// The grid of a run.
struct RunGrid {
    QString path; ///< for messages
    GridSize size{0, 0, 0};
    Eigen::Affine3d toWorld = Eigen::Affine3d::Identity();
};

struct Node {
    qint32 label = 0;
    QString name;      ///< that of the table, else the label's number
    qint64 voxels = 0; ///< of the run, that have the label
    /// As many voxels of the run as the whole region would fill, whether the run reaches it or not:
    /// at least `voxels`.
    double wholeVoxels = 0;
    QString network = {};    ///< of the table of names; empty where unknown
    QString hemisphere = {}; ///< likewise
};

/// Voxels of the run that follow each other in the file and belong to one node.
struct Stretch {
    qint64 start = 0;
    qint64 length = 0;
    int node = 0; ///< position in NodeMap::nodes
};

struct NodeMap {
    std::vector<Node> nodes;
    std::vector<Stretch> stretches; ///< ascending, inside the mask
    std::vector<Stretch> outside;   ///< ascending, voxels that the mask takes from their nodes

    qint64 voxelCount() const;
};

/// The nodes: one for each label but 0 that the atlas or the table of names holds, in ascending
/// order. Where the grids of atlas and run differ the labels are taken by nearest neighbour, which
/// is said in `notes`, and so is a label without a voxel or without a name. Voxels where the mask
/// is 0 or not a number count as lost; a mask without voxels is none. Throws InputError when atlas
/// or mask and run do not overlap, and for an image with so many labels that it is no atlas.
NodeMap mapNodes(const RunGrid &run, const Image3d<qint32> &atlas, const QString &atlasPath,
                 const LabelTable &names, const Image3d<float> &mask, const QString &maskPath,
                 QStringList &notes);

} // namespace corvane
