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
#include <QJsonArray>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

QString key(const char *name)
{
    return QLatin1String(name);
}

/// The files of one run in a folder.
struct RunFolder {
    QDir folder;
    QString run;

    QString path(const QString &rest) const
    {
        return folder.filePath(run + QLatin1Char('_') + rest);
    }
};

double numberIn(const TsvTable &table, int row, int column)
{
    const QString text = table.cell(row, column);
    const std::optional<double> number = finiteNumber(text);
    if (!number && text != QLatin1String("n/a"))
        throw InputError(table.path(), table.place(row, column), quoted(text),
                         QStringLiteral("a number or n/a"));
    return number.value_or(nan);
}

std::vector<int> wholeNumbers(const QJsonArray &array)
{
    std::vector<int> numbers;
    for (const QJsonValue value : array)
        numbers.push_back(value.toInt());
    return numbers;
}

ValueKind kindOf(const QString &measure)
{
    const QString lower = measure.toLower();
    if (lower.contains(QLatin1String("fisher")))
        return ValueKind::FisherZ;
    if (lower.contains(QLatin1String("covariance")))
        return ValueKind::Other;
    if (lower.contains(QLatin1String("partial")))
        return ValueKind::PartialCorrelation;
    return lower.contains(QLatin1String("correlation")) ? ValueKind::Correlation : ValueKind::Other;
}

/// What a file name tells of its part: "window 3", "condition rest, interval 2".
QString partText(const QString &entities, const QJsonObject &part)
{
    if (entities.isEmpty())
        return QStringLiteral("whole run");
    if (entities == QLatin1String("desc-uncleaned"))
        return QStringLiteral("whole run, uncleaned");
    QStringList texts;
    const QString condition = part.value(key("Condition")).toString();
    for (const QString &entity : entities.split(QLatin1Char('_'))) {
        const QString name = entity.section(QLatin1Char('-'), 0, 0);
        const QString value = entity.section(QLatin1Char('-'), 1);
        if (name == QLatin1String("cond"))
            texts += QStringLiteral("condition ") + (condition.isEmpty() ? value : condition);
        else
            texts += name + QLatin1Char(' ') + value;
    }
    return texts.join(QStringLiteral(", "));
}

/// The matrix of a file, with what its sidecar says.
ResultMatrix readMatrix(const QString &path, const QString &entities, QStringList &nodes)
{
    const MatrixTable table = readMatrixTable(path);
    QString sidecar = path;
    sidecar.replace(QRegularExpression(QStringLiteral("\\.tsv\\z")), QStringLiteral(".json"));
    const QJsonObject json = QFileInfo::exists(sidecar) ? readJson(sidecar) : QJsonObject();
    if (nodes.isEmpty())
        nodes = table.names;
    if (table.names != nodes)
        throw InputError(path, QStringLiteral("names"), QStringLiteral("other nodes"),
                         QStringLiteral("those of the run's first matrix"));
    const QString measure = json.value(key("RelationshipMeasure")).toString();
    const QJsonObject part = json.value(key("Part")).toObject();
    ResultMatrix matrix = resultMatrix((measure.isEmpty() ? QStringLiteral("values") : measure) +
                                           QStringLiteral(", ") + partText(entities, part),
                                       measure, kindOf(measure), table.values);
    const QJsonObject ledger = json.value(key("Ledger")).toObject();
    const QJsonValue degrees = part.isEmpty() ? ledger.value(key("DegreesOfFreedom"))
                                              : part.value(key("DegreesOfFreedom"));
    const bool isUncleaned = json.value(key("Uncleaned")).toBool();
    if (degrees.isDouble() && !isUncleaned)
        matrix.degrees = degrees.toDouble();
    matrix.degreesAreEstimate =
        !part.isEmpty() || ledger.value(key("DegreesOfFreedomAreEstimate")).toBool();
    matrix.isShrunk = json.contains(key("LedoitWolfShrinkage"));
    matrix.volumes = wholeNumbers(part.value(key("Volumes")).toArray());
    return matrix;
}

QString ledgerNumber(const QJsonObject &ledger, const char *name, int decimals)
{
    const QJsonValue value = ledger.value(QLatin1String(name));
    return value.isDouble() ? readableNumber(value.toDouble(), decimals) : QStringLiteral("n/a");
}

QStringList ledgerLines(const QJsonObject &json)
{
    const QJsonObject ledger = json.value(key("Ledger")).toObject();
    if (ledger.isEmpty())
        return {};
    return {
        json.value(key("Cleaning")).toObject().value(key("Summary")).toString(),
        QStringLiteral("%1 of %2 volumes kept (%3 s), %4 non-steady, %5 censored")
            .arg(ledgerNumber(ledger, "Kept", 0), ledgerNumber(ledger, "Volumes", 0),
                 ledgerNumber(ledger, "SecondsKept", 0), ledgerNumber(ledger, "NonSteady", 0),
                 ledgerNumber(ledger, "Censored", 0)),
        QStringLiteral("rank %1, %2%3 degrees of freedom left")
            .arg(ledgerNumber(ledger, "Rank", 0),
                 ledger.value(key("DegreesOfFreedomAreEstimate")).toBool()
                     ? QStringLiteral("about ")
                     : QString(),
                 ledgerNumber(ledger, "DegreesOfFreedom", 0)),
        QStringLiteral("mean FD %1 mm before, %2 mm after")
            .arg(ledgerNumber(ledger, "MeanFDBefore", 3), ledgerNumber(ledger, "MeanFDAfter", 3))};
}

void readSeries(const RunFolder &files, NetworkResult &result)
{
    const QString path = files.path(QStringLiteral("stat-mean_timeseries.tsv"));
    const QString sidecar = files.path(QStringLiteral("stat-mean_timeseries.json"));
    if (!QFileInfo::exists(path) || !QFileInfo::exists(sidecar))
        return;
    const TsvTable table(path);
    const QJsonObject json = readJson(sidecar);
    ResultSeries series;
    series.values.resize(table.rowCount(), table.columns().size());
    for (int row = 0; row < table.rowCount(); ++row)
        for (int column = 0; column < table.columns().size(); ++column)
            series.values(row, column) = numberIn(table, row, column);
    series.volumes = wholeNumbers(json.value(key("Volumes")).toArray());
    if (int(series.volumes.size()) != table.rowCount() ||
        table.columns().size() != int(result.nodes.size()))
        throw InputError(
            path, QStringLiteral("rows and columns"),
            QStringLiteral("%1 x %2").arg(table.rowCount()).arg(table.columns().size()),
            QStringLiteral("%1 x %2, as its sidecar and the matrix have it")
                .arg(series.volumes.size())
                .arg(result.nodes.size()));
    series.repetitionTime = json.value(key("RepetitionTime")).toDouble();
    const QJsonObject ledger = json.value(key("Ledger")).toObject();
    series.isBandPassed = ledger.value(key("DegreesOfFreedomAreEstimate")).toBool();
    series.leftOut.assign(std::size_t(std::max(ledger.value(key("Volumes")).toInt(), 0)), true);
    for (const int volume : series.volumes) {
        if (volume < 0 || volume >= int(series.leftOut.size()))
            throw InputError(
                sidecar, QStringLiteral("Volumes"), QString::number(volume),
                QStringLiteral("volumes of the ledger's %1").arg(series.leftOut.size()));
        series.leftOut[std::size_t(volume)] = false;
    }
    const QString design = files.path(QStringLiteral("design.tsv"));
    if (QFileInfo::exists(design))
        series.regressors = TsvTable(design).columns();
    result.ledger = ledgerLines(json);
    result.series = std::move(series);
}

int columnOf(const TsvTable &table, const char *name)
{
    return table.column(QLatin1String(name));
}

QString textIn(const TsvTable &table, int row, int column)
{
    const QString text = column < 0 ? QString() : table.cell(row, column);
    return text == QLatin1String("n/a") ? QString() : text;
}

/// What is known of the nodes, from the table beside the matrices.
void readNodes(const RunFolder &files, NetworkResult &result)
{
    const QString coverage = files.path(QStringLiteral("stat-coverage_bold.tsv"));
    if (QFileInfo::exists(coverage)) {
        const TsvTable table(coverage);
        const int column = table.requiredColumn(QStringLiteral("coverage"));
        for (int row = 0; row < std::min(table.rowCount(), int(result.nodes.size())); ++row)
            result.nodes[std::size_t(row)].coverage = numberIn(table, row, column);
    }
    const QString nodes = files.path(QStringLiteral("nodes.tsv"));
    if (!QFileInfo::exists(nodes))
        return;
    const TsvTable table(nodes);
    if (table.rowCount() != int(result.nodes.size()))
        throw InputError(nodes, QStringLiteral("rows"), QString::number(table.rowCount()),
                         QStringLiteral("%1, the nodes of the matrix").arg(result.nodes.size()));
    const int x = table.requiredColumn(QStringLiteral("x"));
    const int y = table.requiredColumn(QStringLiteral("y"));
    const int z = table.requiredColumn(QStringLiteral("z"));
    const auto count = [&](int row, const char *name) -> std::optional<qint64> {
        const int column = columnOf(table, name);
        return column < 0 ? std::nullopt : wholeNumber(table.cell(row, column));
    };
    for (int row = 0; row < table.rowCount(); ++row) {
        ResultNode &node = result.nodes[std::size_t(row)];
        node.network = textIn(table, row, columnOf(table, "network"));
        node.hemisphere = hemisphereName(textIn(table, row, columnOf(table, "hemisphere")));
        const Eigen::Vector3d place(numberIn(table, row, x), numberIn(table, row, y),
                                    numberIn(table, row, z));
        if (place.allFinite())
            node.place = place;
        node.voxels = count(row, "voxels");
        node.usedVoxels = count(row, "used_voxels");
    }
}

/// "sub-01 ses-a task-rest, Example38": what tells a run from others, and the atlas.
QString titleOf(const QString &run)
{
    QStringList parts;
    QString atlas;
    for (const QString &part : run.split(QLatin1Char('_')))
        if (part.startsWith(QLatin1String("atlas-")) || part.startsWith(QLatin1String("seg-")))
            atlas = part.section(QLatin1Char('-'), 1);
        else if (!part.startsWith(QLatin1String("space-")) &&
                 !part.startsWith(QLatin1String("res-")))
            parts += part;
    return parts.join(QLatin1Char(' ')) + QStringLiteral(", ") + atlas;
}

QRegularExpression matrixForm()
{
    return QRegularExpression(QStringLiteral(
        "\\A(.*(?:atlas|seg)-[A-Za-z0-9]+)_(?:(.+?)_)?(stat-[A-Za-z0-9]+|desc-uncleaned)_"
        "relmat\\.tsv\\z"));
}

QStringList matrixFiles(const QString &folder)
{
    return QDir(folder).entryList({QStringLiteral("*_relmat.tsv")}, QDir::Files, QDir::Name);
}

/// Conditions as bands, from the intervals of their matrices.
void takeBand(const QJsonObject &part, std::vector<ConditionBand> &bands)
{
    const QString condition = part.value(key("Condition")).toString();
    for (const QJsonValue value : part.value(key("Intervals")).toArray())
        bands.push_back({condition, value.toArray().at(0).toInt(), value.toArray().at(1).toInt()});
}

/// The atlas of the row, where its study has kept it and it is still there.
QString atlasFileOf(const RunFolder &files)
{
    QString row = files.run;
    const QString path =
        files.folder.filePath(QStringLiteral(".corvane-row-") + row + QStringLiteral(".json"));
    if (!QFileInfo::exists(path))
        return {};
    const QJsonObject json = readJson(path);
    for (const QJsonValue value : json.value(key("inputs")).toArray()) {
        const QJsonObject input = value.toObject();
        if (input.value(key("role")).toString() != QLatin1String("atlas"))
            continue;
        const QString atlas = QDir(json.value(key("dataset")).toString())
                                  .filePath(input.value(key("path")).toString());
        return QFileInfo::exists(atlas) ? atlas : QString();
    }
    return {};
}

} // namespace

QStringList runsIn(const QString &folder)
{
    QStringList runs;
    for (const QString &file : matrixFiles(folder)) {
        const QString run = matrixForm().match(file).captured(1);
        if (!run.isEmpty() && !runs.contains(run))
            runs += run;
    }
    return runs;
}

NetworkResult readConnectomeResult(const QString &folder, const QString &run)
{
    NetworkResult result;
    result.runs = runsIn(folder);
    result.run = run.isEmpty() ? result.runs.value(0) : run;
    if (!result.runs.contains(result.run))
        throw InputError(folder, QStringLiteral("run"), quoted(result.run),
                         QStringLiteral("one of: %1").arg(result.runs.join(QStringLiteral(", "))));
    result.title = titleOf(result.run);
    const RunFolder files{QDir(folder), result.run};
    QStringList names;
    std::vector<ResultMatrix> parts;
    std::vector<ResultMatrix> uncleaned;
    std::vector<ConditionBand> bands;
    QSet<QString> banded;
    for (const QString &file : matrixFiles(folder)) {
        const QRegularExpressionMatch match = matrixForm().match(file);
        if (match.captured(1) != result.run)
            continue;
        const bool isUncleaned = match.captured(3) == QLatin1String("desc-uncleaned");
        const QString entities = isUncleaned ? match.captured(3) : match.captured(2);
        const QString path = files.folder.filePath(file);
        ResultMatrix matrix = readMatrix(path, entities, names);
        if (entities.isEmpty())
            result.matrices.push_back(std::move(matrix));
        else if (isUncleaned)
            uncleaned.push_back(std::move(matrix));
        else {
            if (entities.startsWith(QLatin1String("cond-")) &&
                !entities.contains(QLatin1String("_interval-")) && !banded.contains(entities)) {
                banded.insert(entities);
                takeBand(
                    readJson(QString(path).replace(path.size() - 4, 4, QStringLiteral(".json")))
                        .value(key("Part"))
                        .toObject(),
                    bands);
            }
            parts.push_back(std::move(matrix));
        }
    }
    for (std::vector<ResultMatrix> *others : {&parts, &uncleaned})
        std::move(others->begin(), others->end(), std::back_inserter(result.matrices));
    for (const QString &name : names)
        result.nodes.push_back({name});
    readNodes(files, result);
    readSeries(files, result);
    if (result.series)
        result.series->bands = std::move(bands);
    result.atlasFile = atlasFileOf(files);
    return result;
}

} // namespace corvane
