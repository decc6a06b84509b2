// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/import_previews.h"

#include "host/workbench/condition_colours.h"
#include "host/workbench/voi_overlay.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

const SlicePlane planes[] = {SlicePlane::Sagittal, SlicePlane::Coronal, SlicePlane::Axial};

int middle(const FunctionalGrid &grid, int axis)
{
    const auto n = static_cast<std::size_t>(axis);
    return std::clamp(grid.start[n] + grid.resolution * (grid.size[n] / 2), 0, Vmr::size - 1);
}

} // namespace

// ---- grids

GridPreview::GridPreview(QWidget *parent) : QWidget(parent)
{
    setAccessibleName(tr("Grid of the run over the anatomy"));
}

void GridPreview::show(const ImportPlan &plan)
{
    const VoiOverlay vois(plan.vois, std::vector<bool>(plan.vois.vois.size(), true));
    const GreyWindow window = automaticWindow(plan.anatomy);
    m_grid = plan.grid;
    m_slices.clear();
    for (SlicePlane plane : planes)
        m_slices += sliceImage(plan.anatomy, plane, middle(m_grid, axesOf(plane).through), window,
                               &vois, 0.6);
    update();
}

void GridPreview::clear()
{
    m_slices.clear();
    update();
}

void GridPreview::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (m_slices.isEmpty()) {
        painter.fillRect(rect(), palette().base());
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(rect(), Qt::AlignCenter, tr("No grids yet"));
        return;
    }
    painter.fillRect(rect(), Qt::black);
    const double side = std::min(width() / 3.0, double(height()));
    const double scale = side / Vmr::size;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (int n = 0; n < m_slices.size(); ++n) {
        const QPointF corner(width() / 2.0 + (n - 1.5) * side, (height() - side) / 2);
        painter.drawImage(QRectF(corner, QSizeF(side, side)), m_slices[n]);

        const PlaneAxes axes = axesOf(planes[n]);
        // Samples stand in the middle of what they cover.
        const auto edge = [&](int axis, int index) {
            const auto a = static_cast<std::size_t>(axis);
            return (m_grid.start[a] + m_grid.resolution * (index - 0.5) + 0.5) * scale;
        };
        const auto count = [&](int axis) { return m_grid.size[static_cast<std::size_t>(axis)]; };
        const double left = edge(axes.across, 0);
        const double right = edge(axes.across, count(axes.across));
        const double top = edge(axes.down, 0);
        const double bottom = edge(axes.down, count(axes.down));
        painter.save();
        painter.translate(corner);
        painter.setClipRect(QRectF(0, 0, side, side));
        painter.setPen(QColor(120, 200, 255, 60));
        // Every line where there is room, else every fifth, ...
        int step = 1;
        while (step * m_grid.resolution * scale < 4)
            step *= 5;
        for (int i = 0; i <= count(axes.across); i += step)
            painter.drawLine(QPointF(edge(axes.across, i), top),
                             QPointF(edge(axes.across, i), bottom));
        for (int j = 0; j <= count(axes.down); j += step)
            painter.drawLine(QPointF(left, edge(axes.down, j)), QPointF(right, edge(axes.down, j)));
        painter.setPen(QPen(QColor(120, 200, 255), 1.5));
        painter.drawRect(QRectF(QPointF(left, top), QPointF(right, bottom)));
        painter.restore();
    }
}

// ---- conditions

ConditionTimeline::ConditionTimeline(QWidget *parent) : QWidget(parent)
{
    setAccessibleName(tr("Conditions over the volumes"));
}

void ConditionTimeline::show(const Prt &protocol, int volumes)
{
    m_protocol = protocol;
    m_volumes = volumes;
    QStringList texts;
    for (const PrtCondition &condition : protocol.conditions)
        texts += tr("%1: %n interval(s)", nullptr, static_cast<int>(condition.intervals.size()))
                     .arg(condition.name);
    setAccessibleDescription(texts.join(QStringLiteral(", ")));
    updateGeometry();
    update();
}

QSize ConditionTimeline::sizeHint() const
{
    // Below that a short interval can't be told from the next one.
    constexpr double leastPerVolume = 1.5;
    const int rows = static_cast<int>(m_protocol.conditions.size());
    return {std::max(200, static_cast<int>(namesWidth() + leastPerVolume * m_volumes)),
            (rows + 1) * (fontMetrics().height() + 2)};
}

/// The longest name, within reason, and what stands around it.
int ConditionTimeline::namesWidth() const
{
    int names = 0;
    for (const PrtCondition &condition : m_protocol.conditions)
        names = std::max(names, fontMetrics().horizontalAdvance(condition.name));
    return std::min(names, 20 * fontMetrics().averageCharWidth()) + 14;
}

void ConditionTimeline::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    const int line = fontMetrics().height() + 2;
    painter.setPen(palette().color(QPalette::Text));
    if (m_protocol.conditions.empty()) {
        painter.drawText(rect(), Qt::AlignCenter, tr("No conditions"));
        return;
    }
    const double left = namesWidth();
    const double perVolume = (width() - left - 6) / std::max(m_volumes, 1);
    int y = 0;
    for (std::size_t n = 0; n < m_protocol.conditions.size(); ++n, y += line) {
        const PrtCondition &condition = m_protocol.conditions[n];
        painter.drawText(
            QRectF(4, y, left - 10, line), Qt::AlignVCenter,
            fontMetrics().elidedText(condition.name, Qt::ElideRight, static_cast<int>(left - 10)));
        for (const auto &[from, to] : condition.intervals)
            painter.fillRect(QRectF(left + (from - 1) * perVolume, y + 2,
                                    std::max(1.0, (to - from + 1) * perVolume), line - 4),
                             conditionColour(condition.name));
    }
    painter.drawText(QRectF(left, y, width() - left - 6, line), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("1"));
    painter.drawText(QRectF(left, y, width() - left - 6, line), Qt::AlignCenter, tr("Volume"));
    painter.drawText(QRectF(left, y, width() - left - 6, line), Qt::AlignRight | Qt::AlignVCenter,
                     QString::number(m_volumes));
}

// ---- motion

MotionPreview::MotionPreview(QWidget *parent) : QWidget(parent)
{
    setAccessibleName(tr("Framewise displacement and volumes that are left out"));
}

void MotionPreview::show(const VolumeChoice &choice)
{
    m_choice = choice;
    const auto gone = std::count(choice.leftOut.begin(), choice.leftOut.end(), true);
    setAccessibleDescription(
        tr("%1 of %2 volumes are left out").arg(gone).arg(choice.leftOut.size()));
    update();
}

void MotionPreview::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    double largest = m_choice.fdThreshold;
    for (const double value : m_choice.displacement)
        largest = std::max(largest, std::isfinite(value) ? value : 0);
    painter.setPen(palette().color(QPalette::Text));
    if (!(largest > 0)) {
        painter.drawText(rect(), Qt::AlignCenter, tr("Framewise displacement is not known"));
        return;
    }
    const QString scale = tr("FD, up to %1 mm").arg(largest, 0, 'f', 2);
    const double margin = fontMetrics().horizontalAdvance(scale) + 12;
    painter.drawText(QRectF(4, 0, margin, height()), Qt::AlignVCenter, scale);
    const QRectF plot(margin, 4, width() - margin - 4, height() - 8);
    const double step = plot.width() / double(m_choice.displacement.size());
    for (std::size_t volume = 0; volume < m_choice.displacement.size(); ++volume) {
        const QRectF slot(plot.left() + double(volume) * step, plot.top(), step, plot.height());
        if (m_choice.leftOut[volume])
            painter.fillRect(slot, QColor(213, 94, 0, 110));
        const double value = m_choice.displacement[volume];
        if (std::isfinite(value))
            painter.fillRect(QRectF(slot.left(), plot.bottom() - value / largest * plot.height(),
                                    std::max(1.0, step - 1), value / largest * plot.height()),
                             palette().color(QPalette::Text));
    }
    if (m_choice.fdThreshold > 0) {
        const double y = plot.bottom() - m_choice.fdThreshold / largest * plot.height();
        painter.setPen(QPen(QColor(0, 114, 178), 1, Qt::DashLine));
        painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
    }
}

} // namespace corvane
