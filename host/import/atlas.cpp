// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/atlas.h"

#include "dataset/counted.h"
#include "host/files/image_grid.h"
#include "host/files/input_error.h"

#include <algorithm>

namespace corvane
{

namespace
{

struct Region : LabelCount {
    Voi voi;
};

using Regions = std::map<qint32, Region>;

void countVoxels(const Image3d<qint32> &atlas, const Eigen::Affine3d &atlasToCube,
                 const FunctionalGrid &grid, const QString &path, Regions &regions)
{
    // Neighbours mostly have the same label: remember the last one found.
    qint32 lastLabel = 0;
    Region *region = nullptr;
    const qint32 *label = atlas.voxels.data();
    for (qint64 k = 0; k < atlas.size[2]; ++k)
        for (qint64 j = 0; j < atlas.size[1]; ++j)
            for (qint64 i = 0; i < atlas.size[0]; ++i, ++label) {
                if (*label == 0)
                    continue;
                if (*label != lastLabel) {
                    lastLabel = *label;
                    region = &regions[lastLabel];
                    if (regions.size() > mostLabels)
                        throw InputError(path, QStringLiteral("voxels"),
                                         QStringLiteral("more than %1 labels").arg(mostLabels),
                                         QStringLiteral("an image of labels"));
                }
                ++region->inAtlas;
                const Eigen::Vector3d voxel(static_cast<double>(i), static_cast<double>(j),
                                            static_cast<double>(k));
                if (grid.recordedPoint(atlasToCube * voxel))
                    ++region->insideRun;
            }
}

void collectVoxels(const Image3d<qint32> &atlas, const Eigen::Affine3d &cubeToAtlas,
                   const FunctionalGrid &grid, VoiGrid voiGrid, Regions &regions)
{
    const VoxelRange range = voxelRange(grid, voiGrid);
    for (int k = range.first[2]; k <= range.last[2]; k += range.step)
        for (int j = range.first[1]; j <= range.last[1]; j += range.step)
            for (int i = range.first[0]; i <= range.last[0]; i += range.step) {
                const Eigen::Vector3d voxel(i, j, k);
                const qint32 label = labelAt(atlas, cubeToAtlas * voxel);
                if (label != 0 && grid.recordedPoint(voxel))
                    regions[label].voi.voxels.push_back({i, j, k});
            }
}

/// "7 \"Insula\""
QString labelText(qint32 label, const Region &region)
{
    return QStringLiteral("%1 %2").arg(QString::number(label), quoted(region.voi.name));
}

bool hasName(const LabelTable &table, qint32 label)
{
    const auto entry = table.find(label);
    return entry != table.end() && !entry->second.name.isEmpty();
}

void noteNameless(const Regions &regions, const LabelTable &table, const QString &path,
                  QStringList &notes)
{
    QStringList nameless;
    for (const auto &entry : regions)
        if (!hasName(table, entry.first))
            nameless += QString::number(entry.first);
    if (!nameless.isEmpty())
        notes += QStringLiteral("%1: %2 without a name in the table, whose VOIs are named by their "
                                "numbers: %3")
                     .arg(printable(path, 4096), counted(nameless.size(), "label"),
                          nameless.join(QStringLiteral(", ")));
}

void noteLosses(const Regions &regions, const QString &path, QStringList &notes)
{
    QStringList missing;
    for (const auto &[label, region] : regions) {
        if (region.inAtlas == 0) {
            missing += labelText(label, region);
            continue;
        }
        if (region.insideRun == region.inAtlas && !region.voi.voxels.empty())
            continue;
        QString note = QStringLiteral("VOI %1: %2 in the atlas, %3 of them inside the run")
                           .arg(labelText(label, region), counted(region.inAtlas, "voxel"),
                                QString::number(region.insideRun));
        if (region.voi.voxels.empty())
            note += QStringLiteral(": no functional voxel has this label, the VOI is empty");
        notes += note;
    }
    if (!missing.isEmpty())
        notes += QStringLiteral("%1: %2 of the table without a voxel, whose VOIs are empty: %3")
                     .arg(printable(path, 4096), counted(missing.size(), "label"),
                          missing.join(QStringLiteral(", ")));
}

} // namespace

VoiSet voisOfAtlas(const Image3d<qint32> &atlas, const LabelTable &table,
                   const FunctionalGrid &grid, const Eigen::Affine3d &cubeToWorld, VoiGrid voiGrid,
                   const QString &path, QStringList &notes, std::vector<LabelCount> *counts,
                   int firstColour)
{
    Regions regions;
    const Eigen::Affine3d cubeToAtlas = atlas.toWorld.inverse() * cubeToWorld;
    countVoxels(atlas, cubeToAtlas.inverse(), grid, path, regions);
    for (const auto &entry : table)
        regions[entry.first];
    if (!table.empty())
        noteNameless(regions, table, path, notes);
    collectVoxels(atlas, cubeToAtlas, grid, voiGrid, regions);

    VoiSet set;
    for (auto &[label, region] : regions) {
        const auto entry = table.find(label);
        region.voi.name = hasName(table, label) ? entry->second.name : QString::number(label);
        const Colour colour = entry != table.end() && entry->second.colour
                                  ? *entry->second.colour
                                  : nthColour(firstColour + static_cast<int>(set.vois.size()));
        region.voi.r = colour.r;
        region.voi.g = colour.g;
        region.voi.b = colour.b;
        set.vois.push_back(region.voi);
        if (counts != nullptr)
            counts->push_back(region);
    }
    noteLosses(regions, path, notes);
    if (voiGrid == VoiGrid::Anatomy)
        notes += precisionNotes(set, grid, path);
    return set;
}

} // namespace corvane
