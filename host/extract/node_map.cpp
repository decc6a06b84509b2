// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/extract/node_map.h"

#include "dataset/counted.h"
#include "host/files/image_grid.h"
#include "host/files/input_error.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace corvane
{

namespace
{

QString noteOn(const QString &path, const QString &text)
{
    return QStringLiteral("%1: %2").arg(printable(path, 4096), text);
}

double voxelVolume(const Eigen::Affine3d &toWorld)
{
    return std::abs(toWorld.linear().determinant());
}

/// Where another image's grid lies in that of the run.
struct Lookup {
    Eigen::Affine3d runToImage;
    GridSize size;
    bool same; ///< voxel by voxel, none more than a twentieth of a millimetre off

    qint64 voxel(qint64 i, qint64 j, qint64 k) const
    {
        return nearestVoxel(size, runToImage * Eigen::Vector3d(double(i), double(j), double(k)));
    }
};

Lookup lookupOf(const RunGrid &run, const GridSize &size, const Eigen::Affine3d &toWorld)
{
    Lookup lookup{toWorld.inverse() * run.toWorld, size, size == run.size};
    constexpr double slack = 0.05; // what headers of one scan differ by, in mm
    for (int corner = 0; corner < 8; ++corner) {
        Eigen::Vector3d voxel;
        for (int axis = 0; axis < 3; ++axis)
            voxel[axis] = (corner >> axis & 1) != 0 ? double(size[axis] - 1) : 0;
        if (!((run.toWorld * voxel - toWorld * voxel).cwiseAbs().maxCoeff() <= slack))
            lookup.same = false;
    }
    return lookup;
}

/// For each voxel of the run the other image's voxel there, -1 outside it.
template <typename Visit>
void forEachVoxel(const RunGrid &run, const Lookup &lookup, Visit visit)
{
    qint64 index = 0;
    for (qint64 k = 0; k < run.size[2]; ++k)
        for (qint64 j = 0; j < run.size[1]; ++j)
            for (qint64 i = 0; i < run.size[0]; ++i, ++index)
                visit(index, lookup.same ? index : lookup.voxel(i, j, k));
}

void noteOtherGrid(const RunGrid &run, const QString &path, const GridSize &size,
                   const Eigen::Affine3d &toWorld, QStringList &notes)
{
    notes += noteOn(path, QStringLiteral("the grid (%1) is not that of the run (%2): values are "
                                         "taken by nearest neighbour")
                              .arg(gridText(size, toWorld), gridText(run.size, run.toWorld)));
}

[[noreturn]] void failApart(const RunGrid &run, const QString &path)
{
    throw InputError(path, QStringLiteral("position"),
                     QStringLiteral("no voxel of it in the run %1").arg(printable(run.path, 4096)),
                     QStringLiteral("an image in the space of the run"));
}

/// Which voxels of the run the mask holds; empty without a mask.
std::vector<bool> insideMask(const RunGrid &run, const Image3d<float> &mask, const QString &path,
                             QStringList &notes)
{
    if (mask.voxels.empty())
        return {};
    const Lookup lookup = lookupOf(run, mask.size, mask.toWorld);
    if (!lookup.same)
        noteOtherGrid(run, path, mask.size, mask.toWorld, notes);
    std::vector<bool> inside(std::size_t(run.size[0] * run.size[1] * run.size[2]));
    bool any = false;
    forEachVoxel(run, lookup, [&](qint64 voxel, qint64 place) {
        const float value = place < 0 ? 0 : mask.voxels[std::size_t(place)];
        inside[std::size_t(voxel)] = value != 0 && !std::isnan(value);
        any = any || inside[std::size_t(voxel)];
    });
    if (!any)
        failApart(run, path);
    return inside;
}

/// How many voxels of the atlas each label has, those of the table without a voxel among them.
std::map<qint32, qint64> countLabels(const Image3d<qint32> &atlas, const LabelTable &names,
                                     const QString &path)
{
    std::map<qint32, qint64> counts;
    for (const auto &entry : names)
        counts[entry.first] = 0;
    qint64 *count = nullptr; // of the label before, which mostly is that of the next voxel
    qint32 last = 0;
    for (const qint32 label : atlas.voxels) {
        if (label == 0)
            continue;
        if (label != last || count == nullptr)
            count = &counts[last = label];
        ++*count;
        if (counts.size() > mostLabels)
            throw InputError(path, QStringLiteral("voxels"),
                             QStringLiteral("more than %1 labels").arg(mostLabels),
                             QStringLiteral("an image of labels"));
    }
    if (counts.empty())
        throw InputError(path, QStringLiteral("voxels"), QStringLiteral("no label"),
                         QStringLiteral("an image of labels"));
    return counts;
}

std::vector<Node> nodesOf(const std::map<qint32, qint64> &counts, const LabelTable &names,
                          double atlasVoxelsPerVoxel, const QString &path, QStringList &notes)
{
    std::vector<Node> nodes;
    QStringList nameless;
    QStringList empty;
    for (const auto &[label, count] : counts) {
        const auto entry = names.find(label);
        const bool named = entry != names.end() && !entry->second.name.isEmpty();
        nodes.push_back({label, named ? entry->second.name : QString::number(label), 0,
                         double(count) * atlasVoxelsPerVoxel});
        if (entry != names.end()) {
            nodes.back().network = entry->second.network;
            nodes.back().hemisphere = entry->second.hemisphere;
        }
        if (!named)
            nameless += QString::number(label);
        if (count == 0)
            empty += nodes.back().name;
    }
    if (!names.empty() && !nameless.isEmpty())
        notes += noteOn(
            path, QStringLiteral("%1 without a name in the table, named by numbers: %2")
                      .arg(counted(nameless.size(), "label"), nameless.join(QStringLiteral(", "))));
    if (!empty.isEmpty())
        notes += noteOn(path,
                        QStringLiteral("%1 of the table without a voxel: %2")
                            .arg(counted(empty.size(), "label"), empty.join(QStringLiteral(", "))));
    return nodes;
}

void noteEqualNames(const std::vector<Node> &nodes, const QString &path, QStringList &notes)
{
    std::map<QString, int> times;
    for (const Node &node : nodes)
        ++times[node.name];
    for (const auto &[name, count] : times)
        if (count > 1)
            notes += noteOn(path, QStringLiteral("%1 nodes are called %2").arg(count).arg(name));
}

/// Adds the next voxel of the file to the stretches of a node.
void addVoxel(std::vector<Stretch> &all, qint64 voxel, int node)
{
    if (!all.empty() && all.back().node == node && all.back().start + all.back().length == voxel)
        ++all.back().length;
    else
        all.push_back({voxel, 1, node});
}

} // namespace

qint64 NodeMap::voxelCount() const
{
    qint64 count = 0;
    for (const Stretch &stretch : stretches)
        count += stretch.length;
    return count;
}

NodeMap mapNodes(const RunGrid &run, const Image3d<qint32> &atlas, const QString &atlasPath,
                 const LabelTable &names, const Image3d<float> &mask, const QString &maskPath,
                 QStringList &notes)
{
    const Lookup lookup = lookupOf(run, atlas.size, atlas.toWorld);
    if (!lookup.same)
        noteOtherGrid(run, atlasPath, atlas.size, atlas.toWorld, notes);
    const std::map<qint32, qint64> counts = countLabels(atlas, names, atlasPath);
    NodeMap map;
    map.nodes = nodesOf(counts, names, voxelVolume(atlas.toWorld) / voxelVolume(run.toWorld),
                        atlasPath, notes);
    noteEqualNames(map.nodes, atlasPath, notes);

    std::map<qint32, int> positions;
    for (const auto &entry : counts)
        positions.emplace(entry.first, int(positions.size()));
    const std::vector<bool> inside = insideMask(run, mask, maskPath, notes);
    qint32 label = 0; // that of the voxel before, and its node
    int node = -1;
    forEachVoxel(run, lookup, [&](qint64 voxel, qint64 place) {
        const qint32 here = place < 0 ? 0 : atlas.voxels[std::size_t(place)];
        if (here == 0)
            return;
        if (here != label) {
            label = here;
            node = positions.at(here);
        }
        ++map.nodes[std::size_t(node)].voxels;
        const bool isUsed = inside.empty() || inside[std::size_t(voxel)];
        addVoxel(isUsed ? map.stretches : map.outside, voxel, node);
    });
    const bool overlaps = std::any_of(map.nodes.begin(), map.nodes.end(),
                                      [](const Node &found) { return found.voxels > 0; });
    if (!overlaps)
        failApart(run, atlasPath);
    for (Node &found : map.nodes)
        found.wholeVoxels = std::max(found.wholeVoxels, double(found.voxels));
    return map;
}

} // namespace corvane
