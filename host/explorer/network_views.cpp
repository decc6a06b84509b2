// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/network_views.h"

#include "host/painting/labels.h"
#include "host/painting/picture_colours.h"

#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

/// On both papers, and beside all colours of the maps.
const QColor markColour(20, 160, 60);
const QColor pointColour(130, 130, 130);

QString valueText(double value)
{
    return std::isnan(value) ? QStringLiteral("n/a") : QString::number(value, 'f', 3);
}

/// The name of a node beside its place, on paper so that it can be read above edges.
void paintTag(QPainter &painter, const QPointF &place, const QString &name, const QRectF &inside,
              bool isBelow = false)
{
    painter.setFont(labelFont(painter, 12));
    QRectF tag = QFontMetricsF(painter.font()).boundingRect(name).adjusted(-4, -2, 4, 2);
    tag.moveTopLeft(place + QPointF(8, isBelow ? 6 : -tag.height() - 6));
    tag.moveLeft(std::clamp(tag.left(), inside.left(),
                            std::max(inside.left(), inside.right() - tag.width())));
    tag.moveTop(std::max(tag.top(), inside.top()));
    painter.setPen(markColour);
    painter.setBrush(paperOf(painter));
    painter.drawRoundedRect(tag, 3, 3);
    painter.setPen(inkOf(painter));
    painter.drawText(tag, Qt::AlignCenter, name);
}

/// The window's title and its threshold bar say it for all views.
void withoutTexts(NetworkPicture &picture)
{
    picture.title.clear();
    picture.foot.clear();
}

void paintNodeMark(QPainter &painter, const QPointF &place, const QColor &colour)
{
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, 2.5));
    painter.drawEllipse(place, 7, 7);
}

} // namespace

// ---- matrix

MatrixCanvas::MatrixCanvas(ExplorerModel &model, QWidget *parent)
    : NetworkCanvas(model, NetworkView::Matrix, parent)
{
    setObjectName(QStringLiteral("matrixCanvas"));
    setAccessibleName(tr("Matrix"));
}

NetworkPicture MatrixCanvas::picture() const
{
    NetworkPicture picture = networkPicture(model().result(), model().shown(), model().drawn(),
                                            model().settings(), kind());
    const int nodes = int(picture.names.size());
    const auto range = [&](double from, double to) {
        const int first = std::clamp(int(std::lround(from * nodes)), 0, std::max(0, nodes - 1));
        return NodeRange{first, std::clamp(int(std::lround(to * nodes)) - first, 1, nodes - first)};
    };
    withoutTexts(picture);
    picture.columns = range(m_seen.left(), m_seen.right());
    picture.rows = range(m_seen.top(), m_seen.bottom());
    return picture;
}

void MatrixCanvas::paintPicture(QPainter &painter, const QRectF &area)
{
    const NetworkPicture now = picture();
    m_layout = matrixLayout(painter, area, now);
    paintMatrix(painter, area, now);
}

QRectF MatrixCanvas::cellOf(int node, int other) const
{
    return m_layout.cell(model().placeOf(node), model().placeOf(other));
}

void MatrixCanvas::paintMarks(QPainter &painter)
{
    painter.setClipRect(m_layout.map.adjusted(-2, -2, 2, 2));
    painter.setBrush(Qt::NoBrush);
    if (m_row >= 0) {
        painter.setPen(QPen(pointColour, 1));
        painter.drawRect(m_layout.cell(m_row, m_column).adjusted(-1, -1, 1, 1));
    }
    const int row = model().placeOf(model().node());
    const int column = model().placeOf(model().other());
    if (row < 0)
        return;
    painter.setPen(QPen(markColour, 2));
    const QRectF map = m_layout.map;
    const auto stripe = [&](int place) {
        const QRectF cell = m_layout.cell(place, place);
        painter.drawRect(QRectF(map.left(), cell.top(), map.width(), cell.height()));
    };
    if (column < 0) {
        stripe(row);
        return;
    }
    for (const QRectF &cell : {m_layout.cell(row, column), m_layout.cell(column, row)}) {
        const double more = std::max(2.0, (8 - cell.width()) / 2);
        painter.drawRect(cell.adjusted(-more, -more, more, more));
    }
}

/// The map, in shares of all nodes, is moved and made smaller or larger, but never beyond all.
void MatrixCanvas::keepInside()
{
    const int nodes = std::max<int>(1, int(model().result().nodes.size()));
    const double least = std::min(1.0, 4.0 / nodes);
    const double side = std::clamp(m_seen.width(), least, 1.0);
    m_seen = QRectF(std::clamp(m_seen.left(), 0.0, 1 - side),
                    std::clamp(m_seen.top(), 0.0, 1 - side), side, side);
    renew();
}

void MatrixCanvas::zoomAbout(const QPointF &place, double factor)
{
    const QRectF &map = m_layout.map;
    const double x = std::clamp((place.x() - map.left()) / map.width(), 0.0, 1.0);
    const double y = std::clamp((place.y() - map.top()) / map.height(), 0.0, 1.0);
    const int nodes = std::max<int>(1, int(model().result().nodes.size()));
    const double side = std::clamp(m_seen.width() / factor, std::min(1.0, 4.0 / nodes), 1.0);
    const QPointF fixed(m_seen.left() + x * m_seen.width(), m_seen.top() + y * m_seen.height());
    m_seen = QRectF(fixed.x() - x * side, fixed.y() - y * side, side, side);
    keepInside();
}

void MatrixCanvas::pan(const QPointF &by)
{
    if (m_layout.map.width() > 0)
        m_seen.translate(-by.x() / m_layout.map.width() * m_seen.width(),
                         -by.y() / m_layout.map.height() * m_seen.height());
    keepInside();
}

void MatrixCanvas::showAll()
{
    m_seen = QRectF(0, 0, 1, 1);
    renew();
}

void MatrixCanvas::click(const QPointF &place)
{
    const int row = m_layout.rowAt(place.y());
    const int column = m_layout.columnAt(place.x());
    if (row < 0 || column < 0)
        return model().select(-1);
    const std::vector<int> &order = model().shown().order.nodes;
    model().select(order[std::size_t(row)], order[std::size_t(column)]);
}

QString MatrixCanvas::textAt(const QPointF &place)
{
    m_row = m_layout.rowAt(place.y());
    m_column = m_layout.columnAt(place.x());
    if (m_row < 0 || m_column < 0) {
        m_row = m_column = -1;
        return {};
    }
    const std::vector<int> &order = model().shown().order.nodes;
    const int from = order[std::size_t(m_row)];
    const int to = order[std::size_t(m_column)];
    return QStringLiteral("%1 - %2: %3")
        .arg(model().result().nodes[std::size_t(from)].name,
             model().result().nodes[std::size_t(to)].name,
             valueText(model().shown().values(from, to)));
}

void MatrixCanvas::step(int right, int down)
{
    const std::vector<int> &order = model().shown().order.nodes;
    const int count = int(order.size());
    if (count < 2)
        return;
    int row = model().placeOf(model().node());
    int column = model().placeOf(model().other());
    if (row < 0 || column < 0) {
        row = std::max(row, 0);
        return model().select(order[std::size_t(row)], order[std::size_t(row == 0 ? 1 : 0)]);
    }
    // The diagonal is stepped over: a node has no edge to itself.
    do {
        row = (row + down + count) % count;
        column = (column + right + count) % count;
    } while (row == column);
    model().select(order[std::size_t(row)], order[std::size_t(column)]);
}

// ---- ring

RingCanvas::RingCanvas(ExplorerModel &model, QWidget *parent)
    : NetworkCanvas(model, NetworkView::Ring, parent)
{
    setObjectName(QStringLiteral("ringCanvas"));
    setAccessibleName(tr("Ring"));
}

void RingCanvas::paintPicture(QPainter &painter, const QRectF &area)
{
    NetworkPicture picture = networkPicture(model().result(), model().shown(), model().drawn(),
                                            model().settings(), kind());
    withoutTexts(picture);
    m_ring = ringLayout(painter, area, picture);
    paintRing(painter, area, picture);
}

QPointF RingCanvas::placeOf(int node) const
{
    return toWidget().map(m_ring.place(model().placeOf(node), m_ring.radius));
}

void RingCanvas::paintMarks(QPainter &painter)
{
    const std::vector<int> &order = model().shown().order.nodes;
    const int first = model().placeOf(model().node());
    const int second = model().placeOf(model().other());
    const auto tag = [&](int place, const QColor &colour) {
        const QPointF at = toWidget().map(m_ring.place(place, m_ring.radius));
        paintNodeMark(painter, at, colour);
        paintTag(painter, at, model().result().nodes[std::size_t(order[std::size_t(place)])].name,
                 rect(), place == second);
    };
    if (first >= 0 && second >= 0) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(markColour, 3));
        painter.drawPath(toWidget().map(ringEdgePath(m_ring, first, second)));
    }
    if (m_pointed >= 0 && m_pointed < m_ring.nodes)
        tag(m_pointed, pointColour);
    for (const int place : {second, first})
        if (place >= 0)
            tag(place, markColour);
}

void RingCanvas::click(const QPointF &place)
{
    selectAt(m_ring.nodeAt(fromWidget(place)));
}

QString RingCanvas::textAt(const QPointF &place)
{
    m_pointed = m_ring.nodeAt(fromWidget(place));
    if (m_pointed < 0)
        return {};
    const ResultNode &node =
        model().result().nodes[std::size_t(model().shown().order.nodes[std::size_t(m_pointed)])];
    return node.network.isEmpty() ? node.name : node.name + QStringLiteral(", ") + node.network;
}

// ---- brain

BrainCanvas::BrainCanvas(ExplorerModel &model, QWidget *parent)
    : NetworkCanvas(model, NetworkView::Brain, parent)
{
    setObjectName(QStringLiteral("brainCanvas"));
    setAccessibleName(tr("Brain"));
}

void BrainCanvas::paintPicture(QPainter &painter, const QRectF &area)
{
    m_picture = brainPicture(model().result(), model().shown(), model().drawn(), model().settings(),
                             model().outlines());
    withoutTexts(m_picture.network);
    m_layout = brainLayout(area, m_picture);
    paintBrain(painter, area, m_picture);
}

QPointF BrainCanvas::placeOf(int panel, int node) const
{
    return toWidget().map(
        m_layout.place(panel, *m_picture.places[std::size_t(model().placeOf(node))]));
}

void BrainCanvas::paintMarks(QPainter &painter)
{
    const auto placeIn = [&](int panel, int place) {
        return toWidget().map(m_layout.place(panel, *m_picture.places[std::size_t(place)]));
    };
    const auto isThere = [&](int place) {
        return place >= 0 && place < int(m_picture.places.size()) &&
               m_picture.places[std::size_t(place)];
    };
    const int first = model().placeOf(model().node());
    const int second = model().placeOf(model().other());
    for (int panel = 0; panel < 3; ++panel) {
        if (isThere(first) && isThere(second)) {
            painter.setPen(QPen(markColour, 3));
            painter.drawLine(placeIn(panel, first), placeIn(panel, second));
        }
        if (isThere(m_pointed))
            paintNodeMark(painter, placeIn(panel, m_pointed), pointColour);
        for (const int place : {second, first})
            if (isThere(place))
                paintNodeMark(painter, placeIn(panel, place), markColour);
    }
    for (const int place : {m_pointed, second, first})
        if (isThere(place))
            paintTag(painter, placeIn(0, place), m_picture.network.names[place], rect(),
                     place == second);
}

void BrainCanvas::click(const QPointF &place)
{
    selectAt(m_layout.nodeAt(fromWidget(place), m_picture, 12));
}

QString BrainCanvas::textAt(const QPointF &place)
{
    m_pointed = m_layout.nodeAt(fromWidget(place), m_picture, 12);
    return m_pointed < 0 ? QString() : m_picture.network.names[m_pointed];
}

// ---- evidence, measures

EvidenceCanvas::EvidenceCanvas(ExplorerModel &model, QWidget *parent)
    : NetworkCanvas(model, NetworkView::Evidence, parent)
{
    setObjectName(QStringLiteral("evidenceCanvas"));
    setAccessibleName(tr("Evidence of the selected edge"));
    connect(&model, &ExplorerModel::selectionChanged, this, &EvidenceCanvas::renew);
}

MeasuresCanvas::MeasuresCanvas(ExplorerModel &model, QWidget *parent)
    : NetworkCanvas(model, NetworkView::Measures, parent)
{
    setObjectName(QStringLiteral("measuresCanvas"));
    setAccessibleName(tr("Measures over density"));
    connect(&model, &ExplorerModel::selectionChanged, this, &MeasuresCanvas::renew);
    connect(&model, &ExplorerModel::curvesChanged, this, &MeasuresCanvas::renew);
}

void MeasuresCanvas::paintPicture(QPainter &painter, const QRectF &area)
{
    NetworkCanvas::paintPicture(painter, area);
    if (model().curves().steps.empty()) {
        painter.setPen(inkOf(painter));
        painter.setFont(labelFont(painter, 13));
        painter.drawText(area, Qt::AlignCenter, tr("Computing..."));
    }
}

void MeasuresCanvas::showEvent(QShowEvent *event)
{
    NetworkCanvas::showEvent(event);
    model().setCurvesWanted(true);
}

void MeasuresCanvas::hideEvent(QHideEvent *event)
{
    NetworkCanvas::hideEvent(event);
    model().setCurvesWanted(false);
}

} // namespace corvane
