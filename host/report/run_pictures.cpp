// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/report/run_pictures.h"

#include "host/extract/connectome_pictures.h"
#include "host/extract/node_order.h"
#include "host/painting/carpet_painting.h"
#include "host/painting/coverage_painting.h"
#include "host/painting/curve_painting.h"
#include "host/painting/design_painting.h"
#include "host/painting/histogram_painting.h"
#include "host/painting/matrix_painting.h"
#include "host/painting/ring_painting.h"
#include "host/painting/volume_axis.h"
#include "host/report/atlas_views.h"
#include "host/report/node_dvars.h"
#include "signals/confounds.h"

#include <cmath>
#include <limits>

namespace corvane
{

namespace
{

using Index = Eigen::Index;

constexpr int pageWidth = 1060;
constexpr double missing = std::numeric_limits<double>::quiet_NaN();

std::vector<bool> leftOutOf(const Connectome &connectome)
{
    const signals::Flags kept = connectome.cleaning.selection.volumes.kept();
    std::vector<bool> leftOut(std::size_t(kept.size()));
    for (Index volume = 0; volume < kept.size(); ++volume)
        leftOut[std::size_t(volume)] = !kept[volume];
    return leftOut;
}

Eigen::ArrayXd tableDvars(const Connectome &connectome)
{
    const signals::ConfoundsTable &table = connectome.cleaning.table;
    const auto column = signals::column_named(table, "std_dvars");
    return column ? Eigen::ArrayXd(table.values.col(*column)) : Eigen::ArrayXd();
}

/// Each node's series in standard deviations of its kept volumes, as a row; nodes whose series does
/// not change have no values.
Eigen::MatrixXd inDeviations(const Eigen::MatrixXd &series, const std::vector<Index> &kept,
                             const std::vector<int> &nodes)
{
    Eigen::MatrixXd rows(Index(nodes.size()), series.rows());
    for (std::size_t row = 0; row < nodes.size(); ++row) {
        const Eigen::VectorXd all = series.col(nodes[row]);
        const Eigen::VectorXd used = all(kept);
        const double mean = used.mean();
        const double deviation = std::sqrt((used.array() - mean).square().sum() /
                                           double(std::max<Index>(used.size() - 1, 1)));
        if (deviation > 0)
            rows.row(Index(row)) = (all.transpose().array() - mean) / deviation;
        else
            rows.row(Index(row)).setConstant(missing);
    }
    return rows;
}

/// The cleaned series at the places of their volumes in the file.
Eigen::MatrixXd cleanedInFile(const Connectome &connectome)
{
    Eigen::MatrixXd all =
        Eigen::MatrixXd::Constant(connectome.series.rows(), connectome.series.cols(), missing);
    all(connectome.cleaned.volumes, Eigen::all) = connectome.cleaned.values;
    return all;
}

CarpetPicture carpet(const Connectome &connectome, const NodeOrder &order,
                     const Eigen::MatrixXd &series, const QString &title)
{
    CarpetPicture picture;
    picture.title = title;
    picture.values = inDeviations(series, connectome.cleaned.volumes, order.nodes);
    picture.limit = 2;
    picture.groups = order.groups;
    picture.leftOut = leftOutOf(connectome);
    return picture;
}

CurvePicture nodeDvarsCurve(const Connectome &connectome, std::optional<double> scale)
{
    const QString unit = scale ? QStringLiteral("their median before it scaled to %1").arg(*scale)
                               : QStringLiteral("in their unit");
    return {QStringLiteral("DVARS of the node series after cleaning, ") + unit,
            nodeDvars(connectome, scale), 0, leftOutOf(connectome)};
}

} // namespace

PagePicture motionPicture(const Connectome &connectome, std::optional<double> dvarsScale)
{
    const signals::Thresholds &thresholds = connectome.cleaning.selection.thresholds;
    const std::vector<bool> leftOut = leftOutOf(connectome);
    std::vector<CurvePicture> curves;
    const Eigen::ArrayXd &fd = connectome.cleaning.selection.volumes.fd;
    if (fd.size() > 0)
        curves.push_back(
            {QStringLiteral("framewise displacement (FD) [mm]"), fd, thresholds.fd, leftOut});
    const Eigen::ArrayXd dvars = tableDvars(connectome);
    if (dvars.size() > 0)
        curves.push_back({QStringLiteral("std_dvars of the table of confounds: voxels, before "
                                         "cleaning"),
                          dvars, thresholds.std_dvars, leftOut});
    curves.push_back(nodeDvarsCurve(connectome, dvarsScale));
    constexpr int height = 150;
    return paintedPicture(
        QSize(pageWidth, height * int(curves.size())), 2,
        [&](QPainter &painter, const QRectF &area) {
            double top = area.top();
            for (const CurvePicture &curve : curves) {
                paintCurve(painter, QRectF(area.left(), top, area.width(), height - 6), curve);
                top += height;
            }
        });
}

PagePicture carpetPicture(const Connectome &connectome)
{
    const NodeOrder order = orderByNetwork(connectome.nodes);
    const CarpetPicture before = carpet(connectome, order, connectome.series,
                                        QStringLiteral("before cleaning, all volumes"));
    const CarpetPicture after = carpet(connectome, order, cleanedInFile(connectome),
                                       QStringLiteral("after cleaning, kept volumes"));
    const int height =
        std::clamp(8 * int(order.nodes.size()), 120, 268) + int(axisTitle + axisNumbers);
    return paintedPicture(
        QSize(pageWidth, 2 * height + 8), 1.5, [&](QPainter &painter, const QRectF &area) {
            paintCarpet(painter, QRectF(0, 0, area.width(), height), before);
            paintCarpet(painter, QRectF(0, height + 8, area.width(), height), after);
        });
}

PagePicture designPicture(const Connectome &connectome)
{
    DesignPicture picture;
    for (const std::string &name : connectome.cleaning.design.names)
        picture.names += QString::fromStdString(name);
    picture.columns = connectome.cleaning.design.columns;
    const int width = std::clamp(26 * picture.names.size() + 16, 320, pageWidth);
    return paintedPicture(QSize(width, 480), 1.5, [&](QPainter &painter, const QRectF &area) {
        paintDesign(painter, area, picture);
    });
}

PagePicture coveragePicture(const Connectome &connectome, double least)
{
    const CoveragePicture picture{atlasViews(connectome), connectome.coverage, least};
    return paintedPicture(QSize(pageWidth, 460), 1.5, [&](QPainter &painter, const QRectF &area) {
        paintCoverage(painter, area, picture);
    });
}

PagePicture matrixPicture(const Connectome &connectome, const PartMatrix &matrix)
{
    NetworkPicture picture = networkPicture({}, connectome, matrix);
    picture.title.clear();
    return paintedPicture(QSize(560, 590), 2, [&](QPainter &painter, const QRectF &area) {
        paintMatrix(painter, area, picture);
    });
}

PagePicture ringPicture(const Connectome &connectome, const PartMatrix &matrix)
{
    NetworkPicture picture = networkPicture({}, connectome, matrix);
    picture.title.clear();
    return paintedPicture(QSize(560, 590), 2, [&](QPainter &painter, const QRectF &area) {
        paintRing(painter, area, picture);
    });
}

PagePicture correlationsPicture(const Eigen::MatrixXd &uncleaned, const Eigen::MatrixXd &cleaned)
{
    const HistogramPicture picture{
        QStringLiteral("correlation r of two nodes"),
        {{QStringLiteral("before cleaning"), pairValues(uncleaned), QColor(200, 120, 0)},
         {QStringLiteral("after cleaning"), pairValues(cleaned), QColor(0, 90, 160)}},
        -1,
        1,
        {}};
    return paintedPicture(QSize(720, 280), 2, [&](QPainter &painter, const QRectF &area) {
        paintHistogram(painter, area, picture);
    });
}

std::vector<double> pairValues(const Eigen::MatrixXd &matrix)
{
    std::vector<double> values;
    for (Index column = 0; column < matrix.cols(); ++column)
        for (Index row = 0; row < column; ++row)
            if (std::isfinite(matrix(row, column)))
                values.push_back(matrix(row, column));
    return values;
}

} // namespace corvane
