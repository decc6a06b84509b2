// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/report/confidence_table.h"

#include "signals/intervals.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace corvane
{

namespace
{

/// What the serial correlation of pairs leaves: the median pair's, and the lowest.
struct SerialDegrees {
    double median = 0;
    double lowest = 0;
};

std::optional<SerialDegrees> serialDegrees(const Connectome &connectome)
{
    // Degrees of freedom of a band are already corrected for what the band's series share.
    if (connectome.cleaning.design.ledger.about)
        return std::nullopt;
    std::vector<Eigen::Index> covered;
    for (std::size_t node = 0; node < connectome.nodes.size(); ++node)
        if (connectome.isCovered(node))
            covered.push_back(Eigen::Index(node));
    const Eigen::MatrixXd degrees =
        signals::serial_degrees(connectome.cleaned.values(Eigen::all, covered),
                                connectome.cleaned.volumes, connectome.cleaned.degrees);
    std::vector<double> pairs;
    for (Eigen::Index j = 0; j < degrees.cols(); ++j)
        for (Eigen::Index i = 0; i < j; ++i)
            if (std::isfinite(degrees(i, j)))
                pairs.push_back(degrees(i, j));
    if (pairs.empty())
        return std::nullopt;
    const auto middle = pairs.begin() + long(pairs.size() / 2);
    std::nth_element(pairs.begin(), middle, pairs.end());
    const double median = *middle;
    return SerialDegrees{median, *std::min_element(pairs.begin(), pairs.end())};
}

QString intervalText(double r, double degrees)
{
    if (!(degrees >= 3))
        return QStringLiteral("n/a");
    const signals::CorrelationInterval interval = signals::correlation_interval(r, degrees);
    return QStringLiteral("%1 to %2").arg(interval.low, 0, 'f', 2).arg(interval.high, 0, 'f', 2);
}

QString degreesText(double degrees)
{
    return QString::number(degrees, 'g', 4);
}

} // namespace

void addConfidence(HtmlPage &page, const Connectome &connectome)
{
    page.section(QStringLiteral("How sure a correlation is"), QStringLiteral("confidence"));
    const double degrees = connectome.cleaned.degrees;
    const std::optional<SerialDegrees> serial = serialDegrees(connectome);
    page.paragraph(
        QStringLiteral("95 of 100 such intervals hold the true correlation (Fisher's z with the "
                       "degrees of freedom that the cleaning left). They take one run as it is: "
                       "how much people differ is another question."));
    QStringList columns{
        QStringLiteral("Found r"),
        QStringLiteral("95 % interval, %1 degrees of freedom").arg(degreesText(degrees))};
    if (serial) {
        columns += QStringLiteral("with serial correlation, %1").arg(degreesText(serial->median));
        page.paragraph(
            QStringLiteral(
                "Series that change slowly have fewer independent volumes than they have "
                "volumes. The last column takes that into account for the median pair of "
                "nodes; the slowest pair has %1 degrees of freedom. Where the two "
                "columns differ much, believe the wider one.")
                .arg(degreesText(serial->lowest)));
    } else if (connectome.cleaning.design.ledger.about) {
        page.paragraph(QStringLiteral("The degrees of freedom are about what the band-pass filter "
                                      "left, which is the correction for slow series already."));
    }
    page.openTable(columns);
    for (const double r : {0.0, 0.1, 0.2, 0.3, 0.5, 0.7, 0.9}) {
        std::vector<PageCell> cells{{QString::number(r, 'f', 1), "number"},
                                    {intervalText(r, degrees), "number"}};
        if (serial)
            cells.emplace_back(intervalText(r, serial->median), "number");
        page.row(cells);
    }
    page.closeTable();
}

} // namespace corvane
