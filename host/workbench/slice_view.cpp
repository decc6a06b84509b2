// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/slice_view.h"

#include "host/workbench/run_overlay.h"
#include "host/workbench/shown_thing.h"
#include "host/workbench/voi_overlay.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QWheelEvent>
#include <cmath>

namespace corvane
{

namespace
{

QString planeName(SlicePlane plane)
{
    switch (plane) {
    case SlicePlane::Sagittal:
        return SliceView::tr("Sagittal slice");
    case SlicePlane::Coronal:
        return SliceView::tr("Coronal slice");
    case SlicePlane::Axial:
        break;
    }
    return SliceView::tr("Axial slice");
}

CubeVoxel bounded(CubeVoxel voxel)
{
    for (int &coordinate : voxel)
        coordinate = std::clamp(coordinate, 0, Vmr::size - 1);
    return voxel;
}

constexpr QRgb crossColour = qRgb(255, 220, 60);

} // namespace

SliceView::SliceView(SlicePlane plane, const SliceScene &scene, QWidget *parent)
    : QWidget(parent), m_axes(axesOf(plane)), m_plane(plane), m_scene(scene)
{
    setObjectName(planeName(plane));
    setAccessibleName(planeName(plane));
    setAccessibleDescription(
        tr("Arrow keys move the cross-hair, PageUp and PageDown go through the "
           "slices, plus and minus zoom, Return fills the pane with this slice."));
    setStatusTip(tr("Click: cross-hair. Double click: this slice alone. Wheel: slices. Ctrl+wheel: "
                    "zoom. Right button: menu; dragged: window and level. Middle button: move."));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setCursor(Qt::CrossCursor);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

// ---- geometry

double SliceView::pixelsPerVoxel() const
{
    return m_scene.zoom * pixelsAtOne();
}

CubeVoxel SliceView::voxelAt(const QPointF &place) const
{
    QPointF fromMiddle = place - QPointF(width() / 2.0, height() / 2.0);
    fromMiddle.rx() *= sense();
    const QPointF point = m_centre + fromMiddle / pixelsPerVoxel();
    CubeVoxel voxel = m_scene.cross;
    voxel[static_cast<std::size_t>(m_axes.across)] = static_cast<int>(std::floor(point.x()));
    voxel[static_cast<std::size_t>(m_axes.down)] = static_cast<int>(std::floor(point.y()));
    return voxel;
}

QPointF SliceView::placeOf(const CubeVoxel &voxel) const
{
    const QPointF point(voxel[static_cast<std::size_t>(m_axes.across)] + 0.5,
                        voxel[static_cast<std::size_t>(m_axes.down)] + 0.5);
    QPointF fromMiddle = (point - m_centre) * pixelsPerVoxel();
    fromMiddle.rx() *= sense();
    return fromMiddle + QPointF(width() / 2.0, height() / 2.0);
}

void SliceView::showMiddle(const std::array<double, 3> &place)
{
    m_centre = QPointF(place[static_cast<std::size_t>(m_axes.across)],
                       place[static_cast<std::size_t>(m_axes.down)]);
    m_lastZoom = m_scene.zoom;
    update();
}

void SliceView::follow()
{
    const QPointF cross(m_scene.cross[static_cast<std::size_t>(m_axes.across)] + 0.5,
                        m_scene.cross[static_cast<std::size_t>(m_axes.down)] + 0.5);
    if (m_scene.zoom == 1)
        m_centre = QPointF(Vmr::size / 2.0, Vmr::size / 2.0);
    else if (m_scene.zoom != m_lastZoom || !QRectF(rect()).contains(placeOf(m_scene.cross)))
        m_centre = cross;
    m_lastZoom = m_scene.zoom;
    update();
}

// ---- painting

void SliceView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (hasVolume()) {
        const int position = m_scene.cross[static_cast<std::size_t>(m_axes.through)];
        if (m_imageRevision != m_scene.revision || m_imagePosition != position) {
            m_image = sliceImage(m_scene.vmr, m_plane, position, m_scene.window,
                                 {m_scene.vois.get(), m_scene.voiOpacity, m_scene.run.get(),
                                  m_scene.runOpacity})
                          .mirrored(sense() < 0, false);
            m_imageRevision = m_scene.revision;
            m_imagePosition = position;
        }
        const double scale = pixelsPerVoxel();
        const QPointF middle(sense() > 0 ? m_centre.x() : Vmr::size - m_centre.x(), m_centre.y());
        const QPointF corner = QPointF(width() / 2.0, height() / 2.0) - middle * scale;
        painter.setRenderHint(QPainter::SmoothPixmapTransform, scale < 4);
        painter.drawImage(QRectF(corner, QSizeF(scale * Vmr::size, scale * Vmr::size)), m_image);
        if (m_scene.crossShown)
            paintCross(painter);
        paintLetters(painter);
    }
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
        painter.drawRect(rect().adjusted(1, 1, -1, -1));
    }
}

void SliceView::paintCross(QPainter &painter) const
{
    // A gap leaves the voxel itself free.
    constexpr double gap = 6;
    const QPointF place = placeOf(m_scene.cross);
    painter.setPen(QPen(QColor(crossColour), 1));
    painter.drawLine(QPointF(0, place.y()), QPointF(place.x() - gap, place.y()));
    painter.drawLine(QPointF(place.x() + gap, place.y()), QPointF(width(), place.y()));
    painter.drawLine(QPointF(place.x(), 0), QPointF(place.x(), place.y() - gap));
    painter.drawLine(QPointF(place.x(), place.y() + gap), QPointF(place.x(), height()));
}

void SliceView::paintLetters(QPainter &painter) const
{
    AxisEnds across = axisEnds(m_scene.vmr, m_axes.across);
    if (sense() < 0)
        std::swap(across.low, across.high);
    const AxisEnds down = axisEnds(m_scene.vmr, m_axes.down);
    const QRect inner = rect().adjusted(6, 4, -6, -4);
    painter.setPen(Qt::white);
    // On a ground of its own: the cross-hair often runs where the letter stands.
    const auto letter = [&](Qt::Alignment place, const QString &text) {
        painter.fillRect(painter.boundingRect(inner, static_cast<int>(place), text), Qt::black);
        painter.drawText(inner, static_cast<int>(place), text);
    };
    letter(Qt::AlignLeft | Qt::AlignVCenter, across.low);
    letter(Qt::AlignRight | Qt::AlignVCenter, across.high);
    letter(Qt::AlignHCenter | Qt::AlignTop, down.low);
    letter(Qt::AlignHCenter | Qt::AlignBottom, down.high);
    painter.setPen(QColor(200, 200, 200));
    painter.drawText(inner, Qt::AlignLeft | Qt::AlignTop,
                     QString::number(m_scene.cross[static_cast<std::size_t>(m_axes.through)]));
}

// ---- mouse and keys

void SliceView::pick(const QPointF &place)
{
    Q_EMIT picked(bounded(voxelAt(place)));
}

void SliceView::step(int axis, int voxels)
{
    CubeVoxel voxel = m_scene.cross;
    voxel[static_cast<std::size_t>(axis)] += voxels;
    Q_EMIT picked(bounded(voxel));
}

void SliceView::mousePressEvent(QMouseEvent *event)
{
    m_dragStart = event->localPos();
    m_dragCentre = m_centre;
    m_dragWindow = m_scene.window;
    if (event->button() == Qt::LeftButton && hasVolume())
        pick(event->localPos());
}

void SliceView::mouseMoveEvent(QMouseEvent *event)
{
    if (!hasVolume())
        return;
    const QPointF moved = event->localPos() - m_dragStart;
    if (event->buttons() & Qt::LeftButton) {
        pick(event->localPos());
    } else if (event->buttons() & Qt::RightButton) {
        // Across the whole view the window doubles or vanishes.
        const double perPixel = 2 * m_dragWindow.width / std::max(width(), 1);
        Q_EMIT windowDragged({m_dragWindow.level - moved.y() * perPixel,
                              std::max(1.0, m_dragWindow.width + moved.x() * perPixel)});
    } else if (event->buttons() & Qt::MiddleButton) {
        m_centre = m_dragCentre - QPointF(sense() * moved.x(), moved.y()) / pixelsPerVoxel();
        update();
    }
    const CubeVoxel voxel = voxelAt(event->localPos());
    if (isInCube(voxel))
        Q_EMIT pointedAt(voxel);
    else
        Q_EMIT pointedAway();
}

void SliceView::mouseReleaseEvent(QMouseEvent *event)
{
    // With the right button a drag changes the window; a click has the menu.
    const QPointF moved = event->localPos() - m_dragStart;
    if (event->button() == Qt::RightButton &&
        moved.manhattanLength() < QApplication::startDragDistance())
        popupMenu(event->globalPos());
}

void SliceView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && hasVolume())
        Q_EMIT fillAsked();
}

void SliceView::contextMenuEvent(QContextMenuEvent *event)
{
    if (event->reason() == QContextMenuEvent::Keyboard)
        popupMenu(mapToGlobal(placeOf(m_scene.cross).toPoint()));
}

void SliceView::popupMenu(const QPoint &globalPlace)
{
    if (!hasVolume())
        return;
    const int position = m_scene.cross[static_cast<std::size_t>(m_axes.through)];
    popupShownThing(this, globalPlace,
                    {objectName(), [this] { return grab(); },
                     [this, position] { return sliceTable(m_scene.vmr, m_plane, position); }});
}

void SliceView::leaveEvent(QEvent *)
{
    Q_EMIT pointedAway();
}

void SliceView::wheelEvent(QWheelEvent *event)
{
    constexpr int anglePerStep = 120;
    m_wheelAngle += event->angleDelta().y();
    const int steps = m_wheelAngle / anglePerStep;
    m_wheelAngle -= steps * anglePerStep;
    if (steps == 0 || !hasVolume())
        return;
    if (event->modifiers() & Qt::ControlModifier)
        Q_EMIT zoomed(std::pow(1.25, steps));
    else
        step(m_axes.through, -steps);
}

void SliceView::keyPressEvent(QKeyEvent *event)
{
    const int voxels = event->modifiers() & Qt::ShiftModifier ? 10 : 1;
    switch (hasVolume() ? event->key() : 0) {
    case Qt::Key_Left:
        return step(m_axes.across, -sense() * voxels);
    case Qt::Key_Right:
        return step(m_axes.across, sense() * voxels);
    case Qt::Key_Up:
        return step(m_axes.down, -voxels);
    case Qt::Key_Down:
        return step(m_axes.down, voxels);
    case Qt::Key_PageUp:
        return step(m_axes.through, -voxels);
    case Qt::Key_PageDown:
        return step(m_axes.through, voxels);
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        Q_EMIT zoomed(1.25);
        return;
    case Qt::Key_Minus:
        Q_EMIT zoomed(1 / 1.25);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Q_EMIT fillAsked();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void SliceView::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    update();
}

void SliceView::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    update();
}

} // namespace corvane
