// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/session/log.h"
#include "host/session/session.h"
#include "host/workbench/document_tabs.h"
#include "host/workbench/log_pane.h"
#include "host/workbench/main_window.h"
#include "host/workbench/screen_fit.h"
#include "tests/gui_test.h"
#include "tests/host/support/host_files.h"
#include "tests/support/as_read.h"
#include "tests/support/modal_driver.h"

#include <QFileDialog>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>
#include <QSettings>
#include <QSplitter>
#include <QTest>
#include <QUrl>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

using testing::HasSubstr;

class MainWindowTest : public testing::Test
{
protected:
    MainWindowTest()
    {
        QSettings().clear();
        writeVmr(first, zeroVmr());
        writeVmr(second, zeroVmr());
    }

    void showWindow()
    {
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    QAction *action(const QString &menu, const QString &text) const
    {
        for (const QAction *top : window.menuBar()->actions())
            if (top->text() == menu)
                for (QAction *entry : top->menu()->actions())
                    if (entry->text() == text)
                        return entry;
        ADD_FAILURE() << "no " << text.toStdString();
        return nullptr;
    }

    std::string logged() const { return window.log().text().toStdString(); }
    int current() const { return workspace.currentDocument(); }

    const TemporaryFolder folder;
    const QString first = folder.path("first & best.vmr");
    const QString second = folder.path("second.vmr");
    Session session;
    Workspace &workspace = session.workspace();
    MainWindow window{session};
    DocumentTabs *tabs = window.findChild<DocumentTabs *>();
};

} // namespace

TEST_F(MainWindowTest, ShowsEachDocumentAsATabAndTheCurrentOneAsTheCurrentTab)
{
    window.openFiles({first, second});
    ASSERT_EQ(tabs->count(), 2);
    EXPECT_EQ(tabs->tabText(0), QStringLiteral("first && best.vmr"));
    EXPECT_EQ(tabs->tabToolTip(1), second);
    EXPECT_EQ(tabs->currentIndex(), 1);
    EXPECT_EQ(window.windowTitle(), QStringLiteral("second.vmr - Corvane"));

    tabs->setCurrentIndex(0);
    EXPECT_EQ(current(), 0);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return window.windowTitle() == QStringLiteral("first & best.vmr - Corvane"); }));
}

TEST_F(MainWindowTest, FollowsWhatAPluginMakesCurrent)
{
    window.openFiles({first, second});
    workspace.setCurrentDocument(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return tabs->currentIndex() == 0; }));
    workspace.openVmr(first);
    ASSERT_TRUE(QTest::qWaitFor([&] { return tabs->count() == 3; }));
    EXPECT_EQ(tabs->currentIndex(), 2);
    workspace.setCurrentDocument(-1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == QStringLiteral("Corvane"); }));
}

TEST_F(MainWindowTest, ClosesADocumentAndLetsTheOthersKeepTheirNumbers)
{
    window.openFiles({first, second, first});
    tabs->setCurrentIndex(1);
    action(QStringLiteral("&File"), QStringLiteral("&Close"))->trigger();
    EXPECT_EQ(workspace.documentType(1), ClosedDocument);
    EXPECT_EQ(current(), 2);
    ASSERT_TRUE(QTest::qWaitFor([&] { return tabs->count() == 2; }));
    EXPECT_EQ(tabs->currentIndex(), 1);

    Q_EMIT tabs->tabCloseRequested(0);
    EXPECT_EQ(current(), 2);
    ASSERT_TRUE(QTest::qWaitFor([&] { return tabs->count() == 1; }));
    action(QStringLiteral("&File"), QStringLiteral("&Close"))->trigger();
    EXPECT_EQ(current(), -1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return tabs->count() == 0; }));
    EXPECT_FALSE(action(QStringLiteral("&File"), QStringLiteral("&Close"))->isEnabled());
}

TEST_F(MainWindowTest, GoesThroughTheDocumentsWithTheKeyboard)
{
    showWindow();
    window.openFiles({first, second});
    EXPECT_EQ(current(), 1);
    QTest::keyClick(&window, Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(current(), 0);
    QTest::keyClick(&window, Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(current(), 1);
    QTest::keyClick(&window, Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(current(), 0);
}

TEST_F(MainWindowTest, TheKeyboardBeginsWithWhatAPageIsFor)
{
    const auto focus = [this] { return window.focusWidget()->objectName().toStdString(); };
    showWindow();
    EXPECT_EQ(focus(), "welcomeOpen");
    window.openFiles({first});
    EXPECT_EQ(focus(), "Sagittal slice");
    QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    const std::string next = focus();
    EXPECT_NE(next, "Sagittal slice");
    window.openFiles({second});
    EXPECT_EQ(focus(), next);
    QTest::keyClick(&window, Qt::Key_W, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return tabs->count() == 1; }));
    QTest::keyClick(&window, Qt::Key_W, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return focus() == "welcomeOpen"; }));
}

TEST_F(MainWindowTest, OpensAnatomiesBeforeWhatBelongsToThem)
{
    const QString vtc = folder.path("run.vtc");
    const QString voi = folder.path("areas.voi");
    putBytes(vtc, vtcBytes(smallVtcInfo(), numberedSamples<short>(smallVtcInfo())));
    writeVoiFile(voi, smallVoiSet());
    window.openFiles({vtc, voi, first});
    EXPECT_NE(workspace.linkedVtc(), nullptr);
    EXPECT_NE(workspace.vois(), nullptr);
    EXPECT_EQ(tabs->count(), 1);
}

TEST_F(MainWindowTest, ListsVoisOnlyWhileAnAnatomyIsOpen)
{
    showWindow();
    const auto *const list = window.findChild<QListWidget *>(QStringLiteral("voiList"));
    const auto *const hint = window.findChild<QLabel *>(QStringLiteral("voiHint"));
    writeVoiFile(folder.path("areas.voi"), smallVoiSet());
    window.openFiles({folder.path("areas.voi")});
    EXPECT_FALSE(list->isVisible());
    EXPECT_TRUE(hint->isVisible());
    window.openFiles({first});
    EXPECT_TRUE(list->isVisible());
    EXPECT_FALSE(hint->isVisible());
    EXPECT_GT(list->count(), 0);
    action(QStringLiteral("&File"), QStringLiteral("&Close"))->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !list->isVisible(); }));
    EXPECT_TRUE(hint->isVisible());
}

TEST(ScreenFitTest, AWindowFitsItsScreenWithItsFrame)
{
    const QRect screen(0, 24, 1280, 696);
    const QMargins frame(2, 20, 2, 3);
    // What fits stays where it is.
    EXPECT_EQ(fitted({100, 100, 600, 400}, frame, screen), QRect(100, 100, 600, 400));
    // What is too large fills the screen, what stands out is moved.
    EXPECT_EQ(fitted({2, 22, 1400, 850}, frame, screen), QRect(2, 44, 1276, 673));
    EXPECT_EQ(fitted({900, 400, 600, 400}, frame, screen), QRect(678, 317, 600, 400));
    EXPECT_EQ(fitted({-50, 0, 600, 400}, frame, screen), QRect(2, 44, 600, 400));
}

TEST_F(MainWindowTest, FitsADisplayWithAWindowManagerWithItsFrame)
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        GTEST_SKIP() << "this platform has no window manager; on_display.sh brings one";
    new ScreenFit(window);
    window.resize(3000, 2000);
    showWindow();
    const QRect screen = window.screen()->availableGeometry();
    const bool isFitted = QTest::qWaitFor([&] {
        return window.frameGeometry().height() > window.height() &&
               screen.contains(window.frameGeometry());
    });
    EXPECT_TRUE(isFitted);
    EXPECT_GT(window.width(), screen.width() - 20);
    EXPECT_GT(window.height(), screen.height() - 60);
}

TEST_F(MainWindowTest, TellsAllThatCannotBeOpenedInOneMessage)
{
    putBytes(folder.path("bad.voi"), "nothing");
    ModalDriver driver;
    std::string said;
    driver.expect<QMessageBox>([&](QMessageBox &box) {
        said = box.text().toStdString();
        QTest::keyClick(&box, Qt::Key_Return);
    });
    window.openFiles({folder.path("bad.voi"), folder.path("missing.vmr"), first});
    EXPECT_THAT(said, HasSubstr("bad.voi: "));
    EXPECT_THAT(said, HasSubstr("missing.vmr: "));
    EXPECT_THAT(logged(), HasSubstr(said));
    EXPECT_EQ(tabs->count(), 1);
}

/// Other programs write too. What is gone is not shown as if it were there.
TEST_F(MainWindowTest, ClosesFilesThatBecameShorterAndSaysSoOnce)
{
    showWindow();
    const QString vtc = folder.path("run.vtc");
    putBytes(vtc, vtcBytes(smallVtcInfo(), numberedSamples<short>(smallVtcInfo())));
    window.openFiles({first, second, vtc});
    ASSERT_TRUE(QFile::resize(vtc, 0));
    ASSERT_TRUE(QFile::resize(second, 0));
    ModalDriver driver;
    std::string said;
    driver.expect<QMessageBox>([&](QMessageBox &box) {
        said = box.text().toStdString();
        QTest::keyClick(&box, Qt::Key_Return);
    });
    // Reads what is gone before the window looks after its files.
    window.grab();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !said.empty(); }));
    const std::string end = "0 bytes: it became shorter while it was open, expected ";
    EXPECT_THAT(said, HasSubstr(vtc.toStdString() + ": reading: found " + end));
    EXPECT_THAT(said, HasSubstr(second.toStdString() + ": reading: found " + end));
    EXPECT_THAT(said, HasSubstr("It is no longer open."));
    EXPECT_THAT(said, testing::Not(HasSubstr("first")));
    EXPECT_THAT(logged(), HasSubstr(said));
    EXPECT_EQ(workspace.linkedVtc(), nullptr);
    EXPECT_EQ(workspace.documentType(1), ClosedDocument);
    ASSERT_TRUE(QTest::qWaitFor([&] { return tabs->count() == 1; }));
    EXPECT_EQ(current(), -1);
    EXPECT_TRUE(workspace.closeShortened().isEmpty());
}

TEST_F(MainWindowTest, ShowsThePluginsMessagesOverTheActiveWindow)
{
    showWindow();
    auto *const pluginWindow = new QWidget;
    pluginWindow->show();
    pluginWindow->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(pluginWindow));
    ModalDriver driver;
    driver.expect<QMessageBox>([&](QMessageBox &box) {
        EXPECT_EQ(box.text(), QStringLiteral("<b>Not</b> without a VMR"));
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.windowTitle(), QStringLiteral("Corvane"));
        EXPECT_EQ(box.parentWidget(), pluginWindow);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    showMessage(QStringLiteral("<b>Not</b> without a VMR"));
    EXPECT_THAT(logged(), HasSubstr("<b>Not</b> without a VMR"));

    // The window may end under the box.
    pluginWindow->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(pluginWindow));
    driver.expect<QMessageBox>([&](QMessageBox &) { delete pluginWindow; });
    showMessage(QStringLiteral("once more"));
    EXPECT_EQ(driver.remaining(), 0U);
}

TEST_F(MainWindowTest, ShowsMessagesAboveAWindowThatKeepsOnTopAlsoWhenNoneIsActive)
{
    showWindow();
    QWidget other(nullptr, Qt::WindowStaysOnTopHint);
    other.show();
    // As it is right after a file dialog has closed.
    QApplication::setActiveWindow(nullptr);
    ASSERT_EQ(QApplication::activeWindow(), nullptr);
    ModalDriver driver;
    driver.expect<QMessageBox>([&](QMessageBox &box) {
        EXPECT_TRUE(box.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        EXPECT_EQ(box.parentWidget(), &other);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    showMessage(QStringLiteral("No VMR"));

    other.hide();
    QApplication::setActiveWindow(nullptr);
    driver.expect<QMessageBox>([&](QMessageBox &box) {
        EXPECT_FALSE(box.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        EXPECT_EQ(box.parentWidget(), &window);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    showMessage(QStringLiteral("No VMR"));
    EXPECT_EQ(driver.remaining(), 0U);
}

TEST_F(MainWindowTest, TakesFilesThatAreDroppedOnIt)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(first), QUrl::fromLocalFile(second)});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &drop);
    ASSERT_TRUE(QTest::qWaitFor([&] { return tabs->count() == 2; }));

    QMimeData text;
    text.setText(QStringLiteral("no file"));
    QDragEnterEvent enterText(QPoint(5, 5), Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    enterText.ignore();
    QCoreApplication::sendEvent(&window, &enterText);
    EXPECT_FALSE(enterText.isAccepted());
}

TEST_F(MainWindowTest, RemembersRecentFilesNewestFirst)
{
    window.openFiles({first, second, first});
    auto *const menu = window.findChild<QMenu *>(QStringLiteral("recentFiles"));
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 4);
    EXPECT_EQ(menu->actions()[0]->text(), QStringLiteral("first && best.vmr"));
    EXPECT_EQ(menu->actions()[1]->text(), QStringLiteral("second.vmr"));
    menu->actions()[1]->trigger();
    EXPECT_EQ(workspace.documentPath(current()), second);

    Session other;
    const MainWindow later(other);
    auto *const laterMenu = later.findChild<QMenu *>(QStringLiteral("recentFiles"));
    EXPECT_EQ(laterMenu->actions()[0]->text(), QStringLiteral("second.vmr"));
    laterMenu->actions().constLast()->trigger();
    EXPECT_FALSE(laterMenu->isEnabled());
}

TEST_F(MainWindowTest, ShowsPathsAsTheyAreWritten)
{
    const QString path = folder.path("<b>head & neck.vmr");
    writeVmr(path, zeroVmr());
    window.openFiles({path});
    EXPECT_EQ(asRead(window.findChild<DocumentTabs *>()->tabToolTip(0)), path);
    const auto *const menu = window.findChild<QMenu *>(QStringLiteral("recentFiles"));
    EXPECT_EQ(asRead(menu->actions()[0]->toolTip()), path);
    EXPECT_EQ(menu->actions()[0]->statusTip(), path);
}

TEST_F(MainWindowTest, RemembersItsPlaceAndPanes)
{
    auto *const log = window.findChild<LogPane *>();
    showWindow();
    window.openFiles({first});
    window.resize(901, 702);
    log->hide();
    auto *const parts = window.findChild<QSplitter *>(QStringLiteral("volumeSplitter"));
    QCoreApplication::processEvents();
    const int height = parts->sizes().at(1) + 40;
    parts->setSizes({parts->sizes().at(0) - 40, height});
    ASSERT_EQ(parts->sizes().at(1), height);
    window.close();

    Session other;
    MainWindow later(other);
    later.show();
    later.openFiles({first});
    EXPECT_EQ(later.size(), QSize(901, 702));
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return later.findChild<QSplitter *>(QStringLiteral("volumeSplitter"))->sizes().at(1) ==
               height;
    }));
    EXPECT_FALSE(later.findChild<LogPane *>()->isVisible());
}

TEST_F(MainWindowTest, ShowsTheLogAndBringsItToTheFront)
{
    showWindow();
    logText(QStringLiteral("\n a line with %1 and \xe6\xb5\xb7"));
    EXPECT_THAT(logged(), HasSubstr("\n a line with %1 and "));
    auto *const log = window.findChild<LogPane *>();
    log->hide();
    session.showLogPane();
    EXPECT_TRUE(log->isVisible());
}

TEST_F(MainWindowTest, ShowsMessagesAsPlainTextAndInTheLog)
{
    showWindow();
    ModalDriver driver;
    driver.expectMessage(QStringLiteral("Corvane"), QStringLiteral("a <b>message</b>"));
    showMessage(QStringLiteral("a <b>message</b>"));
    EXPECT_THAT(logged(), HasSubstr("a <b>message</b>"));
}

TEST_F(MainWindowTest, ListsPluginsWithNameAndAuthorAndStartsThem)
{
    window.loadPluginFolder(QStringLiteral(PLUGIN_FOLDER));
    const QString good = QStringLiteral("Plugin && none (by The Testers)");
    QAction *const start = action(QStringLiteral("&Plugins"), good);
    ASSERT_NE(start, nullptr);
    start->trigger();
    EXPECT_THAT(logged(), HasSubstr("initPlugin\nexecute"));

    ModalDriver driver;
    driver.expectMessage(QStringLiteral("Corvane"), QStringLiteral("Not without\nan anatomy."));
    EXPECT_TRUE(window.startPlugin(QStringLiteral("Plugin & refuses")));
    EXPECT_THAT(logged(),
                HasSubstr("Plugin & refuses did not start: it refuses: Not without an anatomy."));
    EXPECT_TRUE(window.startPlugin(QStringLiteral("Plugin & execute throws")));
    EXPECT_THAT(logged(),
                HasSubstr("Plugin & execute throws did not start: execute failed: beyond"));
    EXPECT_FALSE(window.startPlugin(QStringLiteral("Plugin & nobody")));
    EXPECT_THAT(logged(), HasSubstr("There is no plugin of the name \"Plugin & nobody\"."));
}

TEST_F(MainWindowTest, TellsInTheLogWhyALibraryIsNoPlugin)
{
    window.loadPluginFolder(QStringLiteral(PLUGIN_FOLDER));
    EXPECT_THAT(logged(),
                HasSubstr("no_exports.so is no plugin: it does not export createPlugin."));
    EXPECT_THAT(logged(), HasSubstr("no_library.so cannot be loaded: "));
    EXPECT_THAT(logged(), HasSubstr("other_host.so was built for another version of the host: it "
                                    "needs zqNeverThere, which version 3.0.0 does not have."));
    EXPECT_TRUE(window.startPlugin(QStringLiteral("Plugin & refuses silently")));
    EXPECT_THAT(logged(),
                HasSubstr("Plugin & refuses silently did not start: it refuses to run in version "
                          "3.0.0 of this host and does not say why"));
}

TEST_F(MainWindowTest, FileDialogsOfPluginsBeginWhereTheFilesAre)
{
    const QFileDialog before(nullptr, QString(), QString());
    ASSERT_NE(before.directory().path(), folder.path());
    window.openFiles({first});
    const QFileDialog after(nullptr, QString(), QString());
    EXPECT_EQ(after.directory().path(), folder.path());
}

TEST_F(MainWindowTest, TakesTheWindowsOfPluginsWithItWhenItCloses)
{
    showWindow();
    QWidget other;
    other.show();
    EXPECT_TRUE(window.close());
    EXPECT_FALSE(other.isVisible());
}

} // namespace corvane
