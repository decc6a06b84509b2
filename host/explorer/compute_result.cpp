// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/counted.h"
#include "host/explorer/result_readers.h"
#include "host/files/file_kind.h"
#include "host/files/graph_table.h"
#include "host/files/input_error.h"
#include "host/files/json_file.h"
#include "host/files/series_table.h"
#include "host/files/text_check.h"
#include "host/files/text_lines.h"
#include "host/files/vmr_file.h"
#include "host/files/voi_file.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <cmath>

namespace corvane
{

namespace
{

QString key(const char *name)
{
    return QLatin1String(name);
}

ValueKind kindOf(const QString &measure)
{
    return measure.startsWith(QLatin1String("partial")) ? ValueKind::PartialCorrelation
                                                        : ValueKind::Correlation;
}

/// The kind of numbers that a matrix on its own holds, by its diagonal and range.
ValueKind kindOf(const Eigen::MatrixXd &values)
{
    bool isCorrelation = values.rows() > 1;
    for (Eigen::Index to = 0; to < values.cols() && isCorrelation; ++to)
        for (Eigen::Index from = 0; from <= to && isCorrelation; ++from) {
            const double value = values(from, to);
            isCorrelation = std::isnan(value) || std::abs(value) <= 1 + 1e-6;
        }
    return isCorrelation && values.minCoeff() < 0 ? ValueKind::Correlation : ValueKind::Other;
}

/// A table of numbers without names: nodes x volumes.
Eigen::MatrixXd readNumbers(const QString &path)
{
    std::vector<std::vector<double>> rows;
    for (const TextLine &line : readTextLines(path)) {
        std::vector<double> row;
        for (const QString &cell : line.text.split(QLatin1Char(',')))
            row.push_back(finiteNumber(cell).value_or(std::numeric_limits<double>::quiet_NaN()));
        if (!rows.empty() && row.size() != rows.front().size())
            throw InputError(path, QStringLiteral("line %1").arg(line.number),
                             QStringLiteral("%1 numbers").arg(row.size()),
                             QString::number(rows.front().size()));
        rows.push_back(std::move(row));
    }
    Eigen::MatrixXd values(rows.size(), rows.empty() ? 0 : rows.front().size());
    for (std::size_t row = 0; row < rows.size(); ++row)
        for (std::size_t column = 0; column < rows[row].size(); ++column)
            values(Eigen::Index(row), Eigen::Index(column)) = rows[row][column];
    return values;
}

/// Where the VOIs of the compute are, in the millimetres of the anatomy's space, if both files are
/// still there.
void takePlaces(const QJsonObject &json, NetworkResult &result)
{
    const QJsonObject inputs = json.value(key("inputs")).toObject();
    const auto file = [&](const char *input) {
        const QString path =
            inputs.value(QLatin1String(input)).toObject().value(key("file")).toString();
        return QFileInfo::exists(path) ? path : QString();
    };
    const QString vois = file("voi");
    const QString anatomy = file("anatomy");
    if (vois.isEmpty() || anatomy.isEmpty() || fileKind(anatomy) != FileKind::Vmr)
        return;
    const std::optional<VmrSpace> space = readVmr(anatomy).space;
    const VoiSet set = readVoiFile(vois);
    const QJsonArray nodes = json.value(key("nodes")).toArray();
    for (std::size_t n = 0; n < result.nodes.size(); ++n) {
        const int number = nodes.at(int(n)).toObject().value(key("voi")).toInt(-1);
        if (number < 0 || number >= int(set.vois.size()) || !space || set.referenceSpace >= 3 ||
            set.vois[std::size_t(number)].voxels.empty())
            continue;
        Eigen::Vector3d sum = Eigen::Vector3d::Zero();
        const auto &voxels = set.vois[std::size_t(number)].voxels;
        for (const auto &voxel : voxels)
            for (std::size_t axis = 0; axis < 3; ++axis)
                for (std::size_t row = 0; row < 3; ++row)
                    sum[Eigen::Index(row)] += voxel[axis] * space->directions[axis][row];
        result.nodes[n].place =
            sum / double(voxels.size()) +
            Eigen::Vector3d(space->origin[0], space->origin[1], space->origin[2]);
    }
}

QStringList ledgerLines(const QJsonObject &cleaning)
{
    if (cleaning.isEmpty())
        return {};
    const auto text = [&](const char *name) {
        return cleaning.value(QLatin1String(name)).toVariant().toString();
    };
    return {text("method"),
            QStringLiteral("%1 of %2 volumes kept (%3 s), %4 non-steady, %5 censored")
                .arg(text("kept volumes"), text("volumes"), text("seconds kept"),
                     text("non-steady volumes"), text("censored volumes")),
            QStringLiteral("rank %1, %2 degrees of freedom left")
                .arg(text("rank"), text("degrees of freedom"))};
}

/// The slices of a compute that have a matrix worth the name: an event of one volume has none. All
/// where there are but events.
QJsonArray slicesOf(const QJsonObject &json)
{
    const QJsonArray all = json.value(key("slices")).toArray();
    QJsonArray intervals;
    for (const QJsonValue slice : all)
        if (!slice.toObject().value(key("event")).toBool())
            intervals.append(slice);
    return intervals.isEmpty() ? all : intervals;
}

/// The tables of a compute, which has put names around their numbers or not.
Eigen::MatrixXd readMatrix(const QString &path, bool isNamed)
{
    return isNamed ? readMatrixTable(path).values : readNumbers(path);
}

/// Volumes x nodes.
Eigen::MatrixXd readCourses(const QString &path, bool isNamed)
{
    return isNamed ? readSeriesTable(path).values.cast<double>().transpose().eval()
                   : readNumbers(path).transpose().eval();
}

} // namespace

NetworkResult readComputeResult(const QString &folder)
{
    const QDir files(folder);
    const QString path = files.filePath(QStringLiteral("summary.json"));
    const QJsonObject json = readJson(path);
    const QJsonObject settings = json.value(key("settings")).toObject();
    const QString measure = settings.value(key("measure")).toString();
    NetworkResult result;
    result.title = QFileInfo(QDir(folder).absolutePath()).fileName();
    for (const QJsonValue value : json.value(key("nodes")).toArray()) {
        const QJsonObject node = value.toObject();
        result.nodes.push_back({node.value(key("name")).toString()});
        if (node.contains(key("voxels")))
            result.nodes.back().voxels = node.value(key("voxels")).toInt();
    }
    const QJsonObject cleaning = json.value(key("cleaning")).toObject();
    const bool isNamed = settings.value(key("names")).toBool();
    const QString signs = settings.value(key("values")).toString();
    const bool withoutSigns =
        signs != QLatin1String("positive") && signs != QLatin1String("signed");
    const bool isWhole = !settings.value(key("use protocol")).toBool();
    const QJsonArray slices = slicesOf(json);
    for (const QJsonValue value : slices) {
        const QJsonObject slice = value.toObject();
        const QString file = files.filePath(slice.value(key("connectivity")).toString());
        const Eigen::MatrixXd values = readMatrix(file, isNamed);
        if (values.rows() != Eigen::Index(result.nodes.size()) || values.rows() != values.cols())
            throw InputError(file, QStringLiteral("rows and columns"),
                             QStringLiteral("%1 x %2").arg(values.rows()).arg(values.cols()),
                             QStringLiteral("%1 of each").arg(result.nodes.size()));
        const QString condition = slice.value(key("condition")).toString();
        ResultMatrix matrix = resultMatrix(
            isWhole
                ? measure + QStringLiteral(", whole run")
                : QStringLiteral("%1, %2 %3")
                      .arg(measure, QString::number(slice.value(key("slice")).toInt()), condition),
            measure, kindOf(measure), values);
        // The strength of a correlation without its sign is no correlation.
        if (withoutSigns && matrix.kind == ValueKind::Correlation)
            matrix.degrees.reset();
        if (isWhole && cleaning.contains(key("degrees of freedom")))
            matrix.degrees = cleaning.value(key("degrees of freedom")).toDouble();
        result.matrices.push_back(std::move(matrix));
    }
    const QString course = files.filePath(QStringLiteral("timeseries.csv"));
    if (QFileInfo::exists(course)) {
        ResultSeries series;
        series.values = readCourses(course, isNamed);
        if (series.values.cols() == Eigen::Index(result.nodes.size())) {
            for (int volume = 0; volume < int(series.values.rows()); ++volume)
                series.volumes.push_back(volume);
            series.leftOut.assign(series.volumes.size(), false);
            series.repetitionTime = json.value(key("repetition time in seconds")).toDouble();
            result.series = std::move(series);
        }
    }
    result.ledger = ledgerLines(cleaning);
    takePlaces(json, result);
    const int events = json.value(key("slices")).toArray().size() - slices.size();
    if (events > 0)
        result.notes += QStringLiteral("left out, since one volume has no correlation: %1")
                            .arg(counted(events, "event"));
    for (const QJsonValue warning : json.value(key("warnings")).toArray())
        result.notes += warning.toString();
    return result;
}

NetworkResult readMatrixResult(const QString &path)
{
    const MatrixTable table = readMatrixTable(path);
    NetworkResult result;
    result.title = QFileInfo(path).completeBaseName();
    for (Eigen::Index node = 0; node < table.values.rows(); ++node)
        result.nodes.push_back(
            {table.names.isEmpty() ? QString::number(node) : table.names[int(node)]});
    result.matrices.push_back(resultMatrix(QStringLiteral("values"), QStringLiteral("values"),
                                           kindOf(table.values), table.values));
    result.hasNames = !table.names.isEmpty();
    result.notes = table.notes;
    return result;
}

} // namespace corvane
