// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/node_places.h"

#include "host/files/input_error.h"
#include "host/files/text_check.h"
#include "host/files/tsv_table.h"
#include "statistics/edges.h"
#include "statistics/table.h"

#include <limits>

namespace corvane
{

namespace
{

int nameColumn(const TsvTable &table)
{
    for (const char *const name : {"label", "Node"})
        if (table.column(QStringLiteral("name")) < 0 && table.column(QLatin1String(name)) >= 0)
            return table.column(QLatin1String(name));
    return table.requiredColumn(QStringLiteral("name"));
}

} // namespace

NodePlaces readNodePlaces(const QString &path)
{
    const TsvTable table(path);
    const int names = nameColumn(table);
    const int columns[] = {table.requiredColumn(QStringLiteral("x")),
                           table.requiredColumn(QStringLiteral("y")),
                           table.requiredColumn(QStringLiteral("z"))};
    NodePlaces places;
    for (int row = 0; row < table.rowCount(); ++row) {
        Eigen::Vector3d place;
        bool isKnown = true;
        for (int axis = 0; axis < 3; ++axis) {
            const QString cell = table.cell(row, columns[axis]);
            const std::optional<double> number = finiteNumber(cell);
            if (!number && !statistics::is_missing(cell.toStdString()))
                throw InputError(path, table.place(row, columns[axis]), quoted(cell),
                                 QStringLiteral("a number of mm"));
            isKnown = isKnown && number;
            place(axis) = number.value_or(0);
        }
        const QString name = table.cell(row, names);
        if (isKnown && !places.emplace(name, place).second)
            throw InputError(path, table.place(row, names), quoted(name) + QStringLiteral(" again"),
                             QStringLiteral("each node once"));
    }
    return places;
}

Eigen::ArrayXd edgeDistances(const NodePlaces &places, const std::vector<std::string> &nodes)
{
    std::vector<const Eigen::Vector3d *> known;
    for (const std::string &node : nodes) {
        const auto found = places.find(QString::fromStdString(node));
        known.push_back(found == places.end() ? nullptr : &found->second);
    }
    const auto pairs = statistics::node_pairs(static_cast<int>(nodes.size()));
    Eigen::ArrayXd distances(static_cast<Eigen::Index>(pairs.size()));
    Eigen::Index edge = 0;
    for (const statistics::NodePair &pair : pairs) {
        const bool areKnown = known[pair.first] && known[pair.second];
        distances(edge++) = areKnown ? (*known[pair.first] - *known[pair.second]).norm()
                                     : std::numeric_limits<double>::quiet_NaN();
    }
    return distances;
}

} // namespace corvane
