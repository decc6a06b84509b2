// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/figure.h"

#include "host/explorer/brain_outline.h"
#include "host/files/input_error.h"
#include "host/files/output_file.h"
#include "host/painting/matrix_painting.h"
#include "host/painting/picture_colours.h"
#include "host/painting/ring_painting.h"
#include "host/painting/svg_picture.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QPdfWriter>
#include <cmath>
#include <new>

namespace corvane
{

namespace
{

constexpr double textUnits = 12;
constexpr double millimetresPerPoint = 25.4 / 72;

double heightOfWidth(NetworkView kind)
{
    switch (kind) {
    case NetworkView::Matrix:
        return 1.05;
    case NetworkView::Ring:
        return 1.15;
    case NetworkView::Brain:
        return 0.52;
    case NetworkView::Evidence:
        return 0.85;
    default:
        return 0.75;
    }
}

/// A font that every installation has, without the hints of this screen.
QFont figureFont()
{
    QFont font(QStringLiteral("Liberation Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

void paintFigure(QPainter &painter, const FigureScene &scene, NetworkView kind,
                 const FigureFormat &format)
{
    painter.setFont(figureFont());
    painter.setBackground(format.dark ? darkPaper() : QColor(Qt::white));
    const QSizeF size = figureSize(kind, format);
    paintView(painter, QRectF(QPointF(0, 0), size), scene, kind);
}

QByteArray pngOf(const FigureScene &scene, NetworkView kind, const FigureFormat &format)
{
    const QSizeF size = figureSize(kind, format);
    const double scale = format.width / 25.4 * format.dotsPerInch / size.width();
    QImage image((size * scale).toSize(), QImage::Format_RGB32);
    if (image.isNull())
        throw std::bad_alloc();
    image.fill(Qt::white);
    const int perMetre = int(std::lround(format.dotsPerInch / 0.0254));
    image.setDotsPerMeterX(perMetre);
    image.setDotsPerMeterY(perMetre);
    QPainter painter(&image);
    painter.scale(scale, scale);
    paintFigure(painter, scene, kind, format);
    painter.end();
    QByteArray png;
    QBuffer buffer(&png);
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG"))
        throw std::bad_alloc();
    return png;
}

/// The time of writing is no part of a figure: with it no two files would be alike.
QByteArray withoutDate(QByteArray pdf)
{
    const QByteArray key = "/CreationDate (D:";
    const int at = pdf.indexOf(key);
    for (int n = at + key.size(); at >= 0 && n < pdf.size() && pdf[n] != ')'; ++n)
        if (pdf[n] >= '0' && pdf[n] <= '9')
            pdf[n] = n - at - key.size() == 5 || n - at - key.size() == 7 ? '1' : '0';
    return pdf;
}

QByteArray pdfOf(const FigureScene &scene, NetworkView kind, const FigureFormat &format)
{
    const QSizeF size = figureSize(kind, format);
    QByteArray pdf;
    QBuffer buffer(&pdf);
    if (!buffer.open(QIODevice::WriteOnly))
        throw std::bad_alloc();
    {
        QPdfWriter writer(&buffer);
        writer.setTitle(scene.shown.title);
        writer.setCreator(QStringLiteral("Corvane"));
        writer.setResolution(1200);
        const double height = format.width * size.height() / size.width();
        writer.setPageSize(QPageSize(QSizeF(format.width, height), QPageSize::Millimeter, {},
                                     QPageSize::ExactMatch));
        writer.setPageMargins(QMarginsF(0, 0, 0, 0));
        QPainter painter(&writer);
        const double scale = format.width / 25.4 * 1200 / size.width();
        painter.scale(scale, scale);
        paintFigure(painter, scene, kind, format);
    }
    return withoutDate(pdf);
}

} // namespace

void paintView(QPainter &painter, const QRectF &area, const FigureScene &scene, NetworkView kind)
{
    const auto drawn = [&] { return drawnEdges(scene.result, scene.shown, scene.settings); };
    switch (kind) {
    case NetworkView::Matrix:
        paintMatrix(painter, area,
                    networkPicture(scene.result, scene.shown, drawn(), scene.settings, kind));
        break;
    case NetworkView::Ring:
        paintRing(painter, area,
                  networkPicture(scene.result, scene.shown, drawn(), scene.settings, kind));
        break;
    case NetworkView::Brain:
        paintBrain(
            painter, area,
            brainPicture(scene.result, scene.shown, drawn(), scene.settings, scene.outlines));
        break;
    case NetworkView::Evidence:
        paintCourses(painter, area, coursePicture(scene.result, scene.shown, scene.settings));
        break;
    case NetworkView::Measures:
        paintMeasures(painter, area,
                      measurePicture(scene.result, scene.shown, scene.curves, scene.settings));
        break;
    case NetworkView::Nodes:
        break;
    }
}

QSizeF figureSize(NetworkView kind, const FigureFormat &format)
{
    const double width = format.width / millimetresPerPoint / format.pointSize * textUnits;
    return {std::round(width), std::round(width * heightOfWidth(kind))};
}

QByteArray figurePicture(const FigureScene &scene, NetworkView kind, const FigureFormat &format,
                         const QString &ending)
{
    if (ending == QLatin1String("svg"))
        return svgPicture(figureSize(kind, format), format.width,
                          [&](QPainter &painter) { paintFigure(painter, scene, kind, format); });
    return ending == QLatin1String("pdf") ? pdfOf(scene, kind, format) : pngOf(scene, kind, format);
}

std::array<QPainterPath, 3> outlinesOf(const NetworkResult &result)
{
    return result.atlasFile.isEmpty() ? std::array<QPainterPath, 3>()
                                      : brainOutlines(result.atlasFile);
}

void writeFigure(const FigureScene &scene, NetworkView kind, const FigureFormat &format,
                 const QString &path)
{
    const QString ending = QFileInfo(path).suffix().toLower();
    const bool isTable = ending == QLatin1String("tsv");
    const bool isPicture =
        kind != NetworkView::Nodes &&
        QStringList{QStringLiteral("png"), QStringLiteral("svg"), QStringLiteral("pdf")}.contains(
            ending);
    if (!isTable && !isPicture)
        throw InputError(path, QStringLiteral("ending"), quoted(ending),
                         kind == NetworkView::Nodes
                             ? QStringLiteral(".tsv, since a table is no picture")
                             : QStringLiteral(".png, .svg, .pdf or .tsv"));
    writeFile(path,
              isTable ? figureTable(scene, kind) : figurePicture(scene, kind, format, ending));
}

QString writeFigure(const FigureRequest &request, const QString &path)
{
    const NetworkResult result = readResult(request.result);
    const auto shown = shownMatrix(result, request.view);
    std::array<QPainterPath, 3> outlines;
    if (request.kind == NetworkView::Brain)
        outlines = outlinesOf(result);
    MeasureCurves curves;
    if (request.kind == NetworkView::Measures)
        curves =
            measureCurves(shown->ranked, shown->isKnown, request.view.threshold, usualDensities());
    writeFigure({result, *shown, request.view, outlines, curves}, request.kind, request.format,
                path);
    return drawnEdges(result, *shown, request.view).text;
}

} // namespace corvane
