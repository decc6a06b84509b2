// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/map_files.h"

#include "host/files/output_file.h"
#include "host/group/table_cells.h"
#include "host/painting/page_picture.h"
#include "host/painting/scatter_painting.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace corvane
{

namespace
{

QJsonObject mapFacts(const BrainMap &map)
{
    return {{QStringLiteral("File"), map.path},
            {QStringLiteral("Column"), map.column},
            {QStringLiteral("Rows"), qint64(map.values.size())},
            {QStringLiteral("HasNames"), !map.names.isEmpty()}};
}

QString axisName(const BrainMap &map)
{
    return QStringLiteral("%1 (%2)").arg(map.column, QFileInfo(map.path).fileName());
}

} // namespace

QString mapPNote()
{
    return QStringLiteral("p comes from shuffling nodes: it ignores that neighbours are alike "
                          "(spatial autocorrelation), and is too small");
}

void writeMapFiles(const OutputFolder &folder, const MapRequest &request,
                   const statistics::MapComparison &found)
{
    writeFile(folder.path(QStringLiteral("comparison.tsv")),
              line({"nodes", "pearson", "p_pearson", "spearman", "p_spearman"}) +
                  line({cell(found.nodes), cell(found.pearson), cell(found.p_pearson),
                        cell(found.spearman), cell(found.p_spearman)}));
    QByteArray nodes = line({"name", "first", "second"});
    for (int node = 0; node < request.matched.names.size(); ++node)
        nodes += line({request.matched.names[node].toUtf8(), cell(request.matched.first(node)),
                       cell(request.matched.second(node))});
    writeFile(folder.path(QStringLiteral("nodes.tsv")), nodes);
    const QJsonObject json{
        {QStringLiteral("First"), mapFacts(request.first)},
        {QStringLiteral("Second"), mapFacts(request.second)},
        {QStringLiteral("Permutations"), request.permutations},
        // As text: JSON has no whole numbers of 64 bits.
        {QStringLiteral("Seed"), QString::number(request.seed)},
        {QStringLiteral("Nodes"), qint64(found.nodes)},
        {QStringLiteral("Pearson"), found.pearson},
        {QStringLiteral("PPearson"), found.p_pearson},
        {QStringLiteral("Spearman"), found.spearman},
        {QStringLiteral("PSpearman"), found.p_spearman},
        {QStringLiteral("Note"), mapPNote()},
        {QStringLiteral("Matching"), QJsonArray::fromStringList(request.matched.notes)},
    };
    writeFile(folder.path(QStringLiteral("compare.json")), QJsonDocument(json).toJson());
}

void writeMapPicture(const OutputFolder &folder, const MapRequest &request,
                     const statistics::MapComparison &found)
{
    ScatterPicture picture;
    picture.title = QStringLiteral("r = %1, rho = %2, %3 nodes")
                        .arg(found.pearson, 0, 'f', 2)
                        .arg(found.spearman, 0, 'f', 2)
                        .arg(found.nodes);
    picture.x = axisName(request.first);
    picture.y = axisName(request.second);
    picture.xs = request.matched.first;
    picture.ys = request.matched.second;
    picture.hasLine = true;
    const PagePicture painted =
        paintedPicture({640, 520}, 2, [&](QPainter &painter, const QRectF &area) {
            paintScatter(painter, area, picture);
        });
    writeFile(folder.path(QStringLiteral("scatter.png")), painted.png);
}

} // namespace corvane
