// SPDX-License-Identifier: GPL-3.0-or-later
//
// The results dialog, the main dialog or the workbench close at any moment, with any windows of the
// plugin's module open, in any order. Run with the sanitizers these tests show that nothing leaks
// or dangles.
#include "host/session/session.h"
#include "tests/gui_test.h"
#include "tests/host/module/module_session.h"
#include "tests/support/busy_pool.h"

#include <QApplication>
#include <QFileDialog>
#include <QGraphicsView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressDialog>
#include <QSlider>
#include <QTableView>
#include <QTest>
#include <QWindow>

#include <algorithm>
#include <bitset>
#include <utility>

namespace corvane
{

namespace
{

constexpr int kinds = 4; // of plot windows
const char *const plotClasses[kinds] = {"CircularPlot", "ViewMatrix", "LinePlot",
                                        "TimeseriesLinePlot"};

/// What closes at the end, and takes with it whatever is open.
enum class End { Results, MainDialog, Workbench };

const char *nameOf(End end)
{
    const char *const names[] = {"Results", "MainDialog", "Workbench"};
    return names[int(end)];
}

/// All ways to close some of the windows of a set one after the other, closing none included.
std::vector<std::vector<int>> ordersOf(std::bitset<kinds> set)
{
    std::vector<std::vector<int>> orders{{}};
    for (int kind = 0; kind < kinds; ++kind) {
        if (!set[std::size_t(kind)])
            continue;
        set.reset(std::size_t(kind));
        for (std::vector<int> rest : ordersOf(set)) {
            rest.insert(rest.begin(), kind);
            orders.push_back(std::move(rest));
        }
        set.set(std::size_t(kind));
    }
    return orders;
}

class ModuleClosing : public ModuleSession
{
protected:
    ModuleClosing() : files(writeSmallSubject(folder)) {}

    /// The workbench with the plugin and that many finished subjects, their results open.
    void begin(int subjects)
    {
        if (workbench == nullptr)
            openWorkbench({files.vmr});
        startPlugin();
        setUseProtocol(true);
        for (int n = 0; n < subjects; ++n) {
            const QString name = QStringLiteral("subject %1").arg(n);
            addSubject(name, files);
            selectProfile(name);
            chooseVois({0, 3, 5});
            compute();
        }
        ASSERT_EQ(windowsOf("ConnectivityObjectUI").size(), subjects);
    }

    void openPlots(const QWidget *results, std::bitset<kinds> which)
    {
        const auto inspect = [results](const char *key) {
            click(measureButton(results, key, "compute"));
            click(measureButton(results, key, "inspect"));
        };
        if (which[0])
            click(results, "btn_CircularPlotConnMtx");
        if (which[1])
            click(results, "btn_PlotConnMtx");
        if (which[2])
            inspect("strength");
        if (which[3])
            inspect("global_efficiency");
        for (int kind = 0; kind < kinds; ++kind)
            ASSERT_EQ(!windowsOf(plotClasses[kind]).isEmpty(), which[std::size_t(kind)]);
    }

    /// Closes what is to close, as its close box does.
    void close(End end)
    {
        QWidget *const windows[] = {windowsOf("ConnectivityObjectUI").value(0),
                                    windowsOf("Tessera").value(0), workbench.get()};
        ASSERT_NE(windows[int(end)], nullptr);
        if (end == End::Workbench)
            takeResultsForExported();
        EXPECT_TRUE(windows[int(end)]->close());
    }

    /// What is left when that has closed and everything has happened that was put off.
    static QStringList leftBy(End end)
    {
        return end == End::Results ? QStringList("Tessera") : QStringList();
    }
    void settle(End end)
    {
        EXPECT_TRUE(QTest::qWaitFor([end] { return moduleWindows() == leftBy(end); }))
            << moduleWindows().join(' ').toStdString();
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    }

    const SubjectFiles files;
};

// ---- any order

class ModuleClosingInOrder : public ModuleClosing, public testing::WithParamInterface<End>
{
protected:
    void closeInOrder(std::bitset<kinds> set, const std::vector<int> &order)
    {
        SCOPED_TRACE(testing::Message() << set << " " << testing::PrintToString(order));
        if (workbench == nullptr || windowsOf("Tessera").isEmpty())
            begin(1);
        else
            openResults(0);
        ASSERT_NO_FATAL_FAILURE(openPlots(resultsDialog(), set));
        for (const int kind : order) {
            windowOf(plotClasses[kind])->close();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            EXPECT_TRUE(windowsOf(plotClasses[kind]).isEmpty());
            EXPECT_TRUE(moduleWindows().contains(plotClasses[kind])) << "it stays with its dialog";
        }
        close(GetParam());
        if (GetParam() == End::Workbench)
            closeWorkbench();
        settle(GetParam());
    }
};

} // namespace

TEST_P(ModuleClosingInOrder, OfAnySetOfPlots)
{
    constexpr unsigned long all = (1u << kinds) - 1;
    // Plots that disturb each other do so in twos or threes. A new dataset takes longer: then the
    // same plots close before it in one order only.
    const std::size_t mostInAnyOrder = GetParam() == End::Results ? 3 : 1;
    for (unsigned long set = 0; set <= all; ++set) {
        for (const std::vector<int> &order : ordersOf(set)) {
            if (order.size() > mostInAnyOrder && !std::is_sorted(order.begin(), order.end()))
                continue;
            ASSERT_NO_FATAL_FAILURE(closeInOrder(set, order));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Ends, ModuleClosingInOrder,
                         testing::Values(End::Results, End::MainDialog, End::Workbench),
                         [](const auto &tested) { return nameOf(tested.param); });

TEST_F(ModuleClosing, OfTwoSubjectsWithAllTheirPlots)
{
    for (const std::vector<int> &results :
         std::vector<std::vector<int>>{{}, {0}, {1}, {0, 1}, {1, 0}}) {
        for (const End end : {End::MainDialog, End::Workbench}) {
            SCOPED_TRACE(testing::Message() << testing::PrintToString(results) << nameOf(end));
            ASSERT_NO_FATAL_FAILURE(begin(2));
            const QList<QWidget *> dialogs = windowsOf("ConnectivityObjectUI");
            for (const QWidget *dialog : dialogs)
                ASSERT_NO_FATAL_FAILURE(openPlots(dialog, 0b1111));
            for (const int which : results) {
                dialogs.at(which)->close();
                QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            }
            close(end);
            if (end == End::Workbench)
                closeWorkbench();
            settle(end);
        }
    }
}

TEST_F(ModuleClosing, AsksOnceWhileResultsWereNotExported)
{
    begin(2);
    const auto expectQuestion = [this](const char *names, QMessageBox::StandardButton answer) {
        modals.expect<QMessageBox>([=](QMessageBox &box) {
            EXPECT_EQ(box.text().toStdString(),
                      std::string("Results that exist nowhere else are open: ") + names +
                          ".\n\nQuit all the same?");
            QTest::mouseClick(box.button(answer), Qt::LeftButton);
        });
    };
    expectQuestion("subject 0, subject 1", QMessageBox::No);
    EXPECT_FALSE(workbench->close());
    ASSERT_EQ(windowsOf("ConnectivityObjectUI").size(), 2);
    int exported = 0;
    for (const QWidget *dialog : windowsOf("ConnectivityObjectUI"))
        exportTo(folder.path(QStringLiteral("matrix%1.csv").arg(++exported)),
                 [dialog] { click(dialog, "btn_exportConnectivityMatrix"); });
    EXPECT_TRUE(workbench->close());
    EXPECT_EQ(modals.remaining(), 0U);
}

/// The anatomies of the subjects close first: finished results do not need them.
TEST_F(ModuleClosing, OfTheAnatomyLeavesTheResults)
{
    begin(1);
    workspace().closeDocument(workspace().currentDocument());
    openPlots(resultsDialog(), 0b1111);
    close(End::Results);
    settle(End::Results);
    openResults(0);
    openPlots(resultsDialog(), 0b1111);
    close(End::Workbench);
    settle(End::Workbench);
}

// ---- any moment

namespace
{

/// Something that waits for the user, and what is done to bring it up.
enum class Moment {
    NameEditor,
    VtcDialog,
    VoiDialog,
    PrtDialog,
    VoiError,
    LoadMessage,
    VoiSelection,
    Progress,
    DuplicateName,
    ExportDialog,
    ExportQuestion,
    RingMenu,
    RingDialog,
    LineMenu,
    LineDialog,
    HeldSlider,
    HeldSpan,
    ProfileList,
    OpenDialog,
    PluginsMenu
};

const char *nameOf(Moment moment)
{
    const char *const names[] = {"NameEditor",    "VtcDialog",    "VoiDialog",      "PrtDialog",
                                 "VoiError",      "LoadMessage",  "VoiSelection",   "Progress",
                                 "DuplicateName", "ExportDialog", "ExportQuestion", "RingMenu",
                                 "RingDialog",    "LineMenu",     "LineDialog",     "HeldSlider",
                                 "HeldSpan",      "ProfileList",  "OpenDialog",     "PluginsMenu"};
    return names[int(moment)];
}

class ModuleClosingAtMoment : public ModuleClosing,
                              public testing::WithParamInterface<std::tuple<Moment, End>>
{
protected:
    End end() const { return std::get<1>(GetParam()); }

    /// The end comes when a dialog of that kind runs.
    template <typename Dialog>
    void endUnder()
    {
        modals.expect<Dialog>([this](Dialog &dialog) {
            const QPointer<Dialog> open = &dialog;
            close(end());
            // The program's own dialogs do not go with a window of the plugin.
            if (open && open->isVisible())
                open->reject();
        });
    }
    void endUnderMenu()
    {
        whenMenuOpens([this](QMenu &menu) {
            const QPointer<QMenu> open = &menu;
            close(end());
            if (open && open->isVisible())
                open->close();
        });
    }

    /// Drags the left handle of a slider; gives the window that the mouse then holds.
    static QPointer<QWindow> drag(QWidget *slider)
    {
        const QPoint handle = slider->mapTo(slider->window(), {6, slider->height() / 2});
        QWindow *const window = slider->window()->windowHandle();
        QTest::mousePress(window, Qt::LeftButton, {}, handle);
        QTest::mouseMove(window, handle + QPoint(40, 0));
        return window;
    }
    static void letGo(const QPointer<QWindow> &window)
    {
        if (window)
            QTest::mouseRelease(window, Qt::LeftButton);
    }

    QWidget *plotView(const char *className)
    {
        return windowOf(className)->findChild<QGraphicsView *>();
    }

    void bringUp(Moment moment);
};

void ModuleClosingAtMoment::bringUp(Moment moment)
{
    switch (moment) {
    case Moment::NameEditor: {
        const int row = addRow("another");
        auto *const table = find<QTableView>(mainDialog(), "tbl_Subjects");
        const QPoint place = table->visualRect(table->model()->index(row, NameColumn)).center();
        QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, place);
        QTest::keyClicks(table->viewport()->findChild<QLineEdit *>(), "half a na");
        close(end());
        break;
    }
    case Moment::VtcDialog:
    case Moment::VoiDialog:
    case Moment::PrtDialog: {
        const int row = addRow("another");
        const int column = moment == Moment::VtcDialog
                               ? VtcColumn
                               : (moment == Moment::VoiDialog ? VoiColumn : PrtColumn);
        if (column == PrtColumn)
            chooseFile(row, VtcColumn, files.vtc);
        endUnder<QFileDialog>();
        click(fileButton(row, column));
        break;
    }
    case Moment::VoiError: {
        putBytes(folder.path("bad.voi"), "nothing");
        const int row = addRow("another");
        modals.expectFile(folder.path("bad.voi"));
        endUnder<QMessageBox>();
        click(fileButton(row, VoiColumn));
        break;
    }
    case Moment::LoadMessage: {
        const int row = addRow("another");
        chooseAnatomy(row, files.vmr);
        chooseFile(row, VtcColumn, files.vtc);
        workspace().closeDocument(workspace().currentDocument());
        modals.expectFile(files.voi);
        endUnder<QMessageBox>();
        click(fileButton(row, VoiColumn));
        break;
    }
    case Moment::VoiSelection:
        endUnder<QDialog>();
        click(mainDialog(), "btn_ConfigureVOIs");
        break;
    case Moment::Progress: {
        addSubject("another", files);
        selectProfile("another");
        chooseVois({1, 2, 4});
        click(mainDialog(), "chkBox_ShowResults");
        BusyPool pool;
        modals.expect<QProgressDialog>([&](QProgressDialog &) {
            close(end());
            pool.release();
        });
        click(mainDialog(), "btn_Compute");
        break;
    }
    case Moment::DuplicateName:
        chooseVois({1});
        endUnder<QMessageBox>();
        click(mainDialog(), "btn_Compute");
        break;
    case Moment::ExportDialog:
        endUnder<QFileDialog>();
        click(resultsDialog(), "btn_exportConnectivityMatrix");
        break;
    case Moment::ExportQuestion:
        // It asks whether a file that is there is to be replaced.
        putBytes(folder.path("there.csv"), "1");
        modals.expectFile(folder.path("there.csv"));
        endUnder<QMessageBox>();
        click(resultsDialog(), "btn_exportFMRITS");
        break;
    case Moment::RingMenu:
        endUnderMenu();
        clickAt(plotView("CircularPlot"), {4, 4}, Qt::RightButton);
        break;
    case Moment::RingDialog:
        endUnder<QFileDialog>();
        chooseFromMenu(plotView("CircularPlot"), "Export to image...");
        break;
    case Moment::LineMenu:
        endUnderMenu();
        clickAt(plotView("LinePlot"), {4, 4}, Qt::RightButton);
        break;
    case Moment::LineDialog:
        endUnder<QFileDialog>();
        chooseFromMenu(plotView("LinePlot"), "Export to CSV...");
        break;
    case Moment::HeldSlider: {
        auto *const slider = find<QSlider>(windowOf("CircularPlot"), "hSlider_Conditions");
        const QPointer<QWindow> window = drag(slider);
        EXPECT_TRUE(slider->isSliderDown());
        close(end());
        letGo(window);
        break;
    }
    case Moment::HeldSpan: {
        auto *const slider = find<QWidget>(resultsDialog(), "widget_CircPlot_Spanner");
        showPage(slider);
        const QPointer<QWindow> window = drag(slider);
        EXPECT_GT(find<QLabel>(resultsDialog(), "lbl_Spanner_Low")->text().toDouble(), 0);
        close(end());
        letGo(window);
        break;
    }
    case Moment::ProfileList: {
        auto *const profiles = find<QWidget>(mainDialog(), "cBox_connectivityProfile");
        showPage(profiles);
        clickAt(profiles, profiles->rect().center());
        const QPointer<QWidget> list = QApplication::activePopupWidget();
        ASSERT_FALSE(list.isNull());
        close(end());
        if (list && list->isVisible())
            QTest::keyClick(list, Qt::Key_Escape);
        break;
    }
    case Moment::OpenDialog:
        workbench->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(workbench.get()));
        endUnder<QFileDialog>();
        QTest::keyClick(workbench.get(), Qt::Key_O, Qt::ControlModifier);
        break;
    case Moment::PluginsMenu: {
        endUnderMenu();
        QMenuBar *const bar = workbench->menuBar();
        const auto *const menu = workbench->findChild<QMenu *>(QStringLiteral("pluginsMenu"));
        QTest::mouseClick(bar, Qt::LeftButton, {},
                          bar->actionGeometry(menu->menuAction()).center());
        EXPECT_TRUE(QTest::qWaitFor([menu] { return !menu->isVisible(); }));
        break;
    }
    }
}

} // namespace

TEST_P(ModuleClosingAtMoment, LeavesNothingBehind)
{
    begin(1);
    openPlots(resultsDialog(), 0b1111);
    if (end() != End::Workbench) {
        bringUp(std::get<0>(GetParam()));
        settle(end());
        return;
    }
    // As in the program: its event loop ends when its last window has closed.
    QTimer::singleShot(0, workbench.get(), [this] {
        bringUp(std::get<0>(GetParam()));
        EXPECT_FALSE(workbench->isVisible());
        if (workbench->isVisible())
            QCoreApplication::quit();
    });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(moduleWindows(), QStringList());
    settle(end());
}

INSTANTIATE_TEST_SUITE_P(
    Moments, ModuleClosingAtMoment,
    testing::Combine(testing::Values(Moment::NameEditor, Moment::VtcDialog, Moment::VoiDialog,
                                     Moment::PrtDialog, Moment::VoiError, Moment::LoadMessage,
                                     Moment::VoiSelection, Moment::Progress, Moment::DuplicateName,
                                     Moment::ExportDialog, Moment::ExportQuestion, Moment::RingMenu,
                                     Moment::RingDialog, Moment::LineMenu, Moment::LineDialog,
                                     Moment::HeldSlider, Moment::HeldSpan, Moment::ProfileList,
                                     Moment::OpenDialog, Moment::PluginsMenu),
                     testing::Values(End::Results, End::MainDialog, End::Workbench)),
    [](const auto &tested) {
        return std::string(nameOf(std::get<0>(tested.param))) + "Then" +
               nameOf(std::get<1>(tested.param));
    });

} // namespace corvane
