// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/node_facts.h"
#include "host/explorer/result_readers.h"
#include "host/files/graph_table.h"
#include "host/files/input_error.h"
#include "host/files/json_file.h"
#include "host/files/text_check.h"
#include "host/files/tsv_table.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <algorithm>

namespace corvane
{

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

double numberIn(const TsvTable &table, int row, int column)
{
    return finiteNumber(table.cell(row, column)).value_or(nan);
}

int placeOf(const QHash<QString, int> &places, const TsvTable &table, int row, int column)
{
    const auto found = places.constFind(table.cell(row, column));
    if (found == places.constEnd())
        throw InputError(table.path(), table.place(row, column), quoted(table.cell(row, column)),
                         QStringLiteral("a name that group.json has"));
    return *found;
}

template <typename List, typename Name>
QHash<QString, int> placesOf(const List &list, Name name)
{
    QHash<QString, int> places;
    int number = 0;
    for (const auto &entry : list)
        places.insert(name(entry), number++);
    return places;
}

void readEdges(const TsvTable &table, NetworkResult &result)
{
    const auto nodes = placesOf(result.nodes, [](const ResultNode &node) { return node.name; });
    const auto contrasts =
        placesOf(result.contrasts, [](const GroupContrast &contrast) { return contrast.name; });
    const int contrast = table.requiredColumn(QStringLiteral("contrast"));
    const int first = table.requiredColumn(QStringLiteral("node_1"));
    const int second = table.requiredColumn(QStringLiteral("node_2"));
    const int df = table.requiredColumn(QStringLiteral("df"));
    const auto column = [&](const char *name) { return table.requiredColumn(QLatin1String(name)); };
    const int estimate = column("estimate"), t = column("t"), f = column("F"), p = column("p"),
              family = column("p_fwe"), q = column("q");
    const auto count = Eigen::Index(result.nodes.size());
    for (GroupContrast &empty : result.contrasts)
        for (Eigen::MatrixXd *values :
             {&empty.effect, &empty.values, &empty.p, &empty.pFamily, &empty.q})
            values->setConstant(count, count, nan);
    for (int row = 0; row < table.rowCount(); ++row) {
        GroupContrast &of = result.contrasts[std::size_t(placeOf(contrasts, table, row, contrast))];
        const int a = placeOf(nodes, table, row, first);
        const int b = placeOf(nodes, table, row, second);
        const bool isF = of.statistic == QLatin1String("F");
        of.degrees = numberIn(table, row, df);
        const std::pair<Eigen::MatrixXd *, int> cells[] = {{&of.effect, estimate},
                                                           {&of.values, isF ? f : t},
                                                           {&of.p, p},
                                                           {&of.pFamily, family},
                                                           {&of.q, q}};
        for (const auto &[values, cell] : cells)
            (*values)(a, b) = (*values)(b, a) = numberIn(table, row, cell);
    }
}

std::vector<std::pair<int, int>> membersIn(const TsvTable &table, int row, int column, int nodes)
{
    std::vector<std::pair<int, int>> edges;
    for (const QString &member :
         table.cell(row, column).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const std::optional<qint64> first = wholeNumber(member.section(QLatin1Char('-'), 0, 0));
        const std::optional<qint64> second = wholeNumber(member.section(QLatin1Char('-'), 1));
        if (!first || !second || *first < 0 || *second <= *first || *second >= nodes)
            throw InputError(table.path(), table.place(row, column), quoted(member),
                             QStringLiteral("two numbers of nodes"));
        edges.emplace_back(int(*first), int(*second));
    }
    return edges;
}

void readComponents(const TsvTable &table, NetworkResult &result)
{
    const auto contrasts =
        placesOf(result.contrasts, [](const GroupContrast &contrast) { return contrast.name; });
    const auto column = [&](const char *name) { return table.requiredColumn(QLatin1String(name)); };
    for (int row = 0; row < table.rowCount(); ++row) {
        ResultComponent component;
        component.contrast = placeOf(contrasts, table, row, column("contrast"));
        component.threshold = numberIn(table, row, column("threshold"));
        component.side = table.cell(row, column("side"));
        component.intensity = numberIn(table, row, column("intensity"));
        component.pExtent = numberIn(table, row, column("p_extent"));
        component.pIntensity = numberIn(table, row, column("p_intensity"));
        component.edges = membersIn(table, row, column("members"), int(result.nodes.size()));
        result.components.push_back(std::move(component));
    }
}

void addMatrices(NetworkResult &result)
{
    for (std::size_t n = 0; n < result.contrasts.size(); ++n) {
        const GroupContrast &contrast = result.contrasts[n];
        const auto add = [&](const QString &what, const Eigen::MatrixXd &values) {
            result.matrices.push_back(resultMatrix(contrast.name + QStringLiteral(": ") + what,
                                                   what, ValueKind::Statistic, values));
            result.matrices.back().contrast = int(n);
        };
        add(contrast.statistic, contrast.values);
        if (contrast.statistic != QLatin1String("F"))
            add(QStringLiteral("effect"), contrast.effect);
    }
}

/// Matrices that other tests of a group left.
void addOthers(const QDir &files, NetworkResult &result)
{
    const QString tangent = files.filePath(QStringLiteral("tangent_mean.tsv"));
    if (QFileInfo::exists(tangent))
        result.matrices.push_back(resultMatrix(QStringLiteral("tangent mean"),
                                               QStringLiteral("covariance"), ValueKind::Other,
                                               readMatrixTable(tangent).values));
    const QString icc = files.filePath(QStringLiteral("icc.tsv"));
    if (!QFileInfo::exists(icc))
        return;
    const TsvTable table(icc);
    const auto nodes = placesOf(result.nodes, [](const ResultNode &node) { return node.name; });
    const auto count = Eigen::Index(result.nodes.size());
    for (const char *const kind : {"icc_1_1", "icc_2_1", "icc_3_1"}) {
        const int column = table.requiredColumn(QLatin1String(kind));
        Eigen::MatrixXd values = Eigen::MatrixXd::Constant(count, count, nan);
        for (int row = 0; row < table.rowCount(); ++row) {
            const int a =
                placeOf(nodes, table, row, table.requiredColumn(QStringLiteral("node_1")));
            const int b =
                placeOf(nodes, table, row, table.requiredColumn(QStringLiteral("node_2")));
            values(a, b) = values(b, a) = numberIn(table, row, column);
        }
        ResultMatrix matrix =
            resultMatrix(QLatin1String(kind), QStringLiteral("ICC"), ValueKind::Other, values);
        matrix.limit = 1;
        result.matrices.push_back(std::move(matrix));
    }
}

/// The tables of nodes that lie beside the matrices of a group: those of a study, or of its table.
QStringList nodeTablesOf(const QJsonObject &settings, const QDir &group)
{
    // A group's folder usually stands in that of its study; the path was written where it was made.
    QString root =
        settings.value(QLatin1String("Study")).toObject().value(QLatin1String("Folder")).toString();
    if (!root.isEmpty() && !QFileInfo(root).isDir())
        root = group.filePath(QStringLiteral(".."));
    QStringList folders;
    if (!root.isEmpty()) {
        const QDir study(root);
        for (const QString &subject :
             study.entryList({QStringLiteral("sub-*")}, QDir::Dirs, QDir::Name)) {
            folders += study.filePath(subject + QStringLiteral("/func"));
            const QDir sessions(study.filePath(subject));
            for (const QString &session :
                 sessions.entryList({QStringLiteral("ses-*")}, QDir::Dirs, QDir::Name))
                folders += sessions.filePath(session + QStringLiteral("/func"));
        }
    }
    const QString list = settings.value(QLatin1String("Table")).toString();
    if (QFileInfo(list).isFile()) {
        const TsvTable table(list);
        const int column = table.column(QStringLiteral("matrix"));
        for (int row = 0; row < table.rowCount() && column >= 0; ++row)
            folders += QFileInfo(QFileInfo(list).dir().filePath(table.cell(row, column))).path();
    }
    folders.removeDuplicates();
    QStringList tables;
    for (const QString &folder : qAsConst(folders))
        for (const QString &file :
             QDir(folder).entryList({QStringLiteral("*_nodes.tsv")}, QDir::Files, QDir::Name))
            if (!file.endsWith(QLatin1String("_stat-graphmeasures_nodes.tsv")))
                tables += QDir(folder).filePath(file);
    return tables;
}

/// What a subject's table tells of the nodes; the first table that names them all is taken.
void takeNodes(const QStringList &tables, std::vector<ResultNode> &nodes)
{
    for (const QString &path : tables) {
        const TsvTable table(path);
        const auto column = [&](const char *name) { return table.column(QLatin1String(name)); };
        if (column("name") < 0 || column("network") < 0 || column("z") < 0)
            continue;
        QHash<QString, int> rows;
        for (int row = 0; row < table.rowCount(); ++row)
            rows.insert(table.cell(row, column("name")), row);
        if (!std::all_of(nodes.begin(), nodes.end(),
                         [&](const ResultNode &node) { return rows.contains(node.name); }))
            continue;
        for (ResultNode &node : nodes) {
            const int row = rows.value(node.name);
            const auto text = [&](const char *name) {
                const QString cell = column(name) < 0 ? QString() : table.cell(row, column(name));
                return cell == QLatin1String("n/a") ? QString() : cell;
            };
            node.network = text("network");
            node.hemisphere = hemisphereName(text("hemisphere"));
            const Eigen::Vector3d place(numberIn(table, row, column("x")),
                                        numberIn(table, row, column("y")),
                                        numberIn(table, row, column("z")));
            if (place.allFinite())
                node.place = place;
        }
        return;
    }
}

} // namespace

NetworkResult readGroupResult(const QString &folder)
{
    const QDir files(folder);
    const QString path = files.filePath(QStringLiteral("group.json"));
    const QJsonObject json = readJson(path);
    NetworkResult result;
    result.title = QStringLiteral("group of %1")
                       .arg(json.value(QLatin1String("Participants")).toArray().size());
    for (const QJsonValue node : json.value(QLatin1String("Nodes")).toArray())
        result.nodes.push_back({node.toString()});
    takeNodes(nodeTablesOf(json.value(QLatin1String("Settings")).toObject(), files), result.nodes);
    for (const QJsonValue value : json.value(QLatin1String("Contrasts")).toArray()) {
        GroupContrast contrast;
        contrast.name = value.toObject().value(QLatin1String("Name")).toString();
        contrast.statistic = value.toObject().value(QLatin1String("Statistic")).toString();
        result.contrasts.push_back(std::move(contrast));
    }
    if (!result.contrasts.empty())
        readEdges(TsvTable(files.filePath(QStringLiteral("edges.tsv"))), result);
    const QString components = files.filePath(QStringLiteral("components.tsv"));
    if (!result.contrasts.empty() && QFileInfo::exists(components))
        readComponents(TsvTable(components), result);
    addMatrices(result);
    addOthers(files, result);
    if (result.matrices.empty())
        throw InputError(path, QStringLiteral("its tests"), QStringLiteral("none with edges"),
                         QStringLiteral("glm, nbs, icc or tangent"));
    for (const QJsonValue line : json.value(QLatin1String("LeftOut")).toArray())
        result.leftOut += line.toString();
    for (const QJsonValue line : json.value(QLatin1String("Notes")).toArray())
        result.notes += line.toString();
    return result;
}

} // namespace corvane
