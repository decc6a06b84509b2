// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/network_canvas.h"

#include "host/painting/picture_colours.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMimeData>
#include <algorithm>
#include <cmath>

namespace corvane
{

NetworkCanvas::NetworkCanvas(ExplorerModel &model, NetworkView kind, QWidget *parent)
    : QWidget(parent), m_model(model), m_kind(kind)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    connect(&model, &ExplorerModel::drawnChanged, this, &NetworkCanvas::renew);
    connect(&model, &ExplorerModel::drawnChanged, this, &NetworkCanvas::tellSelection);
    connect(&model, &ExplorerModel::selectionChanged, this, &NetworkCanvas::tellSelection);
    tellSelection();
}

void NetworkCanvas::paintPicture(QPainter &painter, const QRectF &area)
{
    paintView(painter, area, m_model.scene(), m_kind);
}

void NetworkCanvas::renew()
{
    m_isOld = true;
    update();
}

/// A screen reader reads what is drawn and selected as the view's description.
void NetworkCanvas::tellSelection()
{
    const QString text = m_model.selectionText();
    setAccessibleDescription(m_model.drawnText() + (text.isEmpty()
                                                        ? tr("; nothing is selected")
                                                        : tr("; selected: %1").arg(text)));
    QAccessibleEvent event(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
    update();
}

void NetworkCanvas::selectAt(int position)
{
    if (position < 0)
        return m_model.select(-1);
    const int node = m_model.shown().order.nodes[std::size_t(position)];
    const bool isOther = m_isWithShift && m_model.node() >= 0;
    m_model.select(isOther ? m_model.node() : node, isOther ? node : -1);
}

void NetworkCanvas::zoomAbout(const QPointF &place, double factor)
{
    const double zoom = std::clamp(m_zoom * factor, 1.0, 12.0);
    m_offset = place - (place - m_offset) * (zoom / m_zoom);
    m_zoom = zoom;
    pan({});
}

void NetworkCanvas::pan(const QPointF &by)
{
    const QSizeF room = QSizeF(size()) * (1 - m_zoom);
    m_offset += by;
    m_offset = QPointF(std::clamp(m_offset.x(), room.width(), 0.0),
                       std::clamp(m_offset.y(), room.height(), 0.0));
    renew();
}

void NetworkCanvas::showAll()
{
    m_zoom = 1;
    m_offset = {};
    renew();
}

void NetworkCanvas::prepare(QPainter &painter) const
{
    painter.setFont(font());
    painter.setBackground(isDark(palette().color(QPalette::Base)) ? darkPaper()
                                                                  : QColor(Qt::white));
}

void NetworkCanvas::paintEvent(QPaintEvent *)
{
    const double ratio = devicePixelRatioF();
    if (m_isOld || m_picture.size() != size() * ratio) {
        m_picture = QPixmap(size() * ratio);
        m_picture.setDevicePixelRatio(ratio);
        QPainter painter(&m_picture);
        prepare(painter);
        painter.fillRect(rect(), paperOf(painter));
        painter.setTransform(toWidget(), true);
        paintPicture(painter, rect());
        m_isOld = false;
    }
    QPainter painter(this);
    painter.drawPixmap(0, 0, m_picture);
    prepare(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    paintMarks(painter);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
        painter.drawRect(rect().adjusted(1, 1, -1, -1));
    }
}

void NetworkCanvas::copyPicture() const
{
    QPixmap picture(size() * devicePixelRatioF());
    picture.setDevicePixelRatio(devicePixelRatioF());
    QPainter painter(&picture);
    prepare(painter);
    paintView(painter, rect(), m_model.scene(), m_kind);
    painter.end();
    auto *const copied = new QMimeData;
    copied->setImageData(picture.toImage());
    copied->setText(QString::fromUtf8(figureTable(m_model.scene(), m_kind)));
    QApplication::clipboard()->setMimeData(copied);
}

void NetworkCanvas::step(int right, int down)
{
    const std::vector<int> &order = m_model.shown().order.nodes;
    if (order.empty())
        return;
    const int count = int(order.size());
    const int node = m_model.node();
    if (node < 0 || right != 0) {
        const int place = node < 0 ? 0 : (m_model.placeOf(node) + right + count) % count;
        m_model.select(order[std::size_t(place)]);
        return;
    }
    // Up and down go through the node's edges, the strongest first.
    std::vector<int> others;
    for (const NetworkEdge &edge : m_model.drawn().edges)
        if (edge.from == node || edge.to == node)
            others.push_back(edge.from == node ? edge.to : edge.from);
    if (others.empty())
        return;
    const auto found = std::find(others.begin(), others.end(), m_model.other());
    const int last = int(others.size());
    const int now = found == others.end() ? (down > 0 ? -1 : last) : int(found - others.begin());
    m_model.select(node, others[std::size_t((now + down + last) % last)]);
}

void NetworkCanvas::resizeEvent(QResizeEvent *)
{
    pan({});
}

void NetworkCanvas::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        renew();
}

void NetworkCanvas::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_pressed = m_last = event->localPos();
    m_isDragged = false;
}

void NetworkCanvas::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton) {
        const QPointF from = event->localPos() - m_pressed;
        m_isDragged = m_isDragged || from.manhattanLength() >= QApplication::startDragDistance();
        if (m_isDragged)
            pan(event->localPos() - m_last);
        m_last = event->localPos();
        return;
    }
    Q_EMIT pointedAt(textAt(event->localPos()));
    update();
}

void NetworkCanvas::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || m_isDragged)
        return;
    m_isWithShift = event->modifiers().testFlag(Qt::ShiftModifier);
    click(event->localPos());
}

void NetworkCanvas::mouseDoubleClickEvent(QMouseEvent *)
{
    showAll();
}

void NetworkCanvas::leaveEvent(QEvent *)
{
    textAt({-1, -1});
    Q_EMIT pointedAt({});
    update();
}

void NetworkCanvas::wheelEvent(QWheelEvent *event)
{
    zoomAbout(event->position(), std::pow(1.0015, event->angleDelta().y()));
    event->accept();
}

void NetworkCanvas::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy)) {
        copyPicture();
        return;
    }
    switch (event->key()) {
    case Qt::Key_Left:
        return step(-1, 0);
    case Qt::Key_Right:
        return step(1, 0);
    case Qt::Key_Up:
        return step(0, -1);
    case Qt::Key_Down:
        return step(0, 1);
    case Qt::Key_Escape:
        return m_model.select(-1);
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return zoomAbout(QRectF(rect()).center(), 1.25);
    case Qt::Key_Minus:
        return zoomAbout(QRectF(rect()).center(), 0.8);
    case Qt::Key_Home:
        return showAll();
    default:
        QWidget::keyPressEvent(event);
    }
}

void NetworkCanvas::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    update();
}

void NetworkCanvas::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    update();
}

} // namespace corvane
