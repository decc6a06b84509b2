// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/edge_evidence.h"

#include "signals/error.h"
#include "signals/intervals.h"

#include <cmath>

namespace corvane
{

namespace
{

QString number(double value, int decimals = 3)
{
    return std::isfinite(value) ? QString::number(value, 'f', decimals) : QStringLiteral("n/a");
}

QString intervalText(double low, double high, double degrees, bool isEstimate)
{
    return QStringLiteral("95 % interval %1 to %2 (%3%4 degrees of freedom)")
        .arg(number(low), number(high), isEstimate ? QStringLiteral("about ") : QString(),
             QString::number(degrees, 'f', degrees == std::floor(degrees) ? 0 : 1));
}

/// The rows of the series that a matrix is made of.
std::vector<Eigen::Index> rowsOf(const ResultSeries &series, const ResultMatrix &matrix)
{
    std::vector<Eigen::Index> rows;
    std::size_t next = 0;
    for (std::size_t row = 0; row < series.volumes.size(); ++row) {
        while (next < matrix.volumes.size() && matrix.volumes[next] < series.volumes[row])
            ++next;
        if (matrix.volumes.empty() ||
            (next < matrix.volumes.size() && matrix.volumes[next] == series.volumes[row]))
            rows.push_back(Eigen::Index(row));
    }
    return rows;
}

/// Degrees of freedom less what serial correlation takes; unset where the series are not known.
std::optional<double> serialDegrees(const NetworkResult &result, const ResultMatrix &matrix,
                                    int from, int to)
{
    if (!result.series || result.series->isBandPassed)
        return std::nullopt;
    const ResultSeries &series = *result.series;
    const std::vector<Eigen::Index> rows = rowsOf(series, matrix);
    std::vector<Eigen::Index> volumes;
    for (const Eigen::Index row : rows)
        volumes.push_back(series.volumes[std::size_t(row)]);
    const std::vector<int> both{from, to};
    const double degrees =
        signals::serial_degrees(series.values(rows, both), volumes, *matrix.degrees)(0, 1);
    return std::isfinite(degrees) ? std::optional(degrees) : std::nullopt;
}

void addCorrelation(EdgeEvidence &evidence, const NetworkResult &result, const ResultMatrix &matrix,
                    double r)
{
    const double degrees = *matrix.degrees;
    const signals::CorrelationInterval interval = signals::correlation_interval(r, degrees);
    evidence.low = interval.low;
    evidence.high = interval.high;
    evidence.hasInterval = true;
    evidence.lines += intervalText(interval.low, interval.high, degrees, matrix.degreesAreEstimate);
    const std::optional<double> serial = serialDegrees(result, matrix, evidence.from, evidence.to);
    if (!serial)
        return;
    if (*serial < 3) {
        evidence.lines += QStringLiteral("no interval with serial correlation: %1 degrees of "
                                         "freedom are left, 3 are needed")
                              .arg(number(*serial, 1));
        return;
    }
    const signals::CorrelationInterval wider = signals::correlation_interval(r, *serial);
    evidence.lines += QStringLiteral("with serial correlation: ") +
                      intervalText(wider.low, wider.high, *serial, true);
}

void addPartial(EdgeEvidence &evidence, const NetworkResult &result, const ResultMatrix &matrix,
                double r)
{
    int nodes = 0;
    for (Eigen::Index node = 0; node < matrix.values.cols(); ++node)
        nodes += std::isfinite(matrix.values(node, node)) ? 1 : 0;
    Q_UNUSED(result);
    const double left = *matrix.degrees - nodes;
    if (matrix.isShrunk || left <= 0 || std::abs(r) >= 1) {
        evidence.lines += matrix.isShrunk
                              ? QStringLiteral("no interval is known for a shrunk matrix")
                              : QStringLiteral("no interval: more nodes than degrees of freedom");
        return;
    }
    const double error = 1.959964 / std::sqrt(left);
    evidence.low = std::tanh(std::atanh(r) - error);
    evidence.high = std::tanh(std::atanh(r) + error);
    evidence.hasInterval = true;
    evidence.lines += intervalText(evidence.low, evidence.high, left, matrix.degreesAreEstimate);
}

void addInterval(EdgeEvidence &evidence, const NetworkResult &result, const ResultMatrix &matrix,
                 double value)
{
    if (!std::isfinite(value))
        return;
    if (!matrix.degrees) {
        if (matrix.kind == ValueKind::Correlation)
            evidence.lines += QStringLiteral("no interval: the degrees of freedom are not known");
        return;
    }
    if (*matrix.degrees < 3) {
        evidence.lines +=
            QStringLiteral("no interval: %1 degrees of freedom are left, 3 are needed")
                .arg(number(*matrix.degrees, 1));
        return;
    }
    if (matrix.kind == ValueKind::Correlation && std::abs(value) <= 1)
        addCorrelation(evidence, result, matrix, value);
    if (matrix.kind == ValueKind::PartialCorrelation)
        addPartial(evidence, result, matrix, value);
}

void addTests(EdgeEvidence &evidence, const GroupContrast &contrast, int from, int to)
{
    evidence.lines +=
        QStringLiteral("%1: %2 %3, effect %4, %5 degrees of freedom")
            .arg(contrast.name, contrast.statistic, number(contrast.values(from, to)),
                 number(contrast.effect(from, to)), QString::number(contrast.degrees, 'f', 0));
    evidence.lines +=
        QStringLiteral("p %1, family-wise p %2, q %3")
            .arg(number(contrast.p(from, to), 4), number(contrast.pFamily(from, to), 4),
                 number(contrast.q(from, to), 4));
}

QString nodeText(const ResultNode &node)
{
    QStringList facts;
    if (node.voxels && node.usedVoxels)
        facts += QStringLiteral("%1 of %2 voxels count").arg(*node.usedVoxels).arg(*node.voxels);
    else if (node.voxels)
        facts += QStringLiteral("%1 voxels").arg(*node.voxels);
    if (std::isfinite(node.coverage))
        facts += QStringLiteral("coverage %1 %").arg(100 * node.coverage, 0, 'f', 1);
    if (node.place)
        facts += QStringLiteral("at %1, %2, %3 mm")
                     .arg(node.place->x(), 0, 'f', 0)
                     .arg(node.place->y(), 0, 'f', 0)
                     .arg(node.place->z(), 0, 'f', 0);
    return facts.isEmpty() ? QString()
                           : node.name + QStringLiteral(": ") + facts.join(QStringLiteral(", "));
}

} // namespace

EdgeEvidence edgeEvidence(const NetworkResult &result, const ResultMatrix &matrix, int from, int to)
{
    EdgeEvidence evidence;
    evidence.from = from;
    evidence.to = to;
    const ResultNode &first = result.nodes[std::size_t(from)];
    const ResultNode &second = result.nodes[std::size_t(to)];
    evidence.title = first.name + QStringLiteral(" - ") + second.name;
    const double value = matrix.values(from, to);
    evidence.lines += QStringLiteral("%1: %2").arg(matrix.name, number(value));
    addInterval(evidence, result, matrix, value);
    if (matrix.contrast >= 0)
        addTests(evidence, result.contrasts[std::size_t(matrix.contrast)], from, to);
    for (const ResultNode *node : {&first, &second}) {
        const QString text = nodeText(*node);
        if (!text.isEmpty())
            evidence.lines += text;
    }
    return evidence;
}

} // namespace corvane
