// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/compute/compute_files.h"

#include "engine/graph_measures.h"
#include "host/compute/graph_files.h"
#include "host/compute/matrix_table.h"
#include "host/files/csv_text.h"
#include "host/files/file_system.h"
#include "host/files/input_error.h"
#include "host/files/output_file.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <nodalis/nodalis.h>

namespace corvane
{

namespace
{

/// The columns of a matrix on all processors.
std::vector<Eigen::ArrayXf> columnsOf(const std::vector<GraphMeasure> &measures,
                                      const Eigen::MatrixXf &matrix, const ProgressWatch &watch)
{
    std::vector<Eigen::ArrayXf> columns;
    for (std::size_t m = 0; m < measures.size(); ++m) {
        const ProgressWatch ofMeasure = watchOfPart(watch, qint64(m), qint64(measures.size()));
        columns.push_back(columnOf(measures[m], matrix, graphEffort(0, ofMeasure)));
        tellProgress(ofMeasure, 1, 1);
    }
    return columns;
}

QByteArray featureTable(const ComputeRequest &request, const ComputeResult &result,
                        const ProgressWatch &watch)
{
    const std::vector<GraphMeasure> measures = graphMeasuresOfTables();
    QByteArray table =
        request.useProtocol ? "slice,condition,event,node,name,empty" : "slice,node,name,empty";
    for (const GraphMeasure &measure : measures)
        table += QByteArray(",") + measure.column;
    table += '\n';

    for (std::size_t s = 0; s < result.slices.size(); ++s) {
        const ComputedSlice &slice = result.slices[s];
        const std::vector<Eigen::ArrayXf> columns =
            columnsOf(measures, slice.connectivity,
                      watchOfPart(watch, qint64(s), qint64(result.slices.size())));
        for (std::size_t n = 0; n < result.nodes.size(); ++n) {
            table += QByteArray::number(static_cast<qulonglong>(s)) + ',';
            if (request.useProtocol)
                table += csvField(slice.condition) + ',' + (slice.event ? "1," : "0,");
            table += QByteArray::number(result.nodes[n].voi) + ',' +
                     csvField(result.nodes[n].name) + (result.nodes[n].voxels == 0 ? ",1" : ",0");
            for (const Eigen::ArrayXf &column : columns)
                table += ',' + csvField(column(static_cast<Eigen::Index>(n)));
            table += '\n';
        }
    }
    return table;
}

/// SHA-1 of a file: a name for its content that common tools give too, not a protection.
QString sha1(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file)) {
        throw InputError(path, QStringLiteral("reading"), file.errorString(),
                         QStringLiteral("a readable file"));
    }
    return QString::fromLatin1(hash.result().toHex());
}

QJsonObject input(const QString &path, const QString &checksumKind, const QString &checksum)
{
    return {{QStringLiteral("file"), path}, {checksumKind, checksum}};
}

QJsonObject inputs(const ComputeRequest &request, const ComputeResult &result)
{
    QJsonObject all;
    const auto add = [&all](const char *role, const QString &path) {
        all.insert(QLatin1String(role), input(path, QStringLiteral("sha1"), sha1(path)));
    };
    if (request.timeseries.isEmpty()) {
        add("anatomy", request.anatomy);
        all.insert(QStringLiteral("vtc"),
                   input(request.vtc, QStringLiteral("samples checksum"), result.vtcChecksum));
        add("voi", request.voi);
    } else {
        add("timeseries", request.timeseries);
    }
    if (!result.protocolFile.isEmpty())
        add("protocol", result.protocolFile);
    return all;
}

QJsonObject settings(const ComputeRequest &request)
{
    QJsonObject all{
        {QStringLiteral("measure"), QLatin1String(nameOf(request.measure, measureNames))},
        {QStringLiteral("values"), QLatin1String(nameOf(request.matrixValues, matrixValuesNames))},
        {QStringLiteral("spanning tree"), request.computeMst},
        {QStringLiteral("use protocol"), request.useProtocol},
        {QStringLiteral("allow singular"), request.allowSingular}};
    if (request.names)
        all.insert(QStringLiteral("names"), true);
    if (!request.seedNames.isEmpty())
        all.insert(QStringLiteral("seeds"), QJsonArray::fromStringList(request.seedNames));
    return all;
}

QJsonObject versions()
{
    return {{QStringLiteral("Corvane"), QCoreApplication::applicationVersion()},
            {QStringLiteral("Nodalis"), QString::fromUtf8(nodalis::version())},
            {QStringLiteral("Qt"), QString::fromLatin1(qVersion())},
            {QStringLiteral("Eigen"), QStringLiteral("%1.%2.%3")
                                          .arg(EIGEN_WORLD_VERSION)
                                          .arg(EIGEN_MAJOR_VERSION)
                                          .arg(EIGEN_MINOR_VERSION)}};
}

QJsonArray nodes(const ComputeResult &result)
{
    QJsonArray all;
    for (const ComputedNode &node : result.nodes) {
        QJsonObject entry{{QStringLiteral("name"), node.name}};
        if (node.voxels) {
            entry.insert(QStringLiteral("voi"), node.voi);
            entry.insert(QStringLiteral("voxels"), *node.voxels);
            entry.insert(QStringLiteral("empty"), node.voxels == 0);
        } else {
            entry.insert(QStringLiteral("column"), node.voi);
        }
        all.append(entry);
    }
    return all;
}

QString tableName(const QString &kind, const ComputeRequest &request, const ComputeResult &result,
                  std::size_t slice)
{
    return sliceFileName(kind, QStringLiteral("csv"), request, result, slice);
}

QJsonArray slices(const ComputeRequest &request, const ComputeResult &result)
{
    QJsonArray all;
    for (std::size_t s = 0; s < result.slices.size(); ++s) {
        const ComputedSlice &slice = result.slices[s];
        QJsonObject entry{{QStringLiteral("slice"), static_cast<int>(s)},
                          {QStringLiteral("connectivity"),
                           tableName(QStringLiteral("connectivity"), request, result, s)}};
        if (request.useProtocol) {
            entry.insert(QStringLiteral("condition"), slice.condition);
            entry.insert(QStringLiteral("event"), slice.event);
        }
        if (request.computeMst) {
            entry.insert(QStringLiteral("spanning tree"),
                         tableName(QStringLiteral("mst"), request, result, s));
        }
        if (!result.seedRows.empty())
            entry.insert(QStringLiteral("seeds"),
                         tableName(QStringLiteral("seeds"), request, result, s));
        all.append(entry);
    }
    return all;
}

QJsonValue numberOrNull(const std::optional<double> &number)
{
    return number ? QJsonValue(*number) : QJsonValue(QJsonValue::Null);
}

QJsonObject cleaning(const CleaningLedger &ledger)
{
    return {{QStringLiteral("method"), ledger.method},
            {QStringLiteral("volumes"), ledger.volumes},
            {QStringLiteral("non-steady volumes"), ledger.nonSteady},
            {QStringLiteral("censored volumes"), ledger.censored},
            {QStringLiteral("kept volumes"), ledger.kept},
            {QStringLiteral("rank"), ledger.rank},
            {QStringLiteral("degrees of freedom"), ledger.degreesOfFreedom},
            {QStringLiteral("seconds kept"), ledger.secondsKept},
            {QStringLiteral("mean FD before"), numberOrNull(ledger.meanFdBefore)},
            {QStringLiteral("mean FD after"), numberOrNull(ledger.meanFdAfter)}};
}

QByteArray summary(const ComputeRequest &request, const ComputeResult &result,
                   const QStringList &pictures)
{
    QJsonObject document{{QStringLiteral("inputs"), inputs(request, result)},
                         {QStringLiteral("settings"), settings(request)},
                         {QStringLiteral("volumes"), static_cast<int>(result.timeseries.cols())},
                         {QStringLiteral("nodes"), nodes(result)},
                         {QStringLiteral("slices"), slices(request, result)},
                         {QStringLiteral("versions"), versions()},
                         {QStringLiteral("warnings"), QJsonArray::fromStringList(result.warnings)}};
    if (result.repetitionTime)
        document.insert(QStringLiteral("repetition time in seconds"), *result.repetitionTime);
    if (result.cleaning)
        document.insert(QStringLiteral("cleaning"), cleaning(*result.cleaning));
    if (request.plots)
        document.insert(QStringLiteral("pictures"), QJsonArray::fromStringList(pictures));
    return QJsonDocument(document).toJson();
}

QStringList namesOf(const ComputeResult &result)
{
    QStringList names;
    for (const ComputedNode &node : result.nodes)
        names += node.name;
    return names;
}

QStringList namesOf(const ComputeResult &result, const std::vector<int> &nodes)
{
    QStringList names;
    for (const int node : nodes)
        names += result.nodes[static_cast<std::size_t>(node)].name;
    return names;
}

Eigen::MatrixXf rowsOf(const Eigen::MatrixXf &matrix, const std::vector<int> &rows)
{
    return matrix(rows, Eigen::all);
}

/// The tables of one slice.
void writeSlice(const OutputFolder &folder, const ComputeRequest &request,
                const ComputeResult &result, std::size_t number, const ProgressWatch &watch)
{
    const ComputedSlice &slice = result.slices[number];
    const QStringList allNames = namesOf(result);
    const QStringList names = request.names ? allNames : QStringList();
    const auto path = [&](const char *kind) {
        return folder.path(tableName(QLatin1String(kind), request, result, number));
    };
    const int tables = request.computeMst ? 2 : 1;
    writeMatrixTable(path("connectivity"), slice.connectivity, names, names,
                     watchOfPart(watch, 0, tables));
    if (request.computeMst)
        writeMatrixTable(path("mst"), slice.mst, names, names, watchOfPart(watch, 1, tables));
    if (!result.seedRows.empty())
        writeMatrixTable(path("seeds"), rowsOf(slice.connectivity, result.seedRows), allNames,
                         namesOf(result, result.seedRows));
}

/// The beginning of a text, of whole characters, that fits into that many bytes of UTF-8.
QString cutToBytes(const QString &text, int bytes)
{
    const QByteArray start = text.toUtf8();
    if (start.size() <= bytes)
        return text;
    const auto isInsideCharacter = [](char byte) { return (byte & 0xc0) == 0x80; };
    int end = bytes;
    while (end > 0 && isInsideCharacter(start[end]))
        --end;
    return QString::fromUtf8(start.left(end));
}

} // namespace

QString sliceFileName(const QString &kind, const QString &ending, const ComputeRequest &request,
                      const ComputeResult &result, std::size_t slice)
{
    if (!request.useProtocol)
        return kind + QLatin1Char('.') + ending;
    constexpr int longest = 255; // bytes, on common file systems
    const QString start = kind + QStringLiteral("_%1_").arg(slice);
    const QString end = QLatin1Char('.') + ending;
    QString safe = result.slices[slice].condition;
    for (QChar &c : safe) {
        if (!isForFileNames(c))
            c = QLatin1Char('_');
    }
    return start + cutToBytes(safe, longest - (start + end).toUtf8().size()) + end;
}

void writeComputeTables(const OutputFolder &folder, const ComputeRequest &request,
                        const ComputeResult &result, const QStringList &pictures,
                        const StepWatch &steps)
{
    const ProgressWatch watch = beginStep(steps, QStringLiteral("writing"));
    const QString courses = folder.path(QStringLiteral("timeseries.csv"));
    if (request.names)
        writeMatrixTable(courses, result.timeseries.transpose(), namesOf(result));
    else
        writeMatrixTable(courses, result.timeseries);
    for (std::size_t s = 0; s < result.slices.size(); ++s)
        writeSlice(folder, request, result, s,
                   watchOfPart(watch, qint64(s), qint64(result.slices.size())));
    writeFile(folder.path(QStringLiteral("features.csv")),
              featureTable(request, result, beginStep(steps, QStringLiteral("graph measures"))));
    writeFile(folder.path(QStringLiteral("summary.json")), summary(request, result, pictures));
}

} // namespace corvane
