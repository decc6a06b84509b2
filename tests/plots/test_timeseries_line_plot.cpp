// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/timeseries_line_plot.h"

#include "dataset/plugin_settings.h"
#include "tests/gui_test.h"
#include "tests/plots/line_plot_fixture.h"
#include "tests/support/form_text.h"
#include "tests/support/qt_printers.h"

#include <QApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QTest>
#include <QtCharts/QBarCategoryAxis>
#include <QtCharts/QLegend>
#include <QtCharts/QValueAxis>

#include <gtest/gtest.h>

#include <limits>

using namespace QtCharts;

namespace
{

class TimeseriesLinePlotTest : public testing::Test
{
protected:
    void SetUp() override
    {
        window.setWindowTitle(QStringLiteral("Plot: Global Efficiency"));
        takeWarnings();
        window.prepareChart();
    }

    QChartView *view() const { return window.findChild<QChartView *>(); }
    QChart *chart() const { return view()->chart(); }
    QLineSeries *line() const { return qobject_cast<QLineSeries *>(chart()->series().value(0)); }

    void expectPointsInPlotArea() const
    {
        const QRectF area = chart()->plotArea().adjusted(-0.5, -0.5, 0.5, 0.5);
        for (const QPointF &point : line()->pointsVector())
            EXPECT_TRUE(area.contains(chart()->mapToPosition(point, line()))) << point.x();
    }

    TimeseriesLinePlot window{QStringLiteral("Global Efficiency")};
};

TEST_F(TimeseriesLinePlotTest, has_the_form_that_is_described)
{
    EXPECT_EQ('\n' + formText(TimeseriesLinePlot(QString())) + '\n', R"(
TimeseriesLinePlot TimeseriesLineplot "MainWindow" 800x600
  QWidget centralwidget
    QHBoxLayout horizontalLayout spacing 6 margins 9 9 9 9
      QVBoxLayout verticalLayout_3 spacing 6
        QGroupBox groupBox "Legend" minimumSize 250x0 maximumSize 300x16777215 policy Maximum/Preferred
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
)");
}

TEST_F(TimeseriesLinePlotTest, is_a_window_with_an_empty_legend_before_its_chart)
{
    EXPECT_EQ(window.windowType(), Qt::Window);
    EXPECT_FALSE(window.testAttribute(Qt::WA_DeleteOnClose));
    EXPECT_EQ(window.findChild<QComboBox *>("cbox_Conditions")->count(), 0);
    EXPECT_TRUE(window.findChild<QGridLayout *>("gridLayoutAll")->isEmpty());
    const QLayout *const layout = window.centralWidget()->layout();
    ASSERT_EQ(layout->count(), 2);
    EXPECT_EQ(layout->itemAt(1)->widget(), view());
}

TEST_F(TimeseriesLinePlotTest, shows_names_as_they_are_written)
{
    const QStringList conditions = {"<b>go</b>", "a < b & c", "&lt;", "<b>go</b>"};
    window.setSeries({1, 2, 3, 4}, QString());
    window.finishPlot(conditions);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(shownNames(*chart()), conditions);
    expectPointsInPlotArea();
}

TEST_F(TimeseriesLinePlotTest, leaves_the_axis_its_title_beside_short_names)
{
    window.setSeries({1, 2, 3}, QString());
    window.finishPlot({"A", "B", "A"});
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_TRUE(shownTitles(*chart()).contains("Conditions"));
    EXPECT_EQ(shownNames(*chart()), QStringList({"A", "B", "A"}));
    expectPointsInPlotArea();
}

TEST_F(TimeseriesLinePlotTest, has_controls_that_do_nothing)
{
    window.setSeries({1, 2}, QStringLiteral("Rest"));
    window.finishPlot({"a", "b"});
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(line()->name(), "Rest");
    for (const char *name : {"btn_Hide", "btn_Show"}) {
        auto *button = window.findChild<QPushButton *>(name);
        EXPECT_TRUE(button->isEnabled());
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {},
                          button->mapTo(&window, button->rect().center()));
        EXPECT_TRUE(line()->isVisible()) << name;
    }
    EXPECT_EQ(window.findChild<QComboBox *>("cbox_Conditions")->count(), 0);
    EXPECT_TRUE(window.findChild<QGridLayout *>("gridLayoutAll")->isEmpty());
}

TEST_F(TimeseriesLinePlotTest, draws_one_line_over_the_conditions)
{
    window.setSeries({0.25f, 0.5f, 0.125f}, QString());
    window.finishPlot({"Rest", "Faces", "Houses"});

    EXPECT_EQ(chart()->title(), "<b>Global Efficiency</b>");
    EXPECT_EQ(chart()->titleFont().pixelSize(), 18);
    EXPECT_EQ(chart()->titleFont().weight(), 75);
    ASSERT_EQ(chart()->series().size(), 1);
    EXPECT_EQ(line()->pointsVector(),
              QVector<QPointF>({QPointF(0, 0.25), QPointF(1, 0.5), QPointF(2, 0.125)}));
    EXPECT_EQ(line()->name(), "");
    EXPECT_TRUE(line()->pointsVisible());
    EXPECT_FALSE(chart()->legend()->isVisible());

    ASSERT_EQ(chart()->axes(Qt::Horizontal).size(), 1);
    auto *x = qobject_cast<QBarCategoryAxis *>(chart()->axes(Qt::Horizontal).first());
    ASSERT_NE(x, nullptr);
    EXPECT_EQ(x->categories(), QStringList({"Rest", "Faces", "Houses"}));
    EXPECT_EQ(x->titleText(), "Conditions");
    EXPECT_EQ(x->labelsAngle(), 90);
    EXPECT_TRUE(line()->attachedAxes().contains(x));
    ASSERT_EQ(chart()->axes(Qt::Vertical).size(), 1);
    EXPECT_EQ(chart()->axes(Qt::Vertical).first()->titleText(), "Plot: Global Efficiency");
}

TEST_F(TimeseriesLinePlotTest, keeps_every_point_when_conditions_repeat)
{
    window.setSeries(std::vector<float>(6, 0.4f), QString());
    window.finishPlot({"Rest", "Faces", "Rest", "Faces", "Rest", "Faces"});
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(line()->count(), 6);
    expectPointsInPlotArea();
}

TEST_F(TimeseriesLinePlotTest, leaves_out_what_is_not_finite)
{
    window.setSeries(
        {std::numeric_limits<float>::quiet_NaN(), 1, std::numeric_limits<float>::infinity(), 2},
        QString());
    window.finishPlot({"a", "b", "c", "d"});
    EXPECT_EQ(line()->pointsVector(), QVector<QPointF>({QPointF(1, 1), QPointF(3, 2)}));
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    expectPointsInPlotArea();
}

TEST_F(TimeseriesLinePlotTest, is_empty_without_values_or_conditions)
{
    window.setSeries({}, QString());
    window.finishPlot({});
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(line()->count(), 0);
}

TEST_F(TimeseriesLinePlotTest, has_no_context_menu_and_says_so_in_the_log)
{
    const QStringList warnings = takeWarnings();
    ASSERT_EQ(warnings.size(), 2);
    EXPECT_TRUE(warnings[0].startsWith("QObject::connect: No such slot "
                                       "TimeseriesLinePlot::showContextMenu(const QPoint &)"));
    EXPECT_TRUE(warnings[1].contains("TimeseriesLineplot"));
    EXPECT_EQ(view()->contextMenuPolicy(), Qt::CustomContextMenu);

    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QTest::mouseClick(window.windowHandle(), Qt::RightButton, {},
                      view()->mapTo(&window, view()->rect().center()));
    QCoreApplication::processEvents();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(TimeseriesLinePlotTest, writes_the_conditions_to_the_log_when_logging_is_on)
{
    window.setSeries({1, 2}, QString());
    takeMessages();
    PluginSettings::instance()->verboseLogging = true;
    window.finishPlot({"Rest", "Faces"});
    PluginSettings::instance()->verboseLogging = false;
    const QVector<LoggedMessage> messages = takeMessages();
    ASSERT_EQ(messages.size(), 1);
    EXPECT_EQ(messages[0].type, QtDebugMsg);
    EXPECT_EQ(messages[0].text, "(\"Rest\", \"Faces\")");
}

TEST_F(TimeseriesLinePlotTest, writes_nothing_to_the_log_when_logging_is_off)
{
    window.setSeries({1, 2}, QString());
    takeMessages();
    window.finishPlot({"Rest", "Faces"});
    EXPECT_TRUE(takeMessages().isEmpty());
}

TEST_F(TimeseriesLinePlotTest, shows_its_names_whole_and_is_pictured_without_its_empty_legend)
{
    QStringList conditions;
    for (int slice = 0; slice < 50; ++slice)
        conditions += QStringLiteral("Faces %1").arg(slice);
    window.setSeries(std::vector<float>(50, 0.5f), QString());
    window.finishPlot(conditions);
    window.showWhole();
    QCoreApplication::processEvents();
    EXPECT_GE(chart()->plotArea().width(), 50 * 24.0);
    EXPECT_EQ(window.height(), 600);
    EXPECT_EQ(window.picture().toImage(), view()->grab().toImage());
}

TEST_F(TimeseriesLinePlotTest, is_shown_with_its_names_whole_where_the_screen_has_room)
{
    struct Row {
        int conditions;
        int width; ///< that it must not pass
    };
    const int widest = qMax(QApplication::primaryScreen()->availableGeometry().width(), 1114);
    for (const Row &row : {Row{3, 800}, Row{12, 860}, Row{20, 1114}, Row{1000, widest}}) {
        TimeseriesLinePlot plot(QStringLiteral("Global Efficiency"));
        plot.prepareChart();
        QStringList conditions;
        for (int slice = 0; slice < row.conditions; ++slice)
            conditions += QStringLiteral("Faces %1").arg(slice);
        plot.setSeries(std::vector<float>(std::size_t(row.conditions), 0.5f), QString());
        plot.finishPlot(conditions);
        plot.showOnScreen();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&plot));
        QCoreApplication::processEvents();
        EXPECT_LE(plot.width(), row.width) << row.conditions;
        EXPECT_GE(plot.width(), 800) << row.conditions;
        const QChart &shown = *plot.findChild<QChartView *>()->chart();
        EXPECT_EQ(shownNames(shown) == conditions, row.conditions < 1000) << row.conditions;
    }
}

TEST_F(TimeseriesLinePlotTest, declares_no_signals_and_slots)
{
    const QMetaObject &meta = TimeseriesLinePlot::staticMetaObject;
    EXPECT_EQ(meta.methodCount(), meta.methodOffset());
}

} // namespace
