// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/time_course_view.h"

#include "host/files/tsv_text.h"
#include "host/workbench/condition_colours.h"
#include "host/workbench/shown_thing.h"
#include "plots/plain_text.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane
{

/// Where the plot lies in the widget, and the values at its edges.
struct TimeCourseView::Frame {
    QRectF plot;
    int volumes;
    double low;
    double high;

    /// Middle of a volume, counted from 1.
    double x(double volume) const { return plot.left() + (volume - 0.5) / volumes * plot.width(); }
    double y(double value) const
    {
        return plot.bottom() - (value - low) / (high - low) * plot.height();
    }
};

namespace
{

/// Readable on light and on dark, and none of the conditions' colours.
const QColor beforeColour(200, 60, 60);

/// A round number near a fifth of a span.
double tickStep(double span)
{
    const double raw = span / 5;
    const double power = std::pow(10, std::floor(std::log10(raw)));
    for (double factor : {1.0, 2.0, 5.0})
        if (raw <= factor * power)
            return factor * power;
    return 10 * power;
}

/// A colour darker or lighter, where it would hardly be seen on a ground.
QColor readableOn(const QColor &ground, const QColor &colour)
{
    constexpr int apart = 90;
    const bool isOnDark = qGray(ground.rgb()) < 128;
    QColor readable = colour;
    for (int n = 0; n < 8 && std::abs(qGray(readable.rgb()) - qGray(ground.rgb())) < apart; ++n)
        readable = isOnDark ? QColor((readable.red() + 255) / 2, (readable.green() + 255) / 2,
                                     (readable.blue() + 255) / 2)
                            : readable.darker(130);
    return readable;
}

} // namespace

TimeCourseView::TimeCourseView(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("timeCourse"));
    setAccessibleName(tr("Time course at the cross-hair"));
    setStatusTip(tr("Point at a volume, or use the arrow keys, to read its value."));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
}

QSize TimeCourseView::sizeHint() const
{
    return {600, 10 * fontMetrics().height()};
}

QSize TimeCourseView::minimumSizeHint() const
{
    return {200, 6 * fontMetrics().height()};
}

void TimeCourseView::show(TimeCourseScene scene)
{
    m_scene = std::move(scene);
    m_marked = std::min(m_marked, volumes());
    setToolTip(asToolTip(m_scene.cleaning));
    setAccessibleDescription(volumes() == 0 ? m_scene.hint : markedText());
    update();
}

void TimeCourseView::mark(int volume)
{
    m_marked = std::clamp(volume, 0, volumes());
    setAccessibleDescription(markedText());
    update();
}

QString TimeCourseView::conditionsAt(int volume) const
{
    QStringList names;
    for (const PrtCondition &condition : m_scene.conditions)
        for (const auto &interval : condition.intervals)
            if (volume >= interval.first && volume <= interval.second &&
                !names.contains(condition.name))
                names += condition.name;
    return names.join(QStringLiteral(", "));
}

QString TimeCourseView::markedText() const
{
    if (m_marked == 0)
        return {};
    const double seconds = (m_marked - 1) * m_scene.repetitionTime;
    const auto valueIn = [this](const std::vector<double> &samples) {
        return QString::number(samples[static_cast<std::size_t>(m_marked - 1)], 'g', 6);
    };
    QString text =
        tr("Volume %1 (%2 s)").arg(QString::number(m_marked), QString::number(seconds, 'g', 6));
    if (!m_scene.samples.empty())
        text += QStringLiteral(": ") + valueIn(m_scene.samples);
    if (!m_scene.before.empty())
        text += tr(", before cleaning %1").arg(valueIn(m_scene.before));
    if (!m_scene.voi.samples.empty())
        text += tr(", mean of %1: %2").arg(m_scene.voi.name, valueIn(m_scene.voi.samples));
    const QString conditions = conditionsAt(m_marked);
    if (!conditions.isEmpty())
        text += QStringLiteral(", ") + conditions;
    return text;
}

QString TimeCourseView::caption() const
{
    const QString unit = tr("Volume (one each %1 s)").arg(m_scene.repetitionTime);
    return m_scene.cleaning.isEmpty() ? unit : tr("%1, cleaned: %2").arg(unit, m_scene.cleaning);
}

// ---- painting

TimeCourseView::Frame TimeCourseView::frame() const
{
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (const Course &course : courses()) {
        for (double sample : *course.samples) {
            if (std::isfinite(sample)) {
                low = std::min(low, sample);
                high = std::max(high, sample);
            }
        }
    }
    if (!(low < high)) {
        const double middle = std::isfinite(low) ? low : 0;
        // Of a size that still counts beside the value.
        const double half = std::max(1.0, 1e-6 * std::abs(middle));
        low = middle - half;
        high = middle + half;
    }
    const double margin = 0.05 * (high - low);
    const int line = fontMetrics().height();
    const double left = fontMetrics().horizontalAdvance(QStringLiteral("-00000.0")) + 8;
    return {QRectF(rect()).adjusted(left, line + 8, -12, -2 * line - 4), volumes(), low - margin,
            high + margin};
}

void TimeCourseView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    if (volumes() == 0) {
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(rect().adjusted(8, 0, -8, 0), Qt::AlignCenter | Qt::TextWordWrap,
                         m_scene.hint);
    } else if (const Frame where = frame(); where.plot.width() > 0 && where.plot.height() > 0) {
        painter.setRenderHint(QPainter::Antialiasing);
        paintBands(painter, where);
        paintAxes(painter, where);
        // That of the voxel on top.
        const std::vector<Course> all = courses();
        for (auto course = all.rbegin(); course != all.rend(); ++course)
            paintSamples(painter, where, *course->samples, course->colour);
        paintLegend(painter, where);
        paintMarker(painter, where);
    }
    if (hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
        painter.drawRect(rect().adjusted(1, 1, -1, -1));
    }
}

void TimeCourseView::paintBands(QPainter &painter, const Frame &frame) const
{
    for (const PrtCondition &condition : m_scene.conditions) {
        QColor colour = conditionColour(condition.name);
        colour.setAlpha(80);
        for (const auto &interval : condition.intervals) {
            const double from = frame.x(std::min(interval.first, frame.volumes + 1) - 0.5);
            const double to = frame.x(std::min(interval.second, frame.volumes) + 0.5);
            if (to > from)
                painter.fillRect(
                    QRectF(QPointF(from, frame.plot.top()), QPointF(to, frame.plot.bottom())),
                    colour);
        }
    }
}

void TimeCourseView::paintAxes(QPainter &painter, const Frame &frame) const
{
    const int line = fontMetrics().height();
    QColor faint = palette().color(QPalette::Text);
    faint.setAlpha(60);

    // Values to the left; fewer where there is little room.
    double step = tickStep(frame.high - frame.low);
    while (frame.plot.height() * step / (frame.high - frame.low) < 1.3 * line)
        step *= 2;
    const double first = std::ceil(frame.low / step);
    const int ticks = static_cast<int>(std::floor(frame.high / step) - first) + 1;
    for (int tick = 0; tick < ticks; ++tick) {
        const double value = (first + tick) * step;
        const double y = frame.y(value);
        painter.setPen(faint);
        painter.drawLine(QPointF(frame.plot.left(), y), QPointF(frame.plot.right(), y));
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(QRectF(0, y - line / 2.0, frame.plot.left() - 6, line),
                         Qt::AlignRight | Qt::AlignVCenter, QString::number(value, 'g', 5));
    }

    const int volumeStep =
        std::max(1, static_cast<int>(std::lround(tickStep(std::max(frame.volumes, 5)))));
    for (int volume = volumeStep; volume <= frame.volumes; volume += volumeStep) {
        const double x = frame.x(volume);
        painter.setPen(faint);
        painter.drawLine(QPointF(x, frame.plot.bottom()), QPointF(x, frame.plot.bottom() + 4));
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(QRectF(x - 40, frame.plot.bottom() + 3, 80, line), Qt::AlignCenter,
                         QString::number(volume));
    }
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(
        QRectF(frame.plot.left(), frame.plot.bottom() + 3 + line, frame.plot.width(), line),
        Qt::AlignCenter,
        fontMetrics().elidedText(caption(), Qt::ElideRight, int(frame.plot.width())));
}

void TimeCourseView::paintSamples(QPainter &painter, const Frame &frame,
                                  const std::vector<double> &samples, const QColor &colour) const
{
    // Single lines: one long path is many times slower to draw. A sample between two that are no
    // numbers is a dot.
    QVector<QLineF> lines;
    QPointF last;
    bool isGap = true;
    for (int volume = 1; volume <= frame.volumes; ++volume) {
        const double sample = samples[static_cast<std::size_t>(volume - 1)];
        if (!std::isfinite(sample)) {
            isGap = true;
            continue;
        }
        const QPointF point(frame.x(volume), frame.y(sample));
        lines.append(QLineF(isGap ? point : last, point));
        last = point;
        isGap = false;
    }
    painter.setPen(QPen(colour, 1.3, Qt::SolidLine, Qt::RoundCap));
    painter.drawLines(lines);
}

/// The lines that there are, that of the voxel first.
std::vector<TimeCourseView::Course> TimeCourseView::courses() const
{
    std::vector<Course> all;
    if (!m_scene.samples.empty())
        all.push_back({m_scene.before.empty() ? tr("cross-hair") : tr("cleaned"),
                       palette().color(QPalette::Text), &m_scene.samples});
    if (!m_scene.before.empty())
        all.push_back({tr("before cleaning"), beforeColour, &m_scene.before});
    if (!m_scene.voi.samples.empty())
        all.push_back({tr("mean of %1").arg(m_scene.voi.name),
                       readableOn(palette().color(QPalette::Base), m_scene.voi.colour),
                       &m_scene.voi.samples});
    return all;
}

/// Which line is which, where there are several or that of a VOI; gives where the names end.
double TimeCourseView::paintCourseNames(QPainter &painter, const Frame &frame) const
{
    double x = frame.plot.left();
    const std::vector<Course> all = courses();
    if (all.size() < 2 && m_scene.voi.samples.empty())
        return x;
    const int line = fontMetrics().height();
    for (const Course &course : all) {
        const QString &name = course.name;
        const QColor &colour = course.colour;
        const double width = fontMetrics().horizontalAdvance(name);
        painter.setPen(QPen(colour, 2));
        painter.drawLine(QPointF(x, 4 + line * 0.5), QPointF(x + line, 4 + line * 0.5));
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(QRectF(x + 1.4 * line, 4, width + 2, line), Qt::AlignVCenter, name);
        x += width + 3.4 * line;
    }
    return x;
}

void TimeCourseView::paintLegend(QPainter &painter, const Frame &frame) const
{
    const int line = fontMetrics().height();
    double x = paintCourseNames(painter, frame);
    for (const PrtCondition &condition : m_scene.conditions) {
        const QString &name = condition.name;
        const double width = fontMetrics().horizontalAdvance(name);
        if (x + line + width > frame.plot.right())
            break;
        painter.fillRect(QRectF(x, 4 + line * 0.2, line * 0.7, line * 0.7), conditionColour(name));
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(QRectF(x + line, 4, width + 2, line), Qt::AlignVCenter, name);
        x += line + width + 2 * line;
    }
}

void TimeCourseView::paintMarker(QPainter &painter, const Frame &frame) const
{
    if (m_marked == 0)
        return;
    const double x = frame.x(m_marked);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
    painter.drawLine(QPointF(x, frame.plot.top()), QPointF(x, frame.plot.bottom()));

    const QString text = markedText();
    const double width = fontMetrics().horizontalAdvance(text) + 10;
    QRectF box(0, frame.plot.top(), width, fontMetrics().height() + 4);
    box.moveLeft(std::clamp(x - width / 2, frame.plot.left(),
                            std::max(frame.plot.left(), frame.plot.right() - width)));
    painter.fillRect(box, palette().color(QPalette::ToolTipBase));
    painter.setPen(palette().color(QPalette::ToolTipText));
    painter.drawText(box, Qt::AlignCenter, text);
}

// ---- mouse and keys

void TimeCourseView::mouseMoveEvent(QMouseEvent *event)
{
    if (volumes() == 0)
        return;
    const Frame where = frame();
    const double part = (event->localPos().x() - where.plot.left()) / where.plot.width();
    mark(part >= 0 && part < 1 ? 1 + static_cast<int>(part * volumes()) : 0);
}

void TimeCourseView::leaveEvent(QEvent *)
{
    mark(0);
}

void TimeCourseView::contextMenuEvent(QContextMenuEvent *event)
{
    if (volumes() > 0)
        popupShownThing(
            this, event->globalPos(),
            {QStringLiteral("time course"), [this] { return grab(); }, [this] { return table(); }});
}

QByteArray TimeCourseView::table() const
{
    QByteArrayList head{"volume", "seconds"};
    const std::vector<Course> all = courses();
    for (const Course &course : all)
        head += course.name.toUtf8();
    if (!m_scene.conditions.empty())
        head += "condition";
    QByteArray rows = line(head);
    for (int volume = 1; volume <= volumes(); ++volume) {
        QByteArrayList cells{QByteArray::number(volume),
                             cell((volume - 1) * m_scene.repetitionTime)};
        for (const Course &course : all)
            cells += cell((*course.samples)[static_cast<std::size_t>(volume - 1)]);
        if (!m_scene.conditions.empty()) {
            const QString conditions = conditionsAt(volume);
            cells += conditions.isEmpty() ? QByteArray("n/a") : conditions.toUtf8();
        }
        rows += line(cells);
    }
    return rows;
}

void TimeCourseView::keyPressEvent(QKeyEvent *event)
{
    const int step = event->modifiers() & Qt::ShiftModifier ? 10 : 1;
    switch (volumes() > 0 ? event->key() : 0) {
    case Qt::Key_Left:
        return mark(std::max(m_marked - step, 1));
    case Qt::Key_Right:
        return mark(m_marked + step);
    case Qt::Key_Home:
        return mark(1);
    case Qt::Key_End:
        return mark(volumes());
    default:
        QWidget::keyPressEvent(event);
    }
}

void TimeCourseView::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    update();
}

void TimeCourseView::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    mark(0);
}

} // namespace corvane
