// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/span_slider.h"

#include "plots/span_slider_private.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleOptionSlider>
#include <QStylePainter>

#include <algorithm>
#include <optional>
#include <utility>

namespace
{

QxtSpanSlider::SpanHandle otherHandle(QxtSpanSlider::SpanHandle handle)
{
    return handle == QxtSpanSlider::LowerHandle ? QxtSpanSlider::UpperHandle
                                                : QxtSpanSlider::LowerHandle;
}

struct KeyAction {
    QAbstractSlider::SliderAction action;
    bool main; ///< addresses the main handle
};

/// What a key does: the arrows along the slider move the main handle, those across it the other.
std::optional<KeyAction> actionOfKey(int key, const QSlider &slider,
                                     QxtSpanSlider::SpanHandle mainControl)
{
    const bool horizontal = slider.orientation() == Qt::Horizontal;
    const auto step = [](bool add) {
        return add ? QAbstractSlider::SliderSingleStepAdd : QAbstractSlider::SliderSingleStepSub;
    };
    switch (key) {
    case Qt::Key_Home:
        return KeyAction{QAbstractSlider::SliderToMinimum,
                         mainControl == QxtSpanSlider::LowerHandle};
    case Qt::Key_End:
        return KeyAction{QAbstractSlider::SliderToMaximum,
                         mainControl == QxtSpanSlider::UpperHandle};
    case Qt::Key_Left:
        return KeyAction{step(slider.invertedAppearance()), horizontal};
    case Qt::Key_Right:
        return KeyAction{step(!slider.invertedAppearance()), horizontal};
    case Qt::Key_Up:
        return KeyAction{step(!slider.invertedControls()), !horizontal};
    case Qt::Key_Down:
        return KeyAction{step(slider.invertedControls()), !horizontal};
    default:
        return std::nullopt;
    }
}

} // namespace

void QxtSpanSliderPrivate::initStyleOption(QStyleOptionSlider *option,
                                           QxtSpanSlider::SpanHandle handle) const
{
    publicObject.initStyleOption(option);
    const bool isLower = handle == QxtSpanSlider::LowerHandle;
    option->sliderPosition = isLower ? lowerPos : upperPos;
    option->sliderValue = isLower ? lower : upper;
}

int QxtSpanSliderPrivate::pick(const QPoint &point) const
{
    return publicObject.orientation() == Qt::Horizontal ? point.x() : point.y();
}

int QxtSpanSliderPrivate::pixelPosToRangeValue(int pos) const
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QStyle &style = *publicObject.style();
    const QRect groove =
        style.subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, &publicObject);
    const QRect handle =
        style.subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &publicObject);
    const bool horizontal = publicObject.orientation() == Qt::Horizontal;
    const int sliderMin = horizontal ? groove.x() : groove.y();
    const int sliderMax =
        horizontal ? groove.right() - handle.width() + 1 : groove.bottom() - handle.height() + 1;
    return QStyle::sliderValueFromPosition(publicObject.minimum(), publicObject.maximum(),
                                           pos - sliderMin, sliderMax - sliderMin,
                                           option.upsideDown);
}

void QxtSpanSliderPrivate::handleMousePress(const QPoint &pos, QStyle::SubControl &control,
                                            int value, QxtSpanSlider::SpanHandle handle)
{
    QStyleOptionSlider option;
    initStyleOption(&option, handle);
    const QStyle &style = *publicObject.style();
    const QStyle::SubControl oldControl = control;
    control = style.hitTestComplexControl(QStyle::CC_Slider, &option, pos, &publicObject);
    const QRect rect =
        style.subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &publicObject);
    if (control == QStyle::SC_SliderHandle) {
        position = value;
        offset = pick(pos - rect.topLeft());
        lastPressed = handle;
        publicObject.setSliderDown(true);
        emit publicObject.sliderPressed(handle);
    }
    if (control != oldControl)
        publicObject.update(rect);
}

void QxtSpanSliderPrivate::triggerAction(QAbstractSlider::SliderAction action, bool main)
{
    const int min = publicObject.minimum();
    const int max = publicObject.maximum();
    const bool upperActs = main == (mainControl == QxtSpanSlider::UpperHandle);
    const int current = upperActs ? upper : lower;
    const auto stepped = [&](qint64 step) { return int(qBound<qint64>(min, current + step, max)); };

    // No value: no handle moves, the positions are committed as they stand.
    std::optional<int> value;
    bool moveUpper = upperActs;
    switch (action) {
    case QAbstractSlider::SliderSingleStepAdd:
        value = stepped(publicObject.singleStep());
        break;
    case QAbstractSlider::SliderSingleStepSub:
        value = stepped(-qint64(publicObject.singleStep()));
        break;
    case QAbstractSlider::SliderToMinimum:
        value = min;
        break;
    case QAbstractSlider::SliderToMaximum:
        value = max;
        break;
    case QAbstractSlider::SliderMove:
    case QAbstractSlider::SliderNoAction:
        break;
    default:
        qWarning("QxtSpanSliderPrivate::triggerAction: Unknown action");
        value = 0;
        moveUpper = false;
        break;
    }

    blockTracking = true;
    if (value && moveUpper) {
        if (movement == QxtSpanSlider::NoCrossing)
            value = qMax(*value, lower);
        else if (movement == QxtSpanSlider::NoOverlapping)
            value = qMax(*value, lower + 1);

        if (movement == QxtSpanSlider::FreeMovement && *value < lower) {
            swapControls();
            publicObject.setLowerPosition(*value);
        } else {
            publicObject.setUpperPosition(*value);
        }
    } else if (value) {
        if (movement == QxtSpanSlider::NoCrossing)
            value = qMin(*value, upper);
        else if (movement == QxtSpanSlider::NoOverlapping)
            value = qMin(*value, upper - 1);

        if (movement == QxtSpanSlider::FreeMovement && *value > upper) {
            swapControls();
            publicObject.setUpperPosition(*value);
        } else {
            publicObject.setLowerPosition(*value);
        }
    }
    blockTracking = false;
    publicObject.setLowerValue(lowerPos);
    publicObject.setUpperValue(upperPos);

    // Where a position was put beyond the other of two coincident handles, only one value changes,
    // that of the other handle. With tracking the first position goes back to its value.
    const auto inRange = [min, max](int place) { return min <= place && place <= max; };
    if (publicObject.hasTracking() && inRange(lowerPos) && inRange(upperPos)) {
        lowerPos = lower;
        upperPos = upper;
    }
}

void QxtSpanSliderPrivate::swapControls()
{
    std::swap(lower, upper);
    std::swap(lowerPressed, upperPressed);
    lastPressed = otherHandle(lastPressed);
    mainControl = otherHandle(mainControl);
}

void QxtSpanSliderPrivate::setupPainter(QPainter *painter, Qt::Orientation orientation, qreal x1,
                                        qreal y1, qreal x2, qreal y2) const
{
    const QColor highlight = publicObject.palette().color(QPalette::Highlight);
    QLinearGradient gradient(x1, y1, x2, y2);
    gradient.setColorAt(0, highlight.darker(120));
    gradient.setColorAt(1, highlight.lighter(108));
    painter->setBrush(gradient);
    painter->setPen(QPen(highlight.darker(orientation == Qt::Horizontal ? 130 : 150), 0));
}

void QxtSpanSliderPrivate::drawSpan(QStylePainter *painter, const QRect &rect) const
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    QRect groove = publicObject.style()->subControlRect(QStyle::CC_Slider, &option,
                                                        QStyle::SC_SliderGroove, &publicObject);
    const Qt::Orientation orientation = publicObject.orientation();
    painter->setPen(QPen(publicObject.palette().color(QPalette::Dark).lighter(110), 0));
    if (orientation == Qt::Horizontal) {
        groove.adjust(0, 0, -1, 0);
        setupPainter(painter, orientation, groove.center().x(), groove.top(), groove.center().x(),
                     groove.bottom());
    } else {
        groove.adjust(0, 0, 0, -1);
        setupPainter(painter, orientation, groove.left(), groove.center().y(), groove.right(),
                     groove.center().y());
    }
    const QRect visible = rect.intersected(groove);
    painter->drawRects(&visible, 1);
}

void QxtSpanSliderPrivate::drawHandle(QStylePainter *painter,
                                      QxtSpanSlider::SpanHandle handle) const
{
    QStyleOptionSlider option;
    initStyleOption(&option, handle);
    option.subControls = QStyle::SC_SliderHandle;
    const QStyle::SubControl pressed =
        handle == QxtSpanSlider::LowerHandle ? lowerPressed : upperPressed;
    if (pressed == QStyle::SC_SliderHandle) {
        option.activeSubControls = pressed;
        option.state |= QStyle::State_Sunken;
    }
    painter->drawComplexControl(QStyle::CC_Slider, option);
}

void QxtSpanSliderPrivate::updateRange(int /*min*/, int /*max*/)
{
    publicObject.setSpan(lower, upper);
}

void QxtSpanSliderPrivate::movePressedHandle()
{
    if (lastPressed == QxtSpanSlider::LowerHandle) {
        if (lowerPos != lower)
            triggerAction(QAbstractSlider::SliderMove, mainControl == QxtSpanSlider::LowerHandle);
    } else if (lastPressed == QxtSpanSlider::UpperHandle) {
        if (upperPos != upper)
            triggerAction(QAbstractSlider::SliderMove, mainControl == QxtSpanSlider::UpperHandle);
    }
}

QxtSpanSlider::QxtSpanSlider(QWidget *parent)
    : QSlider(parent), logic(std::make_unique<QxtSpanSliderPrivate>(*this))
{
    connect(this, &QAbstractSlider::rangeChanged, logic.get(), &QxtSpanSliderPrivate::updateRange);
    connect(this, &QAbstractSlider::sliderReleased, logic.get(),
            &QxtSpanSliderPrivate::movePressedHandle);
}

QxtSpanSlider::~QxtSpanSlider() = default;

int QxtSpanSlider::lowerValue() const
{
    return qMin(logic->lower, logic->upper);
}

int QxtSpanSlider::upperValue() const
{
    return qMax(logic->lower, logic->upper);
}

int QxtSpanSlider::lowerPosition() const
{
    return logic->lowerPos;
}

int QxtSpanSlider::upperPosition() const
{
    return logic->upperPos;
}

QxtSpanSlider::HandleMovementMode QxtSpanSlider::handleMovementMode() const
{
    return logic->movement;
}

void QxtSpanSlider::setHandleMovementMode(HandleMovementMode mode)
{
    logic->movement = mode;
}

void QxtSpanSlider::setLowerValue(int lower)
{
    setSpan(lower, logic->upper);
}

void QxtSpanSlider::setUpperValue(int upper)
{
    setSpan(logic->lower, upper);
}

void QxtSpanSlider::setSpan(int lower, int upper)
{
    const int low = qBound(minimum(), qMin(lower, upper), maximum());
    const int high = qBound(minimum(), qMax(lower, upper), maximum());
    const bool lowerChanges = low != logic->lower;
    const bool upperChanges = high != logic->upper;
    if (!lowerChanges && !upperChanges)
        return;

    if (lowerChanges) {
        logic->lower = logic->lowerPos = low;
        emit lowerValueChanged(low);
    }
    if (upperChanges) {
        logic->upper = logic->upperPos = high;
        emit upperValueChanged(high);
    }
    emit spanChanged(logic->lower, logic->upper);
    update();
}

void QxtSpanSlider::setLowerPosition(int lower)
{
    if (logic->lowerPos == lower)
        return;
    logic->lowerPos = lower;
    if (!hasTracking())
        update();
    if (isSliderDown())
        emit lowerPositionChanged(lower);
    if (hasTracking() && !logic->blockTracking)
        logic->triggerAction(SliderMove, logic->mainControl == LowerHandle);
}

void QxtSpanSlider::setUpperPosition(int upper)
{
    if (logic->upperPos == upper)
        return;
    logic->upperPos = upper;
    if (!hasTracking())
        update();
    if (isSliderDown())
        emit upperPositionChanged(upper);
    if (hasTracking() && !logic->blockTracking)
        logic->triggerAction(SliderMove, logic->mainControl == UpperHandle);
}

void QxtSpanSlider::mousePressEvent(QMouseEvent *event)
{
    const bool anotherButtonIsHeld = event->buttons() != event->button();
    if (minimum() == maximum() || anotherButtonIsHeld) {
        event->ignore();
        return;
    }
    // The upper handle comes first: it wins when both lie on each other.
    logic->handleMousePress(event->pos(), logic->upperPressed, logic->upper, UpperHandle);
    if (logic->upperPressed != QStyle::SC_SliderHandle)
        logic->handleMousePress(event->pos(), logic->lowerPressed, logic->lower, LowerHandle);
    logic->firstMovement = true;
    event->accept();
}

void QxtSpanSlider::mouseReleaseEvent(QMouseEvent *event)
{
    QSlider::mouseReleaseEvent(event);
    setSliderDown(false);
    logic->lowerPressed = QStyle::SC_None;
    logic->upperPressed = QStyle::SC_None;
    update();
}

void QxtSpanSlider::mouseMoveEvent(QMouseEvent *event)
{
    if (logic->lowerPressed != QStyle::SC_SliderHandle &&
        logic->upperPressed != QStyle::SC_SliderHandle) {
        event->ignore();
        return;
    }

    QStyleOptionSlider option;
    logic->initStyleOption(&option);
    const int m = style()->pixelMetric(QStyle::PM_MaximumDragDistance, &option, this);
    int newPosition = logic->pixelPosToRangeValue(logic->pick(event->pos()) - logic->offset);
    if (m >= 0 && !rect().adjusted(-m, -m, m, m).contains(event->pos()))
        newPosition = logic->position; // too far away: back to where the drag began

    // Two handles on each other part in the direction of the first drag.
    if (logic->firstMovement) {
        if (logic->lower != logic->upper) {
            logic->firstMovement = false;
        } else if (newPosition < lowerValue()) {
            logic->swapControls();
            logic->firstMovement = false;
        }
    }

    if (logic->lowerPressed == QStyle::SC_SliderHandle) {
        if (logic->movement == NoCrossing)
            newPosition = qMin(newPosition, upperValue());
        else if (logic->movement == NoOverlapping)
            newPosition = qMin(newPosition, upperValue() - 1);

        if (logic->movement == FreeMovement && newPosition > logic->upper) {
            logic->swapControls();
            setUpperPosition(newPosition);
        } else {
            setLowerPosition(newPosition);
        }
    } else if (logic->upperPressed == QStyle::SC_SliderHandle) {
        if (logic->movement == NoCrossing)
            newPosition = qMax(newPosition, lowerValue());
        else if (logic->movement == NoOverlapping)
            newPosition = qMax(newPosition, lowerValue() + 1);

        if (logic->movement == FreeMovement && newPosition < logic->lower) {
            logic->swapControls();
            setLowerPosition(newPosition);
        } else {
            setUpperPosition(newPosition);
        }
    }
    event->accept();
}

void QxtSpanSlider::keyPressEvent(QKeyEvent *event)
{
    QSlider::keyPressEvent(event);
    if (const auto key = actionOfKey(event->key(), *this, logic->mainControl))
        logic->triggerAction(key->action, key->main);
    else
        event->ignore();
}

void QxtSpanSlider::paintEvent(QPaintEvent *)
{
    QStylePainter painter(this);

    // The groove alone, with no handle.
    QStyleOptionSlider option;
    logic->initStyleOption(&option);
    option.sliderPosition = 0;
    option.sliderValue = 0;
    option.subControls = QStyle::SC_SliderGroove | QStyle::SC_SliderTickmarks;
    painter.drawComplexControl(QStyle::CC_Slider, option);

    const auto handleCentre = [&](int position) {
        option.sliderPosition = position;
        return style()
            ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this)
            .center();
    };
    const QPoint lowerCentre = handleCentre(logic->lowerPos);
    const QPoint upperCentre = handleCentre(logic->upperPos);
    const auto [minv, maxv] = std::minmax({logic->pick(lowerCentre), logic->pick(upperCentre)});
    const QPoint c = QRect(lowerCentre, upperCentre).center();
    const QRect span = orientation() == Qt::Horizontal
                           ? QRect(QPoint(minv, c.y() - 2), QPoint(maxv, c.y() + 1))
                           : QRect(QPoint(c.x() - 2, minv), QPoint(c.x() + 1, maxv));
    logic->drawSpan(&painter, span);

    // The handle pressed last lies on top.
    const SpanHandle top = logic->lastPressed == LowerHandle ? LowerHandle : UpperHandle;
    logic->drawHandle(&painter, otherHandle(top));
    logic->drawHandle(&painter, top);
}
