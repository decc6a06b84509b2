// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/shown_network.h"

#include <QPainter>

namespace corvane
{

/// Everything that a view is drawn of. The parts outlive it.
struct FigureScene {
    const NetworkResult &result;
    const ShownMatrix &shown;
    const ViewSettings &settings;
    const std::array<QPainterPath, 3> &outlines; ///< of the brain view
    const MeasureCurves &curves;                 ///< of the view of measures
};

/// Paints a view; the painter's background is its paper, its font's family that of the texts.
/// Nothing for the table of nodes, which is no picture.
void paintView(QPainter &painter, const QRectF &area, const FigureScene &scene, NetworkView kind);

/// The size of a figure in units of which 12 are the size of its texts.
QSizeF figureSize(NetworkView kind, const FigureFormat &format);

/// The bytes of a picture: "png", "svg" or "pdf". The same scene and format give the same bytes; a
/// PDF has no date therefore. Needs a QGuiApplication. Throws std::bad_alloc.
QByteArray figurePicture(const FigureScene &scene, NetworkView kind, const FigureFormat &format,
                         const QString &ending);

/// The table of a view, with tabs between its cells: the drawn edges of matrix, ring and brain; the
/// nodes with what is known of them and their measures; the courses of the selected edge; the
/// measures over densities with the areas below them.
QByteArray figureTable(const FigureScene &scene, NetworkView kind);

/// Reads the result and writes the figure into a file whose ending tells what is wanted: .png,
/// .svg, .pdf or .tsv. Returns what is drawn, in words. Throws InputError, also for another ending.
QString writeFigure(const FigureRequest &request, const QString &path);

/// The same of a scene that is there.
void writeFigure(const FigureScene &scene, NetworkView kind, const FigureFormat &format,
                 const QString &path);

/// The outlines of a result's atlas; none where there is no file.
std::array<QPainterPath, 3> outlinesOf(const NetworkResult &result);

} // namespace corvane
