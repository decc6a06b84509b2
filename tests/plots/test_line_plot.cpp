// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/plots/line_plot_fixture.h"
#include "tests/support/form_text.h"

#include <QComboBox>
#include <QContextMenuEvent>
#include <QDockWidget>
#include <QMenu>
#include <QMetaMethod>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QTimer>
#include <QtCharts/QBarCategoryAxis>
#include <QtCharts/QLegend>
#include <QtCharts/QValueAxis>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

using namespace QtCharts;

namespace
{

std::vector<float> wave(int points, float height = 1)
{
    std::vector<float> values;
    for (int i = 0; i < points; ++i)
        values.push_back(height + 0.5f * std::sin(0.3f * float(i)));
    return values;
}

QStringList names(int count)
{
    QStringList list;
    for (int i = 0; i < count; ++i)
        list += QStringLiteral("VOI %1").arg(i);
    return list;
}

std::array<int, 4> rgba(const QColor &color)
{
    return {color.red(), color.green(), color.blue(), color.alpha()};
}

QAbstractAxis *xAxis(const QChart *chart)
{
    const QList<QAbstractAxis *> axes = chart->axes(Qt::Horizontal);
    return axes.size() == 1 ? axes.first() : nullptr;
}

// ---- the picture of the whole

TEST_F(LinePlotTest, shows_its_names_and_its_legend_whole)
{
    for (int row = 0; row < 30; ++row)
        window.addSeries(wave(60), QStringLiteral("Condition %1").arg(row), 0);
    window.finishPlot(names(60), true);
    window.showWhole();
    QCoreApplication::processEvents();
    EXPECT_GE(chart()->plotArea().width(), 60 * 24.0);
    auto *const legend = named<QScrollArea>("scrollArea");
    EXPECT_GE(legend->viewport()->height(), legend->widget()->sizeHint().height());
    EXPECT_TRUE(checkBox(29)->visibleRegion().contains(checkBox(29)->rect()));
    EXPECT_EQ(window.picture().toImage(), window.grab().toImage());
    EXPECT_EQ(window.picture().size(), window.size() * window.devicePixelRatioF());
}

TEST_F(LinePlotTest, that_has_room_for_all_stays_as_large_as_it_is)
{
    window.addSeries(wave(5), QString(), 0);
    window.finishPlot(names(5), false);
    window.disableConditions();
    window.showWhole();
    QCoreApplication::processEvents();
    EXPECT_EQ(window.size(), QSize(1114, 632));
    // One line needs no legend.
    EXPECT_EQ(window.picture().toImage(), view()->grab().toImage());
}

TEST_F(LinePlotTest, grows_for_names_up_to_a_limit_and_not_for_numbers)
{
    window.addSeries(wave(2000), QString(), 0);
    window.finishPlot({}, false);
    window.showWhole();
    EXPECT_EQ(window.width(), 1114);

    LinePlot named(QStringLiteral("Degree"));
    named.prepareChart();
    named.addSeries(wave(2000), QString(), 0);
    named.finishPlot(names(2000), false);
    named.showWhole();
    EXPECT_EQ(named.width(), 16000);
}

// ---- the window and its form

TEST_F(LinePlotTest, is_a_window_with_maximize_and_close_button_that_survives_its_closing)
{
    EXPECT_EQ(window.windowType(), Qt::Window);
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowCloseButtonHint));
    EXPECT_FALSE(window.windowFlags().testFlag(Qt::WindowMinimizeButtonHint));
    EXPECT_FALSE(window.testAttribute(Qt::WA_DeleteOnClose));
}

TEST_F(LinePlotTest, has_the_form_that_is_described)
{
    EXPECT_EQ('\n' + formText(LinePlot(QString())) + '\n', R"(
LinePlot LinePlot "MainWindow" contextMenuPolicy NoContextMenu 1114x632
  QWidget centralwidget
    QHBoxLayout horizontalLayout spacing 6 margins 0 9 9 9
      QVBoxLayout verticalLayout_3 spacing 6
        spacer 20x40 Minimum/Expanding
  QDockWidget dw_Legend "Legend" minimumSize 330x227 maximumSize 350x524287 features DockWidgetMovable|DockWidgetFloatable allowedAreas LeftDockWidgetArea|RightDockWidgetArea LeftDockWidgetArea
    QWidget dockWidgetContents
      QVBoxLayout verticalLayout spacing 6 margins 2 9 2 9
        QGroupBox groupBox minimumSize 250x0 maximumSize 310x16777215 policy Maximum/Preferred
          QVBoxLayout verticalLayout_2 spacing 6 margins 9 9 9 9 SetMinAndMaxSize
            QHBoxLayout horizontalLayout_3 spacing 6
              QComboBox cbox_Conditions minimumSize 150x0 accessibleName "Condition"
              QPushButton btn_Show "Show" flat
              QPushButton btn_Hide "Hide" flat
            QFrame line frameShape HLine frameShadow Sunken policy Minimum/Fixed
            QScrollArea scrollArea frameShape NoFrame widgetResizable policy Expanding/MinimumExpanding
              QWidget scrollAreaWidgetContents autoFillBackground
                QHBoxLayout horizontalLayout_2 spacing 6 margins 9 9 9 9
                  QGridLayout gridLayoutAll spacing 6,6
        spacer 20x40 Minimum/Expanding
  QDockWidget dw_Sources "Sources" minimumSize 330x67 maximumSize 350x524287 features DockWidgetMovable|DockWidgetFloatable allowedAreas LeftDockWidgetArea|RightDockWidgetArea hidden LeftDockWidgetArea
    QWidget dockWidgetContents_4
      QVBoxLayout verticalLayout_4 spacing 6 margins 9 9 9 9
        QGroupBox groupBox_2
)");
}

TEST_F(LinePlotTest, shows_the_dock_of_its_legend_and_never_the_other)
{
    show();
    EXPECT_TRUE(named<QDockWidget>("dw_Legend")->isVisible());
    EXPECT_FALSE(named<QDockWidget>("dw_Sources")->isVisible());
}

TEST_F(LinePlotTest, has_no_menu_on_its_legend)
{
    show();
    QWidget *const legend = named<QDockWidget>("dw_Legend");
    for (const QPoint &place :
         {QPoint(20, 8), legend->rect().center(), legend->rect().bottomLeft() + QPoint(20, -20)}) {
        QMenu *opened = nullptr;
        QTimer::singleShot(0, &window, [&opened] {
            opened = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            if (opened)
                opened->close();
        });
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, legend->mapToGlobal(place));
        QApplication::sendEvent(legend, &event);
        QCoreApplication::processEvents();
        EXPECT_EQ(opened, nullptr) << place.y();
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    }
}

TEST_F(LinePlotTest, puts_the_chart_behind_the_spacer_of_its_central_widget)
{
    const QLayout *const layout = window.centralWidget()->layout();
    ASSERT_EQ(layout->count(), 2);
    EXPECT_EQ(layout->itemAt(1)->widget(), view());
}

TEST_F(LinePlotTest, declares_its_slots_in_order)
{
    const QMetaObject &meta = LinePlot::staticMetaObject;
    QStringList slotNames;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        EXPECT_EQ(meta.method(i).methodType(), QMetaMethod::Slot);
        slotNames += QString::fromLatin1(meta.method(i).methodSignature());
    }
    EXPECT_EQ(slotNames, QStringList({"highlightLineSeries(bool)", "toggleLineSeries(int)",
                                      "conditionsShow()", "conditionsHide()",
                                      "showContextMenu(QPoint)", "saveImage()", "saveCSV()"}));
}

TEST_F(LinePlotTest, prepares_a_chart_with_a_bold_title)
{
    EXPECT_EQ(chart()->title(), "<b>Degree</b>");
    EXPECT_EQ(chart()->titleFont().pixelSize(), 18);
    EXPECT_EQ(chart()->titleFont().weight(), 75);
    EXPECT_TRUE(view()->renderHints().testFlag(QPainter::Antialiasing));
    EXPECT_EQ(view()->contextMenuPolicy(), Qt::CustomContextMenu);
}

// ---- lines and legend

TEST_F(LinePlotTest, a_line_has_a_point_per_value)
{
    for (int points : {0, 1, 50, 51, 2000})
        window.addSeries(wave(points), QString(), 0);
    window.finishPlot({}, false);
    int row = 0;
    for (int points : {0, 1, 50, 51, 2000}) {
        const std::vector<float> values = wave(points);
        ASSERT_EQ(line(row)->count(), points);
        for (int i = 0; i < points; ++i) {
            ASSERT_EQ(line(row)->at(i).x(), double(i));
            ASSERT_EQ(line(row)->at(i).y(), double(values[size_t(i)]));
        }
        EXPECT_TRUE(line(row)->pointsVisible());
        ++row;
    }
}

TEST_F(LinePlotTest, values_that_are_not_finite_are_left_out_and_the_others_keep_their_place)
{
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    window.addSeries({nan, 1, -inf, 3, inf, 2}, QString(), 0);
    window.addSeries({nan, nan, nan, nan, nan, nan}, QString(), 0);
    window.finishPlot(names(6), false);
    EXPECT_EQ(line(0)->pointsVector(),
              QVector<QPointF>({QPointF(1, 1), QPointF(3, 3), QPointF(5, 2)}));
    EXPECT_EQ(line(1)->count(), 0);

    auto *y = qobject_cast<QValueAxis *>(chart()->axes(Qt::Vertical).value(0));
    ASSERT_NE(y, nullptr);
    EXPECT_TRUE(std::isfinite(y->min()) && std::isfinite(y->max()));
    show();
    EXPECT_TRUE(allPointsAreInThePlotArea());
}

TEST_F(LinePlotTest, a_line_without_a_name_gets_its_number)
{
    window.addSeries(wave(3), QString(), 0);
    window.addSeries(wave(3), QStringLiteral("Rest"), 0);
    window.addSeries(wave(3), QString(), 0);
    EXPECT_EQ(line(0)->name(), "Series 1");
    EXPECT_EQ(line(1)->name(), "Rest");
    EXPECT_EQ(line(2)->name(), "Series 3");
    EXPECT_EQ(nameLabel(2)->text(), "Series 3");
}

TEST_F(LinePlotTest, a_line_has_its_theme_color_two_pens_and_a_legend_row)
{
    for (int row = 0; row < 7; ++row)
        window.addSeries(wave(3), QString(), 0);
    for (int row = 0; row < 7; ++row) {
        const QColor color = line(row)->color();
        EXPECT_EQ(rgba(pen(row, "default-pen").color()), rgba(color));
        EXPECT_EQ(pen(row, "default-pen").width(), 2);
        QColor faded = color;
        faded.setAlpha(64);
        EXPECT_EQ(rgba(pen(row, "fadein-pen").color()), rgba(faded));
        EXPECT_EQ(pen(row, "fadein-pen").width(), 2);

        ASSERT_NE(colorBox(row), nullptr);
        ASSERT_NE(nameLabel(row), nullptr);
        ASSERT_NE(checkBox(row), nullptr);
        EXPECT_EQ(colorBox(row)->objectName(), QStringLiteral("Colorbox%1").arg(row));
        EXPECT_EQ(colorBox(row)->styleSheet(), QStringLiteral("background-color: rgb(%1, %2, %3);")
                                                   .arg(color.red())
                                                   .arg(color.green())
                                                   .arg(color.blue()));
        EXPECT_EQ(checkBox(row)->text(), "");
        EXPECT_FALSE(checkBox(row)->isTristate());
        EXPECT_TRUE(checkBox(row)->isChecked());
        for (int column = 0; column < 3; ++column)
            EXPECT_EQ(inLegend<QWidget>(row, column)->property("row"), QVariant(row));
    }
    EXPECT_NE(line(0)->color(), line(1)->color());
    EXPECT_EQ(grid()->itemAtPosition(0, 0)->alignment(), Qt::AlignVCenter);
    EXPECT_EQ(grid()->itemAtPosition(0, 1)->alignment(), Qt::AlignVCenter | Qt::AlignLeft);
    EXPECT_EQ(grid()->itemAtPosition(0, 2)->alignment(), Qt::AlignVCenter | Qt::AlignRight);
}

TEST_F(LinePlotTest, a_trigger_line_is_hidden_and_its_row_reacts_to_nothing)
{
    window.addSeries(wave(5), QStringLiteral("Rest"), 0);
    window.addSeries(wave(5, 2), QStringLiteral("Cue"), 1);
    window.finishPlot(names(5), true);
    show();

    EXPECT_TRUE(line(0)->isVisible());
    EXPECT_FALSE(line(1)->isVisible());
    EXPECT_EQ(line(1)->name(), "Cue");
    EXPECT_EQ(nameLabel(1)->text(), "Trigger: Cue");
    EXPECT_TRUE(nameLabel(1)->isVisible());
    EXPECT_FALSE(checkBox(1)->isVisible());
    EXPECT_TRUE(checkBox(0)->isVisible());

    const QPen before = line(0)->pen();
    for (QWidget *widget : {colorBox(1), nameLabel(1)}) {
        moveMouseTo(widget);
        EXPECT_EQ(widget->cursor().shape(), Qt::ArrowCursor);
        EXPECT_EQ(line(0)->pen(), before);
    }
    checkBox(1)->setChecked(false);
    checkBox(1)->setChecked(true);
    EXPECT_FALSE(line(1)->isVisible());
}

// ---- axes

TEST_F(LinePlotTest, without_labels_the_x_axis_counts_voxels)
{
    window.addSeries(wave(50), QString(), 0);
    window.finishPlot({}, false);
    auto *x = qobject_cast<QValueAxis *>(xAxis(chart()));
    ASSERT_NE(x, nullptr);
    EXPECT_EQ(x->tickCount(), 50);
    EXPECT_EQ(x->labelFormat(), "%i");
    EXPECT_EQ(x->titleText(), "Voxels");
    EXPECT_EQ(x->min(), 0);
    EXPECT_EQ(x->max(), 49);
    auto *y = qobject_cast<QValueAxis *>(chart()->axes(Qt::Vertical).value(0));
    ASSERT_NE(y, nullptr);
    EXPECT_EQ(y->titleText(), "Plot: Degree");
    EXPECT_FALSE(chart()->legend()->isVisible());
}

TEST_F(LinePlotTest, more_than_fifty_points_have_ten_ticks)
{
    for (int points : {51, 2000}) {
        LinePlot plot((QString()));
        plot.prepareChart();
        plot.addSeries(wave(points), QString(), 0);
        plot.addSeries(wave(3), QString(), 0); // the first line decides
        plot.finishPlot({}, false);
        auto *x = qobject_cast<QValueAxis *>(xAxis(plot.findChild<QChartView *>()->chart()));
        ASSERT_NE(x, nullptr);
        EXPECT_EQ(x->tickCount(), 10) << points;
    }
}

TEST_F(LinePlotTest, no_point_and_one_point_leave_the_ticks_as_they_are)
{
    for (int points : {0, 1}) {
        LinePlot plot((QString()));
        plot.prepareChart();
        plot.addSeries(wave(points), QString(), 0);
        plot.finishPlot({}, false);
        auto *x = qobject_cast<QValueAxis *>(xAxis(plot.findChild<QChartView *>()->chart()));
        ASSERT_NE(x, nullptr);
        EXPECT_EQ(x->tickCount(), QValueAxis().tickCount()) << points;
    }
}

TEST_F(LinePlotTest, a_plot_without_lines_stays_empty)
{
    window.finishPlot({}, true);
    EXPECT_TRUE(chart()->axes().isEmpty());
    LinePlot labelled((QString()));
    labelled.prepareChart();
    labelled.finishPlot(names(3), false);
    show();
}

TEST_F(LinePlotTest, labels_become_the_categories_of_the_x_axis)
{
    for (int row = 0; row < 3; ++row)
        window.addSeries(wave(60, float(row)), QString(), 0);
    window.finishPlot(names(60), false);
    auto *x = qobject_cast<QBarCategoryAxis *>(xAxis(chart()));
    ASSERT_NE(x, nullptr);
    EXPECT_EQ(x->categories(), names(60));
    EXPECT_EQ(x->titleText(), "VOIs");
    EXPECT_EQ(x->min(), "VOI 0");
    EXPECT_EQ(x->max(), "VOI 59");
    EXPECT_EQ(x->labelsAngle(), 90);
    EXPECT_EQ(x->alignment(), Qt::AlignBottom);
    for (int row = 0; row < 3; ++row)
        EXPECT_TRUE(line(row)->attachedAxes().contains(x));
    show();
    EXPECT_TRUE(allPointsAreInThePlotArea());
}

TEST_F(LinePlotTest, labels_that_repeat_or_are_empty_keep_their_place)
{
    window.addSeries(wave(7), QString(), 0);
    window.finishPlot({"V1", "V1", QString(), "", "V1", "V2", "V1"}, false);
    auto *x = qobject_cast<QBarCategoryAxis *>(xAxis(chart()));
    ASSERT_NE(x, nullptr);
    QStringList shown = x->categories();
    ASSERT_EQ(shown.size(), 7);
    for (QString &name : shown)
        name.remove(QChar(0x200b)); // takes no room
    EXPECT_EQ(shown, QStringList({"V1", "V1", "", "", "V1", "V2", "V1"}));
    show();
    EXPECT_TRUE(allPointsAreInThePlotArea());
}

TEST_F(LinePlotTest, names_are_shown_as_they_are_written)
{
    const QStringList nodes = {"<b>left</b>", "a < b & c", "&lt;", "plain"};
    window.addSeries(wave(4), QStringLiteral("<b>go</b>"), 0);
    window.addSeries(wave(4), QStringLiteral("<i>cue</i>"), 1);
    window.finishPlot(nodes, true);
    show();
    EXPECT_EQ(shownNames(*chart()), nodes);
    for (int row = 0; row < 2; ++row)
        EXPECT_EQ(nameLabel(row)->textFormat(), Qt::PlainText);
    EXPECT_EQ(nameLabel(0)->text(), "<b>go</b>");
    EXPECT_EQ(nameLabel(1)->text(), "Trigger: <i>cue</i>");
    EXPECT_GT(nameLabel(0)->sizeHint().width(),
              nameLabel(0)->fontMetrics().horizontalAdvance(QStringLiteral("<b>go")));
}

TEST_F(LinePlotTest, short_names_leave_the_axis_its_title)
{
    for (const QStringList &nodes :
         {QStringList({"A", "B", "C"}), QStringList({"l", "i", "."}), QStringList({"1", "1", "1"}),
          QStringList({"", "", ""}), QStringList({"iii", "ll", "<"}), QStringList({"W", "M", "@"}),
          QStringList({"VOI 1", "VOI 2", "VOI 3"})}) {
        LinePlot plot(QStringLiteral("Degree"));
        plot.prepareChart();
        plot.addSeries(wave(3), QString(), 0);
        plot.finishPlot(nodes, false);
        plot.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&plot));
        const QChart &shown = *plot.findChild<QChartView *>()->chart();
        EXPECT_TRUE(shownTitles(shown).contains("VOIs")) << qPrintable(nodes.join(", "));
        EXPECT_EQ(shownNames(shown), QStringList(nodes).filter(QRegularExpression(".")));
    }
}

TEST_F(LinePlotTest, a_constant_line_is_seen)
{
    window.addSeries(std::vector<float>(4, 0.25f), QString(), 0);
    window.finishPlot(names(4), false);
    show();
    EXPECT_TRUE(allPointsAreInThePlotArea());
}

/// A number of points, and whether they have labels.
class LinePlotOfPoints : public LinePlotTest,
                         public testing::WithParamInterface<std::tuple<int, bool>>
{
};

INSTANTIATE_TEST_SUITE_P(LinePlot, LinePlotOfPoints,
                         testing::Combine(testing::Values(0, 1, 2, 50, 51, 2000), testing::Bool()));

TEST_P(LinePlotOfPoints, shows_them_all_in_the_plot_area)
{
    const auto [points, labelled] = GetParam();
    window.addSeries(wave(points), QString(), 0);
    window.finishPlot(labelled ? names(points) : QStringList(), false);
    show();
    EXPECT_EQ(line(0)->count(), points);
    EXPECT_TRUE(allPointsAreInThePlotArea());

    const QImage picture = view()->grab().toImage();
    int ofLine = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ofLine += rgba(picture.pixelColor(x, y)) == rgba(line(0)->color());
    }
    EXPECT_EQ(ofLine > 0, points > 0);
}

TEST_F(LinePlotTest, a_line_without_any_finite_value_is_blank)
{
    window.addSeries(std::vector<float>(3, std::numeric_limits<float>::quiet_NaN()), QString(), 0);
    window.finishPlot(names(3), false);
    show();
    EXPECT_EQ(line(0)->count(), 0);
    EXPECT_EQ(qobject_cast<QBarCategoryAxis *>(xAxis(chart()))->categories(), names(3));
    auto *y = qobject_cast<QValueAxis *>(chart()->axes(Qt::Vertical).value(0));
    ASSERT_NE(y, nullptr);
    EXPECT_TRUE(std::isfinite(y->min()) && std::isfinite(y->max()));
}

TEST_F(LinePlotTest, holds_two_hundred_lines)
{
    for (int row = 0; row < 200; ++row)
        window.addSeries(wave(10, float(row)), QStringLiteral("Condition %1").arg(row % 9), 0);
    window.finishPlot(names(10), true);
    show();
    EXPECT_EQ(chart()->series().size(), 200);
    EXPECT_EQ(grid()->rowCount(), 200);
    EXPECT_EQ(named<QComboBox>("cbox_Conditions")->count(), 10);
    EXPECT_EQ(line(199)->color(), line(1)->color());
    EXPECT_TRUE(allPointsAreInThePlotArea());
}

// ---- conditions

/// Lines of the conditions baseline, Faces, baseline, Cue (a trigger) and Houses.
class LinePlotConditions : public LinePlotTest
{
protected:
    void SetUp() override
    {
        const QStringList conditions = {"baseline", "Faces", "baseline", "Cue", "Houses"};
        for (int row = 0; row < conditions.size(); ++row)
            window.addSeries(wave(5, float(row)), conditions[row], conditions[row] == "Cue");
        window.finishPlot(names(5), true);
    }

    void choose(const char *condition)
    {
        named<QComboBox>("cbox_Conditions")
            ->setCurrentIndex(named<QComboBox>("cbox_Conditions")->findText(condition));
    }
    void press(const char *button)
    {
        auto *widget = named<QPushButton>(button);
        click(widget, widget->rect().center());
    }
    QVector<bool> visible() const
    {
        QVector<bool> lines;
        for (int row = 0; row < 5; ++row)
            lines += line(row)->isVisible();
        return lines;
    }
};

TEST_F(LinePlotConditions, are_offered_sorted_behind_all)
{
    auto *box = named<QComboBox>("cbox_Conditions");
    QStringList texts;
    for (int i = 0; i < box->count(); ++i) {
        texts += box->itemText(i);
        EXPECT_EQ(box->itemData(i, Qt::UserRole), QVariant(box->itemText(i)));
    }
    EXPECT_EQ(texts, QStringList({"All", "Cue", "Faces", "Houses", "baseline"}));
    EXPECT_EQ(box->currentText(), "All");
}

TEST_F(LinePlotConditions, have_a_legend_row_and_a_check_box_per_interval)
{
    for (int row : {0, 2}) {
        EXPECT_EQ(nameLabel(row)->text(), "baseline");
        EXPECT_EQ(colorBox(row)->styleSheet(), colorBox(0)->styleSheet());
        ASSERT_NE(checkBox(row), nullptr);
        EXPECT_FALSE(checkBox(row)->isHidden());
    }
    EXPECT_NE(checkBox(0), checkBox(2));
    EXPECT_EQ(grid()->rowCount(), 5);
}

TEST_F(LinePlotConditions, have_a_color_each_in_the_order_of_their_appearance)
{
    // Hues 0, 55, 111 and 166 of 360 at saturation 127 and value 242 of 255.
    const QVector<QColor> expected = {QColor(242, 121, 121), QColor(242, 232, 121),
                                      QColor(242, 121, 121), QColor(140, 242, 121),
                                      QColor(121, 242, 214)};
    for (int row = 0; row < 5; ++row) {
        const QColor &color = expected[row];
        EXPECT_EQ(rgba(line(row)->color()), rgba(color)) << row;
        EXPECT_EQ(rgba(line(row)->pen().color()), rgba(color)) << row;
        EXPECT_EQ(rgba(pen(row, "default-pen").color()), rgba(color)) << row;
        EXPECT_EQ(pen(row, "default-pen").width(), 2);
        QColor faded = color;
        faded.setAlpha(64);
        EXPECT_EQ(rgba(pen(row, "fadein-pen").color()), rgba(faded)) << row;
        EXPECT_EQ(pen(row, "fadein-pen").width(), 2);
        EXPECT_EQ(colorBox(row)->styleSheet(), QStringLiteral("background-color: rgb(%1, %2, %3);")
                                                   .arg(color.red())
                                                   .arg(color.green())
                                                   .arg(color.blue()));
    }
    show();
    const QImage box = colorBox(1)->grab().toImage();
    EXPECT_EQ(rgba(box.pixelColor(box.rect().center())), rgba(expected[1]));
}

TEST_F(LinePlotConditions, are_shown_and_hidden_together_and_the_check_boxes_stay)
{
    show();
    EXPECT_EQ(visible(), QVector<bool>({true, true, true, false, true}));
    choose("baseline");
    press("btn_Hide");
    EXPECT_EQ(visible(), QVector<bool>({false, true, false, false, true}));
    EXPECT_TRUE(checkBox(0)->isChecked());
    press("btn_Show");
    EXPECT_EQ(visible(), QVector<bool>({true, true, true, false, true}));
    choose("Cue");
    press("btn_Show");
    EXPECT_EQ(visible(), QVector<bool>({true, true, true, true, true}));
    press("btn_Hide");
    EXPECT_EQ(visible(), QVector<bool>({true, true, true, false, true}));
    choose("All");
    press("btn_Hide");
    EXPECT_EQ(visible(), QVector<bool>({false, false, false, false, false}));
    press("btn_Show");
    EXPECT_EQ(visible(), QVector<bool>({true, true, true, true, true}));
}

TEST_F(LinePlotConditions, a_check_box_hides_and_shows_its_line)
{
    show();
    const auto toggle = [this](int row) {
        QStyleOptionButton option;
        option.initFrom(checkBox(row));
        click(checkBox(row),
              checkBox(row)
                  ->style()
                  ->subElementRect(QStyle::SE_CheckBoxIndicator, &option, checkBox(row))
                  .center());
    };
    toggle(2);
    EXPECT_EQ(visible(), QVector<bool>({true, true, false, false, true}));
    toggle(2);
    EXPECT_EQ(visible(), QVector<bool>({true, true, true, false, true}));
}

TEST_F(LinePlotConditions, hovering_a_label_fades_all_other_lines)
{
    show();
    for (MyLabel *label : {nameLabel(1), colorBox(1)}) {
        moveMouseTo(label);
        for (int row = 0; row < 5; ++row) {
            EXPECT_EQ(line(row)->pen(), pen(row, row == 1 ? "default-pen" : "fadein-pen")) << row;
        }
        moveMouseTo(view());
        for (int row = 0; row < 5; ++row)
            EXPECT_EQ(line(row)->pen(), pen(row, "default-pen")) << row;
    }
}

TEST(LinePlotUnderTheMouse, can_be_destroyed)
{
    auto window = std::make_unique<LinePlot>(QStringLiteral("Degree"));
    window->prepareChart();
    window->addSeries(wave(4), QStringLiteral("Rest"), 0);
    window->finishPlot(names(4), false);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    const QPointer<MyLabel> label = window->findChild<MyLabel *>(QStringLiteral("Colorbox0"));
    bringMouseTo(*window, window->rect().center());
    QTest::mouseMove(window->windowHandle(), label->mapTo(window.get(), label->rect().center()));
    ASSERT_EQ(label->cursor().shape(), Qt::PointingHandCursor);
    window.reset(); // the mouse leaves the label of a window that is half gone
    EXPECT_TRUE(label.isNull());
}

TEST_F(LinePlotConditions, hovering_the_label_of_a_hidden_line_does_nothing)
{
    show();
    checkBox(1)->setChecked(false);
    QVector<QPen> before;
    for (int row = 0; row < 5; ++row)
        before += line(row)->pen();
    moveMouseTo(nameLabel(1));
    for (int row = 0; row < 5; ++row)
        EXPECT_EQ(line(row)->pen(), before[row]);
    moveMouseTo(view());

    // A hidden line fades with the others, and stays hidden.
    moveMouseTo(nameLabel(4));
    EXPECT_EQ(line(1)->pen(), pen(1, "fadein-pen"));
    EXPECT_FALSE(line(1)->isVisible());
}

TEST_F(LinePlotConditions, leaving_the_label_of_a_line_hidden_meanwhile_leaves_the_others_faded)
{
    show();
    moveMouseTo(nameLabel(1));
    checkBox(1)->setChecked(false);
    moveMouseTo(view());
    for (int row : {0, 2, 3, 4})
        EXPECT_EQ(line(row)->pen(), pen(row, "fadein-pen")) << row;

    moveMouseTo(nameLabel(0));
    moveMouseTo(view());
    for (int row = 0; row < 5; ++row)
        EXPECT_EQ(line(row)->pen(), pen(row, "default-pen")) << row;
}

TEST_F(LinePlotConditions, a_check_box_in_any_state_but_off_shows_its_line)
{
    checkBox(0)->setTristate(true);
    checkBox(0)->setCheckState(Qt::Unchecked);
    ASSERT_FALSE(line(0)->isVisible());
    checkBox(0)->setCheckState(Qt::PartiallyChecked);
    EXPECT_TRUE(line(0)->isVisible());
}

TEST_F(LinePlotConditions, without_a_protocol_the_controls_are_off_and_the_colors_are_the_themes)
{
    LinePlot plot((QString()));
    plot.prepareChart();
    plot.addSeries(wave(4), QStringLiteral("Series 0"), 0);
    auto *first =
        qobject_cast<QLineSeries *>(plot.findChild<QChartView *>()->chart()->series().value(0));
    const QColor color = first->color();
    plot.finishPlot(names(4), false);
    plot.disableConditions();
    EXPECT_EQ(rgba(first->color()), rgba(color));
    EXPECT_EQ(plot.findChild<QComboBox *>("cbox_Conditions")->count(), 0);
    EXPECT_FALSE(plot.findChild<QComboBox *>("cbox_Conditions")->isEnabled());
    EXPECT_FALSE(plot.findChild<QPushButton *>("btn_Show")->isEnabled());
    EXPECT_FALSE(plot.findChild<QPushButton *>("btn_Hide")->isEnabled());
    EXPECT_TRUE(named<QComboBox>("cbox_Conditions")->isEnabled());
}

TEST_F(LinePlotConditions, the_slots_of_the_legend_do_nothing_without_it)
{
    window.highlightLineSeries(true);
    window.toggleLineSeries(0);
    EXPECT_EQ(visible(), QVector<bool>({true, true, true, false, true}));
    EXPECT_EQ(line(0)->pen().color().alpha(), 255);
}

} // namespace
