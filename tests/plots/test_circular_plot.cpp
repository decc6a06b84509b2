// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/circular_plot.h"
#include "plots/my_slider.h"
#include "plots/picture_export.h"
#include "plots/plot_source.h"
#include "tests/gui_test.h"
#include "tests/plots/plot_fixture.h"
#include "tests/support/modal_driver.h"
#include "tests/support/slider_handle.h"

#include <QApplication>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMap>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QWindow>

#include <functional>
#include <limits>
#include <map>

using namespace QtCharts;

namespace
{

constexpr int n = 4;

/// One matrix per slice: all entries 0.1, all 0.2, and so on.
std::vector<Eigen::MatrixXf> flatMatrices(int slices)
{
    std::vector<Eigen::MatrixXf> matrices;
    for (int slice = 0; slice < slices; ++slice)
        matrices.push_back(Eigen::MatrixXf::Constant(n, n, 0.1f * float(slice + 1)));
    return matrices;
}

const QVector<SliceOfProtocol> threeBlocks = {{1, "Rest", 0}, {11, "Faces", 0}, {21, "Rest", 0}};

/// The window on a result, as the results dialog makes it.
class PlotWindow
{
public:
    explicit PlotWindow(Result &result) : window(&result.dialog)
    {
        window.updateLabels();
        window.plotFirstSlice();
    }

    void show()
    {
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    }

    CircularPlotWidget &ring() { return *window.plotWidget(); }
    MySlider *slider() const
    {
        return window.findChild<MySlider *>(QStringLiteral("hSlider_Conditions"));
    }
    template <typename Layout>
    Layout *layout(const char *name) const
    {
        return window.findChild<Layout *>(QLatin1String(name));
    }

    /// Sets the value as a dragged handle would and lets the handle go.
    void release(int value)
    {
        slider()->setSliderDown(true);
        slider()->setValue(value);
        slider()->setSliderDown(false);
    }

    /// The number of the slice shown, by its edges; -1 without edges.
    int shownSlice()
    {
        const QList<QSplineSeries *> edges = edgesOf(ring());
        return edges.isEmpty() ? -1 : qRound(edges[0]->property("value").toReal() * 10) - 1;
    }

    int redEdges()
    {
        int red = 0;
        for (const QSplineSeries *edge : edgesOf(ring()))
            red += edge->pen().color() == QColor(Qt::red) ? 1 : 0;
        return red;
    }

    CircularPlot window;
};

/// Acts on the context menu that opens next.
void whenMenuOpens(QObject *context, const std::function<void(QMenu &)> &act)
{
    QTimer::singleShot(0, context, [context, act] {
        if (auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget()))
            act(*menu);
        else
            whenMenuOpens(context, act);
    });
}

/// The rules of a style sheet: selector to settings, without spaces that mean nothing.
std::map<QString, QString> rules(const QString &sheet)
{
    std::map<QString, QString> found;
    const QRegularExpression rule(QStringLiteral("([^{}]+)\\{([^{}]*)\\}"));
    QRegularExpressionMatchIterator matches = rule.globalMatch(sheet);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        found[match.captured(1).simplified()] =
            match.captured(2).simplified().replace(QStringLiteral(": "), QStringLiteral(":"));
    }
    return found;
}

// The form.

TEST(CircularPlotForm, has_a_window_as_told)
{
    Result result({});
    const CircularPlot window(&result.dialog);
    EXPECT_EQ(window.objectName(), QStringLiteral("CircularPlotWindow"));
    EXPECT_EQ(window.size(), QSize(646, 781));
    EXPECT_EQ(window.minimumSize(), QSize(0, 0));
    EXPECT_EQ(window.baseSize(), QSize(0, 0));
    EXPECT_EQ(window.styleSheet(), QStringLiteral("background-color: rgb(255, 255, 255);"));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Connectivity Plot"));
    EXPECT_EQ(window.contextMenuPolicy(), Qt::CustomContextMenu);
    EXPECT_TRUE(window.isWindow());
    EXPECT_FALSE(window.testAttribute(Qt::WA_DeleteOnClose));
    EXPECT_EQ(window.parent(), &result.dialog);
    EXPECT_EQ(window.centralWidget()->objectName(), QStringLiteral("centralWidget"));
    ASSERT_NE(window.findChild<QMenuBar *>(QStringLiteral("menuBar")), nullptr);
    EXPECT_TRUE(window.menuBar()->actions().isEmpty());
    EXPECT_EQ(window.menuBar()->objectName(), QStringLiteral("menuBar"));
}

TEST(CircularPlotForm, has_layouts_as_told)
{
    Result result({}, threeBlocks);
    PlotWindow plot(result);
    auto *const outer = plot.layout<QVBoxLayout>("verticalLayout_2");
    auto *const main = plot.layout<QVBoxLayout>("mainVLayout");
    auto *const conditions = plot.layout<QHBoxLayout>("hLayout_Conditions");
    ASSERT_TRUE(outer && main && conditions);

    EXPECT_EQ(plot.window.centralWidget()->layout(), outer);
    EXPECT_EQ(outer->spacing(), 0);
    EXPECT_EQ(outer->contentsMargins(), QMargins(0, 0, 0, 0));
    EXPECT_EQ(outer->itemAt(0)->layout(), main);
    EXPECT_EQ(main->spacing(), 10);
    EXPECT_EQ(main->contentsMargins(), QMargins(0, 10, 0, 0));

    // The ring stands above the row of the slider.
    ASSERT_EQ(main->count(), 2);
    EXPECT_EQ(main->itemAt(0)->widget(), plot.window.plotWidget());
    EXPECT_EQ(main->stretch(0), 0);
    EXPECT_EQ(main->itemAt(1)->layout(), conditions);

    EXPECT_EQ(conditions->spacing(), 6);
    ASSERT_EQ(conditions->count(), 3);
    for (const int side : {0, 2}) {
        const QSpacerItem *const spacer = conditions->itemAt(side)->spacerItem();
        ASSERT_NE(spacer, nullptr);
        EXPECT_EQ(spacer->sizeHint(), QSize(40, 10));
        EXPECT_EQ(spacer->sizePolicy(), QSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum));
    }
    EXPECT_EQ(conditions->itemAt(1)->widget(), plot.slider());
}

TEST(CircularPlotForm, has_a_slider_as_told)
{
    // With another parent the slider stays as the form has it.
    const CircularPlot window(nullptr);
    const auto *const slider = window.findChild<MySlider *>(QStringLiteral("hSlider_Conditions"));
    ASSERT_NE(slider, nullptr);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed, QSizePolicy::Slider);
    policy.setHeightForWidth(false);
    EXPECT_EQ(slider->sizePolicy().horizontalPolicy(), policy.horizontalPolicy());
    EXPECT_EQ(slider->sizePolicy().verticalPolicy(), policy.verticalPolicy());
    EXPECT_EQ(slider->sizePolicy().horizontalStretch(), 0);
    EXPECT_EQ(slider->sizePolicy().verticalStretch(), 0);
    EXPECT_FALSE(slider->sizePolicy().hasHeightForWidth());
    EXPECT_EQ(slider->minimumSize(), QSize(550, 150));
    EXPECT_EQ(slider->maximumSize(), QSize(16777215, 16777215));
    EXPECT_EQ(slider->minimum(), 1);
    EXPECT_EQ(slider->maximum(), 10);
    EXPECT_EQ(slider->pageStep(), 1);
    EXPECT_EQ(slider->orientation(), Qt::Horizontal);
    EXPECT_EQ(slider->tickPosition(), QSlider::NoTicks);
    EXPECT_EQ(slider->tickInterval(), 1);
}

TEST(CircularPlotForm, has_the_slider_styled_as_told)
{
    const CircularPlot window(nullptr);
    const auto *const slider = window.findChild<MySlider *>(QStringLiteral("hSlider_Conditions"));
    const std::map<QString, QString> expected = rules(QStringLiteral(
        "QSlider::groove:horizontal { border: 1px solid #bbb; background: white; height: 10px; "
        "  border-radius: 4px; }"
        "QSlider::sub-page:horizontal {"
        "  background: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1, stop: 0 #66e, stop: 1 #bbf);"
        "  background: qlineargradient(x1: 0, y1: 0.2, x2: 1, y2: 1, stop: 0 #bbf, stop: 1 #55f);"
        "  border: 1px solid #777; height: 10px; border-radius: 4px; }"
        "QSlider::add-page:horizontal { background: #fff; border: 1px solid #777; height: 10px; "
        "  border-radius: 4px; }"
        "QSlider::handle:horizontal {"
        "  background: qlineargradient(x1:0, y1:0, x2:1, y2:1, stop:0 #eee, stop:1 #ccc);"
        "  border: 1px solid #777; width: 13px; margin-top: -2px; margin-bottom: -2px; "
        "  border-radius: 4px; }"
        "QSlider::handle:horizontal:hover {"
        "  background: qlineargradient(x1:0, y1:0, x2:1, y2:1, stop:0 #fff, stop:1 #ddd);"
        "  border: 1px solid #444; border-radius: 4px; }"
        "QSlider::sub-page:horizontal:disabled { background: #bbb; border-color: #999; }"
        "QSlider::add-page:horizontal:disabled { background: #eee; border-color: #999; }"
        "QSlider::handle:horizontal:disabled { background: #eee; border: 1px solid #aaa; "
        "  border-radius: 4px; }"));
    ASSERT_EQ(expected.size(), 8u);
    EXPECT_EQ(rules(slider->styleSheet()), expected);
}

TEST(CircularPlotForm, declares_its_signal_and_its_slots_in_order)
{
    const QMetaObject &meta = CircularPlot::staticMetaObject;
    const QList<QByteArray> expected = {"closingWindow()", "valueChanged()",
                                        "displayRangeChanged(int,int)", "showContextMenu(QPoint)",
                                        "saveImage()"};
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        const QMetaMethod method = meta.method(meta.methodOffset() + i);
        EXPECT_EQ(method.methodSignature(), expected[i]);
        EXPECT_EQ(method.methodType(), i == 0 ? QMetaMethod::Signal : QMetaMethod::Slot);
    }
}

// The slider.

TEST(ConditionSlider, is_hidden_without_protocol)
{
    const QVector<QPair<QVector<SliceOfProtocol>, bool>> cases = {
        {{}, true}, {threeBlocks, false}, {{}, false}};
    for (const auto &[protocol, use] : cases) {
        Result result(flatMatrices(1), protocol, use);
        PlotWindow plot(result);
        plot.show();
        EXPECT_TRUE(plot.slider()->isHidden());
        auto *const conditions = plot.layout<QHBoxLayout>("hLayout_Conditions");
        for (const int side : {0, 2}) {
            const QSpacerItem *const spacer = conditions->itemAt(side)->spacerItem();
            EXPECT_EQ(spacer->sizeHint(), QSize(0, 0));
            EXPECT_EQ(spacer->sizePolicy(),
                      QSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum));
        }
        // The ring has what is left below the top margin and the spacing.
        EXPECT_GE(plot.ring().height(), plot.window.centralWidget()->height() - 20);
    }
}

TEST(ConditionSlider, is_hidden_when_the_box_is_ticked_and_no_interval_is_there)
{
    Result result(flatMatrices(1));
    result.subject->setUseProtocol(true);
    PlotWindow plot(result);
    EXPECT_TRUE(plot.slider()->isHidden());
}

TEST(ConditionSlider, has_a_place_for_each_slice)
{
    Result result(flatMatrices(3), threeBlocks);
    PlotWindow plot(result);
    plot.show();
    EXPECT_TRUE(plot.slider()->isVisible());
    EXPECT_EQ(plot.slider()->minimum(), 1);
    EXPECT_EQ(plot.slider()->maximum(), 3);
    EXPECT_EQ(plot.slider()->value(), 1);
    EXPECT_LT(plot.ring().height(), plot.window.height() - 150);
}

TEST(ConditionSlider, with_one_slice_is_painted)
{
    Result result(flatMatrices(1), {{1, "Rest", 0}});
    PlotWindow plot(result);
    plot.show();
    EXPECT_EQ(plot.slider()->minimum(), 1);
    EXPECT_EQ(plot.slider()->maximum(), 1);
    EXPECT_FALSE(plot.window.grab().isNull());
    EXPECT_EQ(plot.shownSlice(), 0);
}

TEST(ConditionSlider, draws_a_slice_when_its_handle_is_released)
{
    Result result(flatMatrices(3), threeBlocks);
    PlotWindow plot(result);
    EXPECT_EQ(plot.shownSlice(), 0);
    for (const int slice : {2, 0, 1}) {
        plot.release(slice + 1);
        EXPECT_EQ(plot.shownSlice(), slice);
        EXPECT_EQ(edgesOf(plot.ring()).size(), n * (n - 1) / 2);
    }
}

TEST(ConditionSlider, is_dragged_with_the_mouse)
{
    Result result(flatMatrices(3), threeBlocks);
    PlotWindow plot(result);
    plot.show();
    MySlider *const slider = plot.slider();
    const auto handle = [slider](int value) { return sliderHandle(*slider, value); };
    QWindow *const window = plot.window.windowHandle();
    QTest::mousePress(window, Qt::LeftButton, {}, handle(1));
    QTest::mouseMove(window, handle(3));
    EXPECT_EQ(slider->value(), 3);
    EXPECT_EQ(plot.shownSlice(), 0) << "not before the handle is released";
    QTest::mouseRelease(window, Qt::LeftButton, {}, handle(3));
    EXPECT_EQ(plot.shownSlice(), 2);
}

TEST(ConditionSlider, draws_nothing_for_keys_and_clicks_beside_the_handle)
{
    Result result(flatMatrices(3), threeBlocks);
    PlotWindow plot(result);
    plot.show();
    QTest::keyClick(plot.slider(), Qt::Key_Right);
    EXPECT_EQ(plot.slider()->value(), 2);
    EXPECT_EQ(plot.shownSlice(), 0);
    QTest::mouseClick(plot.slider(), Qt::LeftButton, {},
                      QPoint(plot.slider()->width() - 10, plot.slider()->height() / 2));
    EXPECT_EQ(plot.slider()->value(), 3);
    EXPECT_EQ(plot.shownSlice(), 0);
}

TEST(ConditionSlider, draws_the_same_slice_anew)
{
    Result result(flatMatrices(3), threeBlocks);
    PlotWindow plot(result);
    const int labels = labelsOf(plot.ring()).size();
    const QPointer<QSplineSeries> edge = edgesOf(plot.ring())[0];
    plot.release(1);
    EXPECT_TRUE(edge.isNull());
    EXPECT_EQ(plot.shownSlice(), 0);
    EXPECT_EQ(labelsOf(plot.ring()).size(), labels + n);
}

TEST(ConditionSlider, leaves_the_new_slice_unfiltered_until_the_range_moves)
{
    Result result(flatMatrices(3), threeBlocks);
    PlotWindow plot(result);
    plot.window.displayRangeChanged(500, 1000);
    EXPECT_FALSE(edgesOf(plot.ring())[0]->isVisible());
    plot.release(2);
    EXPECT_TRUE(edgesOf(plot.ring())[0]->isVisible());
    plot.window.displayRangeChanged(501, 1000);
    EXPECT_FALSE(edgesOf(plot.ring())[0]->isVisible());
}

TEST(ConditionSlider, shows_the_title_of_a_trigger)
{
    Result result(flatMatrices(4),
                  {{1, "Rest", 0}, {11, "Press", 1}, {12, "Cue", 5}, {13, "X", 0}});
    PlotWindow plot(result);
    plot.release(2);
    EXPECT_EQ(plot.shownSlice(), -1);
    EXPECT_EQ(titleItemOf(plot.ring())->text(), QStringLiteral("Trigger \"Press\""));
    plot.release(3);
    EXPECT_EQ(titleItemOf(plot.ring())->text(), QStringLiteral("Trigger \"Cue\""));
    plot.release(4);
    EXPECT_EQ(plot.shownSlice(), 3);
    EXPECT_FALSE(titleItemOf(plot.ring())->isVisible());
}

TEST(ConditionSlider, takes_types_and_names_in_the_order_of_the_intervals)
{
    // Entered out of order: slices follow the intervals' starts.
    Result result(flatMatrices(3), {{21, "Press", 1}, {1, "Rest", 0}, {11, "Cue", 1}});
    PlotWindow plot(result);
    EXPECT_EQ(plot.shownSlice(), 0);
    plot.release(2);
    EXPECT_EQ(titleItemOf(plot.ring())->text(), QStringLiteral("Trigger \"Cue\""));
    plot.release(3);
    EXPECT_EQ(titleItemOf(plot.ring())->text(), QStringLiteral("Trigger \"Press\""));
}

TEST(ConditionSlider, is_asked_only_through_itself)
{
    Result result(flatMatrices(3), threeBlocks);
    PlotWindow plot(result);
    const QPointer<QSplineSeries> edge = edgesOf(plot.ring())[0];
    plot.window.valueChanged(); // from nobody
    QSlider plain;
    QObject::connect(&plain, SIGNAL(sliderReleased()), &plot.window, SLOT(valueChanged()));
    plain.setValue(2);
    plain.setSliderDown(true);
    plain.setSliderDown(false);
    EXPECT_FALSE(edge.isNull());
}

// The first slice, the tree and the labels.

TEST(FirstSlice, is_drawn_with_the_subjects_names)
{
    Result result(flatMatrices(1));
    result.subject->voiNames = QStringList{"A", "B", "C", "D", "E", "F"};
    ConnectivityScheme scheme;
    scheme.seedVois = {5, 0, 2, 3};
    result.subject->setScheme(scheme);
    PlotWindow plot(result);
    QStringList names;
    for (const MyGraphicsSimpleTextItem *label : visibleLabelsOf(plot.ring()))
        names += label->toPlainText();
    EXPECT_EQ(names, QStringList({"C", "A", "F", "D"}));
}

TEST(FirstSlice, of_a_trigger_is_its_title)
{
    Result result(flatMatrices(2), {{1, "Press", 1}, {2, "Rest", 0}});
    PlotWindow plot(result);
    EXPECT_EQ(plot.shownSlice(), -1);
    EXPECT_EQ(titleItemOf(plot.ring())->text(), QStringLiteral("Trigger \"Press\""));
}

TEST(FirstSlice, shows_the_spanning_tree_only_with_a_protocol)
{
    Result with(flatMatrices(2), {{1, "Rest", 0}, {11, "Faces", 0}});
    with.object.computeMinimumSpanningTrees();
    PlotWindow plotWith(with);
    EXPECT_EQ(plotWith.redEdges(), n - 1);
    plotWith.release(2);
    EXPECT_EQ(plotWith.redEdges(), n - 1);

    Result without(flatMatrices(1));
    without.object.computeMinimumSpanningTrees();
    PlotWindow plotWithout(without);
    EXPECT_EQ(plotWithout.redEdges(), 0);
}

TEST(FirstSlice, shows_the_spanning_tree_of_its_own_slice)
{
    // The path 0-1-2-3 is the tree of one slice, the star around node 0 that of the other.
    Eigen::MatrixXf path = Eigen::MatrixXf::Constant(n, n, 0.1f);
    path(0, 1) = path(1, 0) = path(1, 2) = path(2, 1) = path(2, 3) = path(3, 2) = 0.9f;
    Eigen::MatrixXf star = Eigen::MatrixXf::Constant(n, n, 0.1f);
    star.row(0).setConstant(0.9f);
    star.col(0).setConstant(0.9f);
    Result result({path, star}, {{1, "Rest", 0}, {11, "Faces", 0}});
    result.object.computeMinimumSpanningTrees();
    PlotWindow plot(result);
    const auto red = [&](int one, int other) {
        return edgeBetween(plot.ring(), one, other)->pen().color() == QColor(Qt::red);
    };
    EXPECT_TRUE(red(0, 1) && red(1, 2) && red(2, 3));
    EXPECT_EQ(plot.redEdges(), 3);
    plot.release(2);
    EXPECT_TRUE(red(0, 1) && red(0, 2) && red(0, 3));
    EXPECT_EQ(plot.redEdges(), 3);
}

TEST(FirstSlice, has_no_red_edge_when_no_tree_was_asked_for)
{
    Result result(flatMatrices(2), {{1, "Rest", 0}, {11, "Faces", 0}});
    PlotWindow plot(result);
    EXPECT_EQ(plot.redEdges(), 0);
}

TEST(FirstSlice, shows_the_slices_of_a_protocol_that_is_not_used)
{
    Result result(flatMatrices(1), {{1, "Rest", 0}}, false);
    result.object.computeMinimumSpanningTrees();
    PlotWindow plot(result);
    EXPECT_TRUE(plot.slider()->isHidden());
    EXPECT_EQ(plot.redEdges(), n - 1);
}

TEST(FirstSlice, fails_hard_when_its_tree_is_missing)
{
    Result result({}, threeBlocks);
    result.object.computeMinimumSpanningTrees(); // of no matrix
    result.object.setMatrices(flatMatrices(3));
    CircularPlot window(&result.dialog);
    EXPECT_THROW(window.plotFirstSlice(), std::out_of_range);
    auto *const slider = window.findChild<MySlider *>(QStringLiteral("hSlider_Conditions"));
    for (int time = 0; time < 2; ++time) { // the second time the lock is free again
        slider->setSliderDown(true);
        EXPECT_THROW(slider->setSliderDown(false), std::out_of_range);
    }
}

TEST(SliceDescription, holds_number_tree_name_and_type)
{
    Eigen::MatrixXf path = Eigen::MatrixXf::Constant(n, n, 0.1f);
    path(0, 1) = path(1, 0) = path(1, 2) = path(2, 1) = path(2, 3) = path(3, 2) = 0.9f;
    Result result({flatMatrices(1)[0], path}, {{1, "Rest", 0}, {11, "Cue", 5}});
    result.object.computeMinimumSpanningTrees();
    const QVariantHash description = sliceDescription(result.object, 1);
    const QVariantHash expected = {
        {"slice", 1},
        {"condition_str", "Cue"},
        {"condition_type", 5},
        {"mst",
         QVariant::fromValue(std::vector<int>({0, 1, 0, 0, 1, 0, 1, 0, 0, 1, 0, 1, 0, 0, 1, 0}))},
    };
    ASSERT_EQ(description.size(), expected.size());
    for (const char *key : {"slice", "condition_str", "condition_type"})
        EXPECT_EQ(description.value(key), expected.value(key)) << key;
    EXPECT_EQ(description.value("slice").userType(), int(QMetaType::Int));
    EXPECT_EQ(description.value("condition_type").userType(), int(QMetaType::Int));
    EXPECT_EQ(description.value("condition_str").userType(), int(QMetaType::QString));
    EXPECT_EQ(description.value("mst").value<std::vector<int>>(),
              expected.value("mst").value<std::vector<int>>());
    EXPECT_EQ(sliceDescription(result.object, 0).value("condition_type"), QVariant(0));
}

TEST(SliceDescription, without_intervals_holds_the_number_and_an_empty_tree)
{
    Result result(flatMatrices(2));
    result.object.computeMinimumSpanningTrees();
    const QVariantHash description = sliceDescription(result.object, 1);
    EXPECT_EQ(description.size(), 2);
    EXPECT_EQ(description.value("slice"), QVariant(1));
    ASSERT_EQ(description.value("mst").userType(), qMetaTypeId<std::vector<int>>());
    EXPECT_TRUE(description.value("mst").value<std::vector<int>>().empty());
}

TEST(SliceDescription, without_trees_holds_an_empty_one)
{
    Result result(flatMatrices(2), {{1, "Rest", 0}, {11, "Faces", 0}});
    const QVariantHash description = sliceDescription(result.object, 0);
    EXPECT_EQ(description.size(), 4);
    ASSERT_EQ(description.value("mst").userType(), qMetaTypeId<std::vector<int>>());
    EXPECT_TRUE(description.value("mst").value<std::vector<int>>().empty());
}

// What is not there.

TEST(CircularPlotWithout, a_results_dialog_draws_nothing)
{
    QWidget other;
    for (QWidget *parent : {static_cast<QWidget *>(nullptr), &other}) {
        CircularPlot window(parent);
        EXPECT_EQ(connectivityObjectOf(&window), nullptr);
        window.updateLabels();
        window.plotFirstSlice();
        window.displayRangeChanged(0, 1000);
        window.show();
        auto *const slider = window.findChild<MySlider *>(QStringLiteral("hSlider_Conditions"));
        EXPECT_TRUE(slider->isVisible());
        EXPECT_EQ(slider->maximum(), 10);
        slider->setSliderDown(true);
        slider->setValue(2);
        slider->setSliderDown(false);
        EXPECT_TRUE(chartOf(*window.plotWidget())->series().isEmpty());
    }
}

TEST(CircularPlotWithout, a_result_draws_nothing)
{
    ConnectivityObjectUI dialog(nullptr, nullptr);
    CircularPlot window(&dialog);
    window.updateLabels();
    window.plotFirstSlice();
    EXPECT_TRUE(chartOf(*window.plotWidget())->series().isEmpty());
}

TEST(CircularPlotWithout, a_subject_numbers_its_nodes)
{
    ConnectivityObject object(QStringLiteral("Subject"), nullptr);
    object.setMatrices(flatMatrices(1));
    ConnectivityObjectUI dialog(&object, nullptr);
    CircularPlot window(&dialog);
    window.updateLabels();
    window.plotFirstSlice();
    EXPECT_EQ(edgesOf(*window.plotWidget()).size(), 6);
    EXPECT_EQ(visibleLabelsOf(*window.plotWidget())[0]->toPlainText(), QStringLiteral("2"));
}

TEST(CircularPlotWithout, matrices_draws_nothing)
{
    Result result({}, threeBlocks);
    result.object.computeMinimumSpanningTrees();
    PlotWindow plot(result);
    plot.show();
    EXPECT_TRUE(chartOf(plot.ring())->series().isEmpty());
    plot.release(3);
    EXPECT_TRUE(chartOf(plot.ring())->series().isEmpty());
}

TEST(CircularPlotWithout, a_slice_for_its_place_keeps_what_it_shows)
{
    Result result(flatMatrices(2), threeBlocks);
    PlotWindow plot(result);
    plot.release(2);
    plot.release(3);
    EXPECT_EQ(plot.shownSlice(), 1);
}

TEST(CircularPlotWithout, enough_names_numbers_them)
{
    // The record may change after the compute.
    Result result(flatMatrices(3), {{1, "Press", 1}, {2, "Cue", 1}, {3, "Click", 1}});
    PlotWindow plot(result);
    SubjectProtocol shorter = result.subject->protocol();
    shorter.volumeNames.remove(3);
    result.subject->setProtocol(shorter);
    plot.release(3);
    EXPECT_EQ(titleItemOf(plot.ring())->text(), QStringLiteral("Trigger \"2\""));
    shorter.volumeEvents.remove(3);
    result.subject->setProtocol(shorter);
    plot.release(3);
    EXPECT_EQ(plot.shownSlice(), 2) << "without a type it is no trigger";
}

TEST(CircularPlotWithout, numbers_in_its_matrices_survives)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    for (const float value : {nan, infinity, -infinity, 0.0f}) {
        Result result({Eigen::MatrixXf::Constant(n, n, value)}, {{1, "Rest", 0}});
        result.object.computeMinimumSpanningTrees();
        PlotWindow plot(result);
        plot.show();
        plot.window.displayRangeChanged(0, 1000);
        EXPECT_EQ(edgesOf(plot.ring()).size(), value == 0.0f ? 0 : 6);
        EXPECT_FALSE(plot.window.grab().isNull());
    }
    for (const int size : {0, 1}) {
        Result result({Eigen::MatrixXf::Zero(size, size)}, {{1, "Rest", 0}});
        result.object.computeMinimumSpanningTrees();
        PlotWindow plot(result);
        plot.show();
        EXPECT_EQ(nodesOf(plot.ring())->count(), size);
    }
}

// The display range.

TEST(DisplayRange, is_in_thousandths)
{
    Result result({(Eigen::MatrixXf(3, 3) << 0, 0.25f, 0.5f, 0, 0, 0.75f, 0, 0, 0).finished()});
    PlotWindow plot(result);
    plot.window.displayRangeChanged(250, 751);
    EXPECT_FALSE(edgeBetween(plot.ring(), 0, 1)->isVisible()) << "on the bound";
    EXPECT_TRUE(edgeBetween(plot.ring(), 0, 2)->isVisible());
    EXPECT_TRUE(edgeBetween(plot.ring(), 1, 2)->isVisible());
}

TEST(DisplayRange, that_moves_while_the_window_is_closed_is_seen_when_it_is_shown_again)
{
    Result result(flatMatrices(2), {{1, "Rest", 0}, {11, "Faces", 0}});
    PlotWindow plot(result);
    plot.show();
    plot.window.close();
    plot.window.displayRangeChanged(150, 1000);
    EXPECT_FALSE(edgesOf(plot.ring())[0]->isVisible());
    plot.show();
    EXPECT_FALSE(edgesOf(plot.ring())[0]->isVisible());
}

// Closing.

TEST(Closing, says_so_and_hides_the_window_only)
{
    Result result(flatMatrices(3), threeBlocks);
    PlotWindow plot(result);
    plot.show();
    plot.release(3);
    plot.ring().setColorizeEdges(true);
    QSignalSpy closing(&plot.window, &CircularPlot::closingWindow);
    plot.window.close();
    EXPECT_EQ(closing.size(), 1);
    EXPECT_FALSE(plot.window.isVisible());

    plot.slider()->setValue(1); // while it is closed
    const QColor color = edgesOf(plot.ring())[0]->pen().color();
    plot.show();
    EXPECT_EQ(plot.shownSlice(), 2);
    EXPECT_EQ(edgesOf(plot.ring())[0]->pen().color(), color);
    EXPECT_EQ(closing.size(), 1);
    plot.release(1);
    EXPECT_EQ(plot.shownSlice(), 0);
}

TEST(Closing, comes_with_the_results_dialog)
{
    auto result = std::make_unique<Result>(flatMatrices(1));
    QPointer<CircularPlot> window = new CircularPlot(&result->dialog);
    window->updateLabels();
    window->plotFirstSlice();
    window->show();
    result.reset();
    EXPECT_TRUE(window.isNull());
}

TEST(Closing, comes_with_the_results_dialog_while_a_label_is_hovered)
{
    auto result = std::make_unique<Result>(flatMatrices(1));
    const QPointer<CircularPlot> window = new CircularPlot(&result->dialog);
    window->updateLabels();
    window->plotFirstSlice();
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    CircularPlotWidget &ring = *window->plotWidget();
    const QPointF label = visibleLabelsOf(ring)[0]->sceneBoundingRect().center();
    bringMouseTo(*window, ring.viewport()->mapTo(window, ring.mapFromScene(label)));
    ASSERT_FALSE(edgeBetween(ring, 0, 1)->isVisible() && edgeBetween(ring, 2, 3)->isVisible());
    result.reset();
    EXPECT_TRUE(window.isNull());
}

// The picture.

constexpr int manyFiles = 60; // more than a file dialog has room for

class RingPicture : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        plot.show();
    }

    QString path(const char *name) const { return folder.filePath(QLatin1String(name)); }

    QTemporaryDir folder;
    Result result{flatMatrices(1)};
    PlotWindow plot{result};
    ModalDriver dialogs;
};

TEST_F(RingPicture, is_the_ring_as_it_is_seen)
{
    QFileDialog(nullptr, QString(), folder.path());
    dialogs.expectFile(path("ring.png"), [this](QDialog &dialog) {
        const auto &files = dynamic_cast<QFileDialog &>(dialog);
        EXPECT_EQ(files.windowTitle(), QStringLiteral("Save as..."));
        EXPECT_EQ(files.nameFilters(), QStringList{QStringLiteral("PNG (*.png)")});
        EXPECT_EQ(files.fileMode(), QFileDialog::AnyFile);
        EXPECT_EQ(files.defaultSuffix(), QStringLiteral("png"));
        EXPECT_EQ(files.acceptMode(), QFileDialog::AcceptOpen);
        EXPECT_EQ(files.parent(), &plot.window);
        EXPECT_EQ(files.directory(), QDir(folder.path())) << "where the dialog before was";
    });
    plot.window.saveImage();
    QImage saved;
    ASSERT_TRUE(saved.load(path("ring.png"), "PNG"));
    const QImage seen = plot.ring().grab(QRect(QPoint(0, 0), QSize(-1, -1))).toImage();
    EXPECT_EQ(saved.size(), seen.size());
    EXPECT_EQ(saved.size(), plot.ring().size() * plot.ring().devicePixelRatioF());
    EXPECT_EQ(saved.convertToFormat(QImage::Format_RGB32),
              seen.convertToFormat(QImage::Format_RGB32));
}

TEST_F(RingPicture, gets_the_suffix_that_its_name_lacks)
{
    dialogs.expectFile(path("ring"));
    plot.window.saveImage();
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{QStringLiteral("ring.png")});
}

TEST_F(RingPicture, replaces_the_one_that_is_there)
{
    QFile file(path("ring.png"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a picture");
    file.close();
    dialogs.expectFile(path("ring.png"));
    plot.window.saveImage();
    EXPECT_TRUE(QImage().load(path("ring.png"), "PNG"));
}

TEST_F(RingPicture, is_not_made_when_the_dialog_is_cancelled)
{
    dialogs.expectFileCancel();
    plot.window.saveImage();
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST_F(RingPicture, that_cannot_be_written_ends_quietly)
{
    QFile plain(path("plain"));
    ASSERT_TRUE(plain.open(QIODevice::WriteOnly));
    dialogs.expectFile(path("plain/ring.png"));
    plot.window.saveImage();
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{QStringLiteral("plain")});
    EXPECT_EQ(plain.size(), 0);
}

TEST(RingPictureOfAWindow, that_dies_while_the_dialog_is_open_is_not_made)
{
    Result result(flatMatrices(1));
    QPointer<CircularPlot> window = new CircularPlot(&result.dialog);
    window->show();
    ModalDriver dialogs;
    dialogs.expect<QFileDialog>([&window](QFileDialog &) { delete window; });
    window->saveImage();
    EXPECT_TRUE(window.isNull());
}

TEST_F(RingPicture, is_offered_by_the_context_menu)
{
    whenMenuOpens(&plot.window, [this](QMenu &menu) {
        EXPECT_TRUE(menu.title().isEmpty());
        ASSERT_EQ(menu.actions().size(), 1);
        EXPECT_EQ(menu.actions()[0]->text(), QStringLiteral("Export to image..."));
        EXPECT_EQ(menu.pos(), plot.window.mapToGlobal(QPoint(100, 120)));
        QTest::mouseClick(&menu, Qt::LeftButton, {},
                          menu.actionGeometry(menu.actions()[0]).center());
    });
    dialogs.expectFile(path("ring.png"));
    QTest::mousePress(plot.window.windowHandle(), Qt::RightButton, {}, QPoint(100, 120));
    QTest::mouseRelease(plot.window.windowHandle(), Qt::RightButton, {}, QPoint(100, 120));
    EXPECT_TRUE(QFile::exists(path("ring.png")));
}

TEST_F(RingPicture, is_not_made_when_the_context_menu_is_left)
{
    whenMenuOpens(&plot.window, [](QMenu &menu) { menu.close(); });
    plot.window.showContextMenu(QPoint(10, 10));
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST(RingMenuOfAWindow, that_dies_while_it_is_open_goes_too)
{
    Result result(flatMatrices(1));
    QPointer<CircularPlot> window = new CircularPlot(&result.dialog);
    window->show();
    whenMenuOpens(&result.dialog, [&window](QMenu &) { delete window; });
    window->showContextMenu(QPoint(10, 10));
    EXPECT_TRUE(window.isNull());
}

QPalette darkPalette()
{
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(40, 40, 40));
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::Base, QColor(25, 25, 25));
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::Button, QColor(60, 60, 60));
    dark.setColor(QPalette::ButtonText, Qt::white);
    dark.setColor(QPalette::Disabled, QPalette::ButtonText, Qt::gray);
    return dark;
}

/// Sets the palette for the length of a scope.
class WithPalette
{
public:
    explicit WithPalette(const QPalette &palette) { QApplication::setPalette(palette); }
    ~WithPalette() { QApplication::setPalette(before); }
    WithPalette(const WithPalette &) = delete;
    WithPalette &operator=(const WithPalette &) = delete;

private:
    const QPalette before = QApplication::palette();
};

TEST_F(RingPicture, is_saved_with_a_dialog_that_can_be_read_in_a_dark_palette)
{
    const WithPalette dark(darkPalette());
    dialogs.expect<QFileDialog>([](QFileDialog &dialog) {
        const QImage picture = dialog.grab().toImage();
        EXPECT_EQ(picture.pixelColor(2, 2), QColor(40, 40, 40));
        auto *const name = dialog.findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        const QPoint inside = name->mapTo(&dialog, name->rect().center());
        EXPECT_EQ(picture.pixelColor(inside * picture.devicePixelRatio()), QColor(25, 25, 25));
        dialog.reject();
    });
    plot.window.saveImage();
}

/// Pictures of the controls of a file dialog in a folder of many files, of its background, and of a
/// menu, by their names.
QMap<QString, QImage> dialogAndMenu(QWidget *parent, const QString &styleSheet,
                                    const QString &folder)
{
    QFileDialog dialog(parent, QString(), folder);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setStyleSheet(styleSheet);
    dialog.setViewMode(QFileDialog::Detail);
    dialog.setSidebarUrls({}); // they scroll or not by the name of the home folder
    dialog.resize(700, 400);
    dialog.show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
    const auto *const files = dialog.findChild<QTreeView *>(QStringLiteral("treeView"));
    // The files come in portions, and with each the handle of the scroll bar is shorter.
    EXPECT_TRUE(QTest::qWaitFor([files] {
        return files->model()->rowCount(files->rootIndex()) == manyFiles &&
               files->verticalScrollBar()->isVisible();
    }));

    QMap<QString, QImage> pictures;
    pictures[QStringLiteral("background")] = dialog.grab(QRect(0, 0, 5, 5)).toImage();
    int number = 0;
    for (QWidget *control : dialog.findChildren<QWidget *>()) {
        for (const char *kind : {"QSizeGrip", "QScrollBar", "QAbstractButton", "QComboBox",
                                 "QLineEdit", "QLabel", "QHeaderView"}) {
            if (control->isVisible() && control->inherits(kind))
                pictures[QStringLiteral("%1 %2").arg(kind).arg(++number)] =
                    control->grab().toImage();
        }
    }
    QMenu menu(parent);
    menu.setStyleSheet(styleSheet);
    menu.addAction(QStringLiteral("Export to image..."));
    menu.addAction(QStringLiteral("Greyed"))->setEnabled(false);
    menu.setActiveAction(menu.actions()[0]);
    pictures[QStringLiteral("menu")] = menu.grab().toImage();
    return pictures;
}

TEST_F(RingPicture, is_asked_for_by_a_dialog_and_a_menu_that_look_as_they_do_elsewhere)
{
    QApplication::setCursorFlashTime(0);
    for (int file = 0; file < manyFiles; ++file) {
        QFile picture(path(qPrintable(QStringLiteral("ring%1.png").arg(file))));
        ASSERT_TRUE(picture.open(QIODevice::WriteOnly));
    }
    // The first dialog of all has no folder to go back to.
    dialogAndMenu(nullptr, QString(), folder.path());
    for (const QPalette &palette : {QApplication::palette(), darkPalette()}) {
        const WithPalette chosen(palette);
        QWidget elsewhere;
        elsewhere.show();
        const auto expected = dialogAndMenu(&elsewhere, QString(), folder.path());
        const auto seen = dialogAndMenu(&plot.window, neutralStyleSheet(), folder.path());
        EXPECT_GE(expected.size(), 19);
        EXPECT_EQ(seen.keys(), expected.keys());
        for (const QString &name : expected.keys())
            EXPECT_TRUE(seen[name] == expected[name]) << qPrintable(name);
    }
    dialogs.expect<QFileDialog>([](QFileDialog &dialog) {
        EXPECT_EQ(dialog.styleSheet(), neutralStyleSheet());
        dialog.reject();
    });
    plot.window.saveImage();
    whenMenuOpens(&plot.window, [](QMenu &menu) {
        EXPECT_EQ(menu.styleSheet(), neutralStyleSheet());
        menu.close();
    });
    plot.window.showContextMenu(QPoint(10, 10));
}

} // namespace
