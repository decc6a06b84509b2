// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/my_slider.h"

#include "dataset/plugin_settings.h"
#include "tests/gui_test.h"
#include "tests/support/qt_printers.h"

#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QPixmap>

#include <gtest/gtest.h>

namespace
{

constexpr int sliderWidth = 601;

/// A slider as in the window of the circular plot.
class MySliderTest : public testing::Test
{
protected:
    void SetUp() override { prepare(slider); }

    static void prepare(QSlider &target)
    {
        target.setMinimum(1);
        target.setMaximum(10);
        target.setTickInterval(1);
        target.resize(sliderWidth, 150);
    }

    static QImage picture(QWidget &widget)
    {
        return widget.grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    }

    struct PlacedLabel {
        QString text;
        int x;
    };

    /// The slider as Qt paints it, with the labels drawn downwards from the top edge at the given
    /// x.
    QImage expectedPicture(const QVector<PlacedLabel> &labels)
    {
        QSlider plain(slider.orientation());
        prepare(plain);
        plain.resize(slider.size());
        plain.setRange(slider.minimum(), slider.maximum());
        plain.setTickInterval(slider.tickInterval());
        plain.setValue(slider.value());
        QPixmap pixmap = plain.grab();
        QPainter painter(&pixmap);
        painter.setFont(slider.font());
        painter.setPen(Qt::black);
        for (const PlacedLabel &label : labels) {
            painter.setTransform(QTransform(0, 1, -1, 0, label.x, 0));
            painter.drawText(0, 0, label.text);
        }
        painter.end();
        return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    }

    int numberWidth(const char *number) const
    {
        return QFontMetrics(slider.font()).horizontalAdvance(QLatin1String(number));
    }

    MySlider slider;
};

TEST_F(MySliderTest, is_horizontal)
{
    EXPECT_EQ(slider.orientation(), Qt::Horizontal);
}

TEST_F(MySliderTest, takes_its_maximum_from_the_labels_and_keeps_its_minimum)
{
    slider.setLabels({"Rest", "Faces", "Houses"});
    EXPECT_EQ(slider.maximum(), 3);
    EXPECT_EQ(slider.minimum(), 1);
}

TEST_F(MySliderTest, without_labels_is_a_plain_slider)
{
    EXPECT_EQ(picture(slider), expectedPicture({}));
}

TEST_F(MySliderTest, writes_each_label_at_its_tick_less_half_the_width_of_the_ticks_number)
{
    slider.setLabels({"Rest", "Faces", "Houses", "Scrambled pictures"});
    // Three steps between four ticks: 601 / 3 is 200 in whole numbers.
    const QImage painted = picture(slider);
    EXPECT_EQ(painted, expectedPicture({{"Rest", 0 - numberWidth("1") / 2},
                                        {"Faces", 200 - numberWidth("2") / 2},
                                        {"Houses", 400 - numberWidth("3") / 2},
                                        {"Scrambled pictures", 600 - numberWidth("4") / 2}}));
    EXPECT_NE(painted, expectedPicture({}));
}

TEST_F(MySliderTest, writes_in_black_whatever_the_palette)
{
    slider.setLabels({"Rest", "Faces"});
    const QImage black = picture(slider);
    QPalette palette;
    palette.setColor(QPalette::WindowText, Qt::red);
    palette.setColor(QPalette::Text, Qt::red);
    slider.setPalette(palette);
    EXPECT_EQ(picture(slider), black);
}

TEST_F(MySliderTest, measures_the_number_and_not_its_position)
{
    slider.setLabels({"Rest", "Faces", "Houses"});
    slider.setRange(98, 102);
    slider.setTickInterval(2);
    // Ticks at 98, 100 and 102: the numbers are two, three and three digits wide.
    EXPECT_EQ(picture(slider), expectedPicture({{"Rest", 0 - numberWidth("98") / 2},
                                                {"Faces", 300 - numberWidth("100") / 2},
                                                {"Houses", 600 - numberWidth("102") / 2}}));
}

TEST_F(MySliderTest, writes_a_single_label_at_the_left_edge)
{
    slider.setLabels({"Rest"});
    ASSERT_EQ(slider.minimum(), slider.maximum());
    EXPECT_EQ(picture(slider), expectedPicture({{"Rest", 0}}));
}

TEST_F(MySliderTest, without_tick_interval_writes_the_first_label_at_the_left_edge)
{
    slider.setTickInterval(0);
    slider.setLabels({"Rest", "Faces"});
    EXPECT_EQ(picture(slider), expectedPicture({{"Rest", 0}}));
}

TEST_F(MySliderTest, leaves_out_what_has_no_label)
{
    slider.setLabels({"Rest", "Faces"});
    slider.setMaximum(4);
    EXPECT_EQ(picture(slider), expectedPicture({{"Rest", 0 - numberWidth("1") / 2},
                                                {"Faces", 200 - numberWidth("2") / 2}}));
}

TEST_F(MySliderTest, has_no_labels_when_vertical)
{
    slider.setLabels({"Rest", "Faces"});
    slider.setOrientation(Qt::Vertical);
    slider.resize(150, 300);
    EXPECT_EQ(picture(slider), expectedPicture({}));
}

TEST_F(MySliderTest, logs_its_labels_between_empty_lines_when_logging_is_on)
{
    takeMessages();
    slider.setLabels({"Rest", "Faces"});
    EXPECT_TRUE(takeMessages().isEmpty());

    PluginSettings::instance()->verboseLogging = true;
    slider.setLabels({"Rest", "Faces"});
    PluginSettings::instance()->verboseLogging = false;

    QStringList lines;
    for (const LoggedMessage &message : takeMessages()) {
        EXPECT_EQ(message.type, QtDebugMsg);
        lines += message.text;
    }
    EXPECT_EQ(lines, QStringList({"", "", "", "(\"Rest\", \"Faces\")", "", "", ""}));
}

TEST_F(MySliderTest, declares_no_signals_and_slots)
{
    const QMetaObject &meta = MySlider::staticMetaObject;
    EXPECT_EQ(meta.methodCount(), meta.methodOffset());
    EXPECT_EQ(meta.propertyCount(), meta.propertyOffset());
}

} // namespace
