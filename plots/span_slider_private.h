// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plots/span_slider.h"

#include <QStyle>

class QStyleOptionSlider;
class QStylePainter;

/// The back pointer from a private object to its public one.
template <class Public>
class QxtPrivate
{
public:
    explicit QxtPrivate(Public &object) : publicObject(object) {}

protected:
    Public &publicObject;
};

/// State and logic of a QxtSpanSlider, which owns it.
class QxtSpanSliderPrivate : public QObject, public QxtPrivate<QxtSpanSlider>
{
    Q_OBJECT

public:
    explicit QxtSpanSliderPrivate(QxtSpanSlider &slider) : QxtPrivate(slider) {}

    static QxtSpanSliderPrivate &of(QxtSpanSlider &slider) { return *slider.logic; }

    /// Option for the slider as if it had that one handle only.
    void initStyleOption(QStyleOptionSlider *option,
                         QxtSpanSlider::SpanHandle handle = QxtSpanSlider::UpperHandle) const;
    /// The coordinate along the slider.
    int pick(const QPoint &point) const;
    int pixelPosToRangeValue(int pos) const;

    void handleMousePress(const QPoint &pos, QStyle::SubControl &control, int value,
                          QxtSpanSlider::SpanHandle handle);
    /// Moves a handle by an action of the slider and commits both positions. `main` addresses the
    /// handle that keys act on first, else the other one.
    void triggerAction(QAbstractSlider::SliderAction action, bool main);
    /// Makes the lower handle the upper one and the other way round, in the middle of a movement.
    /// The positions stay: the movement that crosses sets its own.
    void swapControls();

    void setupPainter(QPainter *painter, Qt::Orientation orientation, qreal x1, qreal y1, qreal x2,
                      qreal y2) const;
    void drawSpan(QStylePainter *painter, const QRect &rect) const;
    void drawHandle(QStylePainter *painter, QxtSpanSlider::SpanHandle handle) const;

public slots:
    /// Brings both values into the slider's range.
    void updateRange(int min, int max);
    /// Commits the position of the handle that was released.
    void movePressedHandle();

public:
    int lower = 0;    ///< committed value; above `upper` only between a crossing and its commit
    int upper = 0;    ///< committed value
    int lowerPos = 0; ///< position
    int upperPos = 0; ///< position
    int offset = 0;   ///< press point relative to the handle's corner, along the slider
    int position = 0; ///< value of the pressed handle at the press
    QxtSpanSlider::SpanHandle lastPressed = QxtSpanSlider::NoHandle;
    QxtSpanSlider::SpanHandle mainControl = QxtSpanSlider::LowerHandle; ///< keys act on it first
    QStyle::SubControl lowerPressed = QStyle::SC_None; ///< what the press hit, lower handle
    QStyle::SubControl upperPressed = QStyle::SC_None; ///< what the press hit, upper handle
    QxtSpanSlider::HandleMovementMode movement = QxtSpanSlider::FreeMovement;
    bool firstMovement = false; ///< the next mouse move is the first since a press
    bool blockTracking = false; ///< set during `triggerAction`
};
