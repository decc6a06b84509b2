// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSlider>

#include <memory>

class QxtSpanSliderPrivate;

/// A slider with two handles, lower and upper, and a coloured span between them.
///
/// Each handle has a value, which is committed and reported by `spanChanged`, and a position, where
/// it is drawn while it is dragged. With tracking on the two stay equal; with tracking off the
/// values catch up when the handle is released. Handles that may cross swap their identities when
/// they do, so that the lower value is always the smaller one.
///
/// The value of the QSlider below moves with keys and wheel as ever and has no part in the span.
class QxtSpanSlider : public QSlider
{
    Q_OBJECT
    Q_PROPERTY(int lowerValue READ lowerValue WRITE setLowerValue)
    Q_PROPERTY(int upperValue READ upperValue WRITE setUpperValue)
    Q_PROPERTY(int lowerPosition READ lowerPosition WRITE setLowerPosition)
    Q_PROPERTY(int upperPosition READ upperPosition WRITE setUpperPosition)
    Q_PROPERTY(
        HandleMovementMode handleMovementMode READ handleMovementMode WRITE setHandleMovementMode)

public:
    enum SpanHandle { NoHandle = 0, LowerHandle = 1, UpperHandle = 2 };

    enum HandleMovementMode {
        FreeMovement = 0,  ///< handles may cross
        NoCrossing = 1,    ///< handles may meet
        NoOverlapping = 2, ///< handles stay at least one apart while they are moved
    };
    Q_ENUM(HandleMovementMode)

    explicit QxtSpanSlider(QWidget *parent = nullptr);
    ~QxtSpanSlider() override;

    int lowerValue() const;
    int upperValue() const;
    int lowerPosition() const;
    int upperPosition() const;

    HandleMovementMode handleMovementMode() const;
    void setHandleMovementMode(HandleMovementMode mode);

public slots:
    void setLowerValue(int lower);
    void setUpperValue(int upper);
    /// Takes the two values in either order, bounds them to the range and commits them.
    void setSpan(int lower, int upper);
    void setLowerPosition(int lower);
    void setUpperPosition(int upper);

signals:
    void spanChanged(int lower, int upper);
    void lowerValueChanged(int lower);
    void upperValueChanged(int upper);
    /// The positions are reported only while a handle is held down.
    void lowerPositionChanged(int lower);
    void upperPositionChanged(int upper);
    /// A handle was pressed. The signal of QAbstractSlider without argument comes before it.
    void sliderPressed(SpanHandle handle);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    friend class QxtSpanSliderPrivate;
    const std::unique_ptr<QxtSpanSliderPrivate> logic;
};
