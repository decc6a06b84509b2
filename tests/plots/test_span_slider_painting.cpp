// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/span_slider.h"
#include "plots/span_slider_private.h"

#include <QCoreApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPixmap>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOptionSlider>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <ostream>
#include <utility>

namespace
{

QImage comparable(const QPixmap &pixmap)
{
    return pixmap.toImage().convertToFormat(QImage::Format_RGB32);
}

/// What a slider asked its style to draw.
struct DrawnControl {
    QStyle::SubControls subControls;
    int position;
    int value;
    QStyle::SubControls active;
    bool sunken;

    bool operator==(const DrawnControl &other) const
    {
        return subControls == other.subControls && position == other.position &&
               value == other.value && active == other.active && sunken == other.sunken;
    }
};

void PrintTo(const DrawnControl &control, std::ostream *out)
{
    *out << "controls " << int(control.subControls) << " position " << control.position << " value "
         << control.value << " active " << int(control.active) << " sunken " << control.sunken;
}

/// A style with round numbers for a slider of 221 by 40 points lying, or 40 by 221 standing: the
/// groove begins 10 points from the slider's start, a handle is 10 points long and as many points
/// further as its position says. It draws nothing and writes down what it should have drawn, so
/// that the span alone is seen.
class RoundNumbers : public QProxyStyle
{
public:
    RoundNumbers() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option,
                         SubControl subControl, const QWidget *widget) const override
    {
        const auto *slider = qstyleoption_cast<const QStyleOptionSlider *>(option);
        if (control != CC_Slider || slider == nullptr)
            return QProxyStyle::subControlRect(control, option, subControl, widget);
        const QRect lying =
            subControl == SC_SliderGroove ? groove : QRect(10 + slider->sliderPosition, 4, 10, 20);
        return slider->orientation == Qt::Horizontal
                   ? lying
                   : QRect(lying.y(), lying.x(), lying.height(), lying.width());
    }

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *,
                            const QWidget *) const override
    {
        ASSERT_EQ(control, CC_Slider);
        const auto *slider = qstyleoption_cast<const QStyleOptionSlider *>(option);
        drawn.append({slider->subControls, slider->sliderPosition, slider->sliderValue,
                      slider->activeSubControls, bool(slider->state & State_Sunken)});
    }

    QRect groove{10, 10, 201, 8};
    mutable QVector<DrawnControl> drawn;
};

constexpr QStyle::SubControl handleControl = QStyle::SC_SliderHandle;
const QStyle::SubControls grooveControls = QStyle::SC_SliderGroove | QStyle::SC_SliderTickmarks;
const QColor highlight(100, 150, 200);
const QColor background(250, 240, 230);

class SpanPainting : public testing::TestWithParam<Qt::Orientation>
{
protected:
    void SetUp() override
    {
        slider.setStyle(&style);
        slider.setOrientation(GetParam());
        slider.resize(lying() ? QSize(221, 40) : QSize(40, 221));
        slider.setRange(0, 190);
        QPalette palette;
        palette.setColor(QPalette::Highlight, highlight);
        palette.setColor(QPalette::Window, background);
        slider.setPalette(palette);
    }

    bool lying() const { return GetParam() == Qt::Horizontal; }

    /// Pixels, as if the slider were lying: `along` and `across` count device pixels.
    QColor pixel(const QImage &image, int along, int across) const
    {
        return lying() ? image.pixelColor(along, across) : image.pixelColor(across, along);
    }

    /// Checks that a rectangle with outline and gradient, and nothing else, is painted. The
    /// rectangle is given in points by the lines in which its outline runs.
    void expectSpan(int left, int right, int top, int bottom, int grooveTop, int grooveBottom)
    {
        const QImage image = comparable(slider.grab());
        const int scale = int(image.devicePixelRatio());
        const QColor outline = highlight.darker(lying() ? 130 : 150);
        const QColor from = highlight.darker(120);
        const QColor to = highlight.lighter(108);
        const int length = lying() ? image.width() : image.height();
        const int thickness = lying() ? image.height() : image.width();
        for (int along = 0; along < length; ++along) {
            for (int across = 0; across < thickness; ++across) {
                const QColor painted = pixel(image, along, across);
                const bool inside = along >= left * scale && along <= right * scale &&
                                    across >= top * scale && across <= bottom * scale;
                const bool onOutline =
                    inside && (along == left * scale || along == right * scale ||
                               across == top * scale || across == bottom * scale);
                if (!inside) {
                    ASSERT_EQ(painted.rgb(), background.rgb()) << along << " " << across;
                } else if (onOutline) {
                    ASSERT_EQ(painted.rgb(), outline.rgb()) << along << " " << across;
                } else {
                    const double stop = qBound(
                        0.0, ((across + 0.5) / scale - grooveTop) / (grooveBottom - grooveTop),
                        1.0);
                    // Qt's gradients have 1,024 steps: one unit of a channel is what may differ.
                    const auto expectChannel = [&](int got, int first, int last) {
                        EXPECT_NEAR(got, first + stop * (last - first), 1.0)
                            << along << " " << across;
                    };
                    expectChannel(painted.red(), from.red(), to.red());
                    expectChannel(painted.green(), from.green(), to.green());
                    expectChannel(painted.blue(), from.blue(), to.blue());
                }
            }
        }
    }

    void press(int position)
    {
        const QPoint at = lying() ? QPoint(14 + position, 13) : QPoint(13, 14 + position);
        QMouseEvent event(QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(&slider, &event);
    }

    void release()
    {
        QMouseEvent event(QEvent::MouseButtonRelease, QPoint(0, 0), Qt::LeftButton, Qt::NoButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(&slider, &event);
    }

    RoundNumbers style;
    QxtSpanSlider slider;
};

INSTANTIATE_TEST_SUITE_P(SpanSlider, SpanPainting, testing::Values(Qt::Horizontal, Qt::Vertical));

TEST_P(SpanPainting, the_span_is_four_pixels_thick_between_the_handles_centres)
{
    slider.setSpan(30, 120);
    // The handles' centres lie at 44 and 134 along the slider and at 13 across it: a rectangle from
    // (44, 11) to (134, 14), whose outline runs one pixel further to the right and below.
    expectSpan(44, 135, 11, 15, 10, 17);
}

TEST_P(SpanPainting, the_span_stays_within_the_groove)
{
    style.groove = QRect(60, 12, 61, 3);
    slider.setSpan(30, 120);
    // One pixel of the groove's end is left free: 60 to 119 along, 12 to 14 across.
    expectSpan(60, 120, 12, 15, 12, 14);
}

TEST_P(SpanPainting, the_span_follows_the_positions)
{
    slider.setTracking(false);
    slider.setSpan(30, 120);
    slider.setLowerPosition(150); // beyond the upper one
    expectSpan(134, 165, 11, 15, 10, 17);
}

TEST_P(SpanPainting, the_groove_comes_first_and_the_handle_pressed_last_lies_on_top)
{
    slider.setSpan(30, 120);
    const DrawnControl groove{grooveControls, 0, 0, QStyle::SC_None, false};
    const DrawnControl lower{handleControl, 30, 30, QStyle::SC_None, false};
    const DrawnControl upper{handleControl, 120, 120, QStyle::SC_None, false};
    DrawnControl lowerPressed = lower;
    lowerPressed.active = handleControl;
    lowerPressed.sunken = true;
    DrawnControl upperPressed = upper;
    upperPressed.active = handleControl;
    upperPressed.sunken = true;

    const auto drawn = [this] {
        style.drawn.clear();
        slider.grab();
        return style.drawn;
    };
    EXPECT_EQ(drawn(), (QVector<DrawnControl>{groove, lower, upper}));
    press(30);
    EXPECT_EQ(drawn(), (QVector<DrawnControl>{groove, upper, lowerPressed}));
    release();
    EXPECT_EQ(drawn(), (QVector<DrawnControl>{groove, upper, lower}));
    press(120);
    EXPECT_EQ(drawn(), (QVector<DrawnControl>{groove, lower, upperPressed}));
    release();
    EXPECT_EQ(drawn(), (QVector<DrawnControl>{groove, lower, upper}));
}

TEST_P(SpanPainting, a_handle_is_drawn_at_its_position_with_its_value)
{
    slider.setTracking(false);
    slider.setSpan(30, 120);
    slider.setLowerPosition(40);
    slider.setUpperPosition(110);
    style.drawn.clear();
    slider.grab();
    ASSERT_EQ(style.drawn.size(), 3);
    EXPECT_EQ(style.drawn[1], (DrawnControl{handleControl, 40, 30, QStyle::SC_None, false}));
    EXPECT_EQ(style.drawn[2], (DrawnControl{handleControl, 110, 120, QStyle::SC_None, false}));
}

/// Adds up the regions in which a widget is painted.
class Painted : public QObject
{
public:
    explicit Painted(QWidget *widget) : watched(widget) { widget->installEventFilter(this); }

    QRegion take()
    {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        return std::exchange(region, {});
    }

private:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (object == watched && event->type() == QEvent::Paint)
            region += static_cast<QPaintEvent *>(event)->region();
        return false;
    }

    QWidget *watched;
    QRegion region;
};

TEST_P(SpanPainting, is_painted_anew_whenever_its_picture_changes)
{
    slider.setTracking(false);
    slider.setSpan(30, 120);
    slider.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&slider));
    Painted painted(&slider);
    painted.take();
    const QRegion all(slider.rect());

    slider.setLowerPosition(40);
    EXPECT_EQ(painted.take(), all);
    slider.setUpperPosition(110);
    EXPECT_EQ(painted.take(), all);
    slider.setSpan(50, 60);
    EXPECT_EQ(painted.take(), all);
    EXPECT_TRUE(painted.take().isEmpty());

    press(60);
    const QRect handle = lying() ? QRect(70, 4, 10, 20) : QRect(4, 70, 20, 10);
    EXPECT_TRUE(painted.take().contains(handle));
    release();
    EXPECT_EQ(painted.take(), all);
}

/// A slider whose option for the style can be asked for.
class OpenSlider : public QxtSpanSlider
{
public:
    using QSlider::initStyleOption;
};

class SpanInFusion
    : public testing::TestWithParam<std::tuple<Qt::Orientation, bool, Qt::LayoutDirection>>
{
protected:
    void SetUp() override
    {
        const auto [orientation, invertedAppearance, direction] = GetParam();
        slider.setOrientation(orientation);
        slider.setInvertedAppearance(invertedAppearance);
        slider.setLayoutDirection(direction);
        slider.setTickPosition(QSlider::TicksBelow);
        slider.setTickInterval(100);
        slider.resize(lying() ? QSize(300, 40) : QSize(40, 300));
        slider.setRange(0, 1000);
        slider.setSpan(200, 650);
        // Until Fusion has the picture of a groove, it draws the ticks in another colour.
        slider.grab();
    }

    bool lying() const { return slider.orientation() == Qt::Horizontal; }

    QRect rectOf(const QStyleOptionSlider &option, QStyle::SubControl control) const
    {
        return slider.style()->subControlRect(QStyle::CC_Slider, &option, control, &slider);
    }

    /// Groove, span and handles, the last of the two on top; `pressed` is drawn sunken.
    QImage expected(std::pair<int, int> handles, int pressed = -1) const
    {
        QWidget empty;
        empty.resize(slider.size());
        QPixmap pixmap = empty.grab();
        QPainter painter(&pixmap);

        QStyleOptionSlider option;
        slider.initStyleOption(&option);
        option.sliderPosition = 0;
        option.sliderValue = 0;
        option.subControls = grooveControls;
        slider.style()->drawComplexControl(QStyle::CC_Slider, &option, &painter, &slider);

        const QRect groove = rectOf(option, QStyle::SC_SliderGroove);
        option.sliderPosition = handles.first;
        const QPoint a = rectOf(option, handleControl).center();
        option.sliderPosition = handles.second;
        const QPoint b = rectOf(option, handleControl).center();
        const QColor color = slider.palette().color(QPalette::Highlight);
        QLinearGradient gradient;
        QRect span;
        if (lying()) {
            span = QRect(qMin(a.x(), b.x()), a.y() - 2, std::abs(a.x() - b.x()) + 1, 4);
            span &= groove.adjusted(0, 0, -1, 0);
            gradient = QLinearGradient(groove.center().x(), groove.top(), groove.center().x(),
                                       groove.bottom());
        } else {
            span = QRect(a.x() - 2, qMin(a.y(), b.y()), 4, std::abs(a.y() - b.y()) + 1);
            span &= groove.adjusted(0, 0, 0, -1);
            gradient = QLinearGradient(groove.left(), groove.center().y(), groove.right(),
                                       groove.center().y());
        }
        gradient.setColorAt(0, color.darker(120));
        gradient.setColorAt(1, color.lighter(108));
        painter.setBrush(gradient);
        painter.setPen(QPen(color.darker(lying() ? 130 : 150), 0));
        painter.drawRect(span);

        for (int position : {handles.first, handles.second}) {
            slider.initStyleOption(&option);
            option.sliderPosition = position;
            option.sliderValue = position;
            option.subControls = handleControl;
            if (position == pressed) {
                option.activeSubControls = handleControl;
                option.state |= QStyle::State_Sunken;
            }
            slider.style()->drawComplexControl(QStyle::CC_Slider, &option, &painter, &slider);
        }
        painter.end();
        return comparable(pixmap);
    }

    OpenSlider slider;
};

INSTANTIATE_TEST_SUITE_P(SpanSlider, SpanInFusion,
                         testing::Combine(testing::Values(Qt::Horizontal, Qt::Vertical),
                                          testing::Bool(),
                                          testing::Values(Qt::LeftToRight, Qt::RightToLeft)));

TEST_P(SpanInFusion, is_painted_groove_span_handles)
{
    EXPECT_EQ(comparable(slider.grab()), expected({200, 650}));
}

TEST_P(SpanInFusion, is_painted_with_the_pressed_handle_sunken_and_on_top)
{
    slider.setSpan(640, 650);
    QStyleOptionSlider option;
    slider.initStyleOption(&option);
    option.sliderPosition = 640;
    // The end of the lower handle that the upper one leaves free.
    const QRect lower = rectOf(option, handleControl);
    option.sliderPosition = 650;
    const QRect upper = rectOf(option, handleControl);
    const QPoint at = upper.contains(lower.topLeft()) ? lower.bottomRight() : lower.topLeft();
    ASSERT_FALSE(upper.contains(at));
    QMouseEvent event(QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&slider, &event);
    EXPECT_EQ(comparable(slider.grab()), expected({650, 640}, 640));
}

TEST_P(SpanInFusion, is_painted_at_the_ends_of_the_range)
{
    slider.setSpan(0, 1000);
    EXPECT_EQ(comparable(slider.grab()), expected({0, 1000}));
}

TEST(SpanScale, is_painted_at_the_scale_that_was_asked_for)
{
    const int asked = qMax(1, qEnvironmentVariableIntValue("QT_SCALE_FACTOR"));
    QxtSpanSlider slider;
    slider.resize(40, 300);
    EXPECT_EQ(slider.grab().size(), QSize(40, 300) * asked);
}

} // namespace
