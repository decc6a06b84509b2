// SPDX-License-Identifier: GPL-3.0-or-later
//
// Help > Guided Tour with the real plugin, as a reader goes through it. This program is named as
// the host and exports what the host exports.
#include "host/import/resample_anatomy.h"
#include "host/session/session.h"
#include "host/tour/guided_tour.h"
#include "host/tour/tour_stage.h"
#include "host/tour/tour_steps.h"
#include "host/workbench/log_pane.h"
#include "host/workbench/main_window.h"
#include "tests/host/support/control_names.h"
#include "tests/host/support/host_files.h"
#include "tests/host/tour/caption_reader.h"
#include "tests/support/modal_driver.h"

#include <QDialog>
#include <QFile>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

namespace corvane
{

namespace
{

class TourFromTheMenu : public testing::Test
{
protected:
    TourFromTheMenu()
    {
        QSettings().clear();
        // Hidden, as it is where users have it.
        qputenv("XDG_DATA_HOME", folder.path(".local/share").toUtf8());
        window.setProgram(QStringLiteral(CORVANE_PROGRAM));
        new GuidedTour(window);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    void loadPlugin() { window.loadPluginFolder(QStringLiteral(TESSERA_PLUGIN_FOLDER)); }

    /// Alt+H opens the Help menu, G is the letter of its entry.
    void chooseTour()
    {
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        QTest::keyClick(&window, Qt::Key_H, Qt::AltModifier);
        ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::activePopupWidget() != nullptr; }));
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_G);
    }

    bool isDone() const
    {
        const QString last = QStringLiteral("The guided tour is done.");
        return QTest::qWaitFor([&] { return window.log().text().endsWith(last); }, 100000);
    }

    const TemporaryFolder folder;
    Session session{openForeignAnatomy};
    MainWindow window{session};
};

/// The program's own function of a name, as a plugin looks it up; null for one of a library.
void *ownFunction(const char *name)
{
    void *const found = dlsym(RTLD_DEFAULT, name);
    Dl_info place{};
    Dl_info program{};
    if (found == nullptr || dladdr(found, &place) == 0 ||
        dladdr(reinterpret_cast<void *>(&workspace), &program) == 0)
        return nullptr;
    return place.dli_fbase == program.dli_fbase ? found : nullptr;
}

QStringList functionsOfTheHost()
{
    QStringList names;
#define HOST_CALL(result, name, arguments)                                                         \
    if (ownFunction(#name) != nullptr)                                                             \
        names += QStringLiteral(#name);
#define HOST_NAME(name) HOST_CALL(void, name, ())
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
    return names;
}

} // namespace

TEST_F(TourFromTheMenu, GoesFromTheMenuThroughTheWholeWorkflow)
{
    loadPlugin();
    QSet<QString> windows;
    const CaptionReader reader([&windows] {
        for (const QWidget *top : QApplication::topLevelWidgets()) {
            if (!top->isVisible() || top->windowType() == Qt::ToolTip)
                continue;
            windows += top->metaObject()->className();
            expectNames(*top);
        }
    });
    chooseTour();
    ASSERT_TRUE(isDone()) << qPrintable(reader.captions.join(QLatin1Char('\n')));
    EXPECT_EQ(reader.captions.size(), 24); // with the card at the end
    windows.remove(QStringLiteral("QMenu"));
    // The dialog is the one that selects VOIs.
    EXPECT_EQ(windows,
              (QSet<QString>{"corvane::MainWindow", "Tessera", "QDialog", "ConnectivityObjectUI",
                             "CircularPlot", "ViewMatrix", "LinePlot", "corvane::ExploreRunDialog",
                             "corvane::ExplorerWindow", "corvane::ExportDialog"}));
    EXPECT_EQ(CaptionReader::card(), nullptr);
    for (const QWidget *other : QApplication::topLevelWidgets())
        EXPECT_FALSE(other->isVisible() && qobject_cast<const QDialog *>(other))
            << qPrintable(other->windowTitle());
    EXPECT_EQ(workspace().documentCount(), 1);
}

/// Windows that are to be seen, but for menus, tips and the card.
static QWidgetList shownWindows()
{
    QWidgetList shown;
    for (QWidget *top : QApplication::topLevelWidgets()) {
        const bool isWindow = top->windowType() == Qt::Window || top->windowType() == Qt::Dialog;
        if (isWindow && top->isVisible() && !top->isMinimized())
            shown += top;
    }
    return shown;
}

/// Whether one of two windows belongs to the other and the screen is too narrow for both: then it
/// lies over that one, which cannot go away without it.
static bool haveNoRoom(const QWidget *one, const QWidget *other)
{
    const int stage = stageOf(one->screen()->availableGeometry()).windows.width();
    const bool belong = one->parentWidget() == other || other->parentWidget() == one;
    return belong && one->frameGeometry().width() + other->minimumSizeHint().width() > stage;
}

/// What covers what, one line each.
static QStringList covered(const QWidget &card)
{
    const int stage = stageOf(card.screen()->availableGeometry()).windows.width();
    QStringList faults;
    const auto text = [](const QWidget *window) {
        const QRect frame = window->frameGeometry();
        return QStringLiteral("%1 at %2, %3, %4 x %5")
            .arg(QString::fromLatin1(window->metaObject()->className()))
            .arg(frame.x())
            .arg(frame.y())
            .arg(frame.width())
            .arg(frame.height());
    };
    QList<const QWidget *> all{&card};
    for (const QWidget *window : shownWindows()) {
        // One that cannot be made narrower than the stage reaches into the card's column.
        if (window->minimumSizeHint().width() > stage) {
            EXPECT_GT(card.geometry().top(), window->frameGeometry().center().y());
            continue;
        }
        for (const QWidget *other : qAsConst(all))
            if (window->frameGeometry().intersects(other->frameGeometry()) &&
                !haveNoRoom(window, other) && !haveNoRoom(other, window))
                faults += text(window) + QStringLiteral(" and ") + text(other);
        if (!window->screen()->geometry().contains(window->frameGeometry()))
            faults += text(window) + QStringLiteral(" is not all on the screen");
        all += window;
    }
    return faults;
}

TEST_F(TourFromTheMenu, CoversNothingOnADisplayWithAWindowManager)
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        GTEST_SKIP() << "this platform has no window manager; on_display.sh brings one";
    loadPlugin();
    int looked = 0;
    const CaptionReader reader([&looked] {
        ++looked;
        // Windows come where they are sent after a while.
        QStringList faults;
        const bool isSettled = QTest::qWaitFor([&faults] {
            faults = covered(*CaptionReader::card());
            const QWidgetList shown = shownWindows();
            const bool isAnySeen = std::any_of(shown.begin(), shown.end(), [](QWidget *top) {
                return top->windowHandle()->isExposed();
            });
            if (!isAnySeen)
                faults += QStringLiteral("no window is to be seen");
            return faults.isEmpty();
        });
        EXPECT_TRUE(isSettled) << CaptionReader::card()->text().toStdString() << '\n'
                               << faults.join(QLatin1Char('\n')).toStdString();
        const QString pictures = qEnvironmentVariable("TESSERA_PICTURES");
        if (pictures.isEmpty())
            return;
        QTest::qWait(500); // until all is painted
        const QString file =
            QStringLiteral("%1/tour_%2.png").arg(pictures).arg(looked, 2, 10, QLatin1Char('0'));
        EXPECT_TRUE(QGuiApplication::primaryScreen()->grabWindow(0).save(file));
    });
    chooseTour();
    ASSERT_TRUE(isDone()) << qPrintable(reader.captions.join(QLatin1Char('\n')));
    EXPECT_EQ(looked, 24);
}

TEST_F(TourFromTheMenu, EndsWhenItsReaderWantsItAndBeginsAgain)
{
    loadPlugin();
    QAction *entry = nullptr;
    for (QAction *action : window.menuBar()->actions().constLast()->menu()->actions())
        if (action->text() == QStringLiteral("&Guided Tour"))
            entry = action;
    ASSERT_NE(entry, nullptr);
    for (int n = 1; n <= 2; ++n) {
        entry->trigger();
        ASSERT_TRUE(QTest::qWaitFor([] { return CaptionReader::card() != nullptr; }, 60000));
        // A tour that is running is not begun a second time.
        entry->trigger();
        QTest::keyClick(CaptionReader::windowWithKeys(), Qt::Key_Escape);
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return window.log().text().count(QStringLiteral("The tour was ended.")) == n; }));
        EXPECT_EQ(CaptionReader::card(), nullptr);
        if (QWidget *const menu = QApplication::activePopupWidget())
            menu->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(TourFromTheMenu, PutsWhatIsOpenAsideAndIsThenPlayedInAProcessOfItsOwn)
{
    // A program that writes down how it was called, and ends when it is told to.
    putBytes(folder.path("program"), "#!/bin/sh\necho \"$@\" >" + folder.path("called").toUtf8() +
                                         "\nread -r line <" + folder.path("end").toUtf8() + "\n");
    QFile::setPermissions(folder.path("program"), QFile::ReadOwner | QFile::ExeOwner);
    ASSERT_EQ(mkfifo(folder.path("end").toUtf8().constData(), 0600), 0);
    auto *const tour = new GuidedTour(window, folder.path("program"));
    QSignalSpy ended(tour, &GuidedTour::ended);
    loadPlugin();
    writeVmr(folder.path("own.vmr"), zeroVmr());
    window.openFiles({folder.path("own.vmr")});
    QDialog dataset;
    dataset.show();

    tour->start();
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return QFile::exists(folder.path("called")) &&
               bytesOf(folder.path("called")).endsWith('\n');
    }));
    EXPECT_EQ(bytesOf(folder.path("called")).toStdString(),
              "--plugins " TESSERA_PLUGIN_FOLDER " --tour\n");
    EXPECT_TRUE(window.isMinimized());
    EXPECT_TRUE(dataset.isMinimized());
    EXPECT_EQ(CaptionReader::card(), nullptr);
    // A tour that is running is not begun a second time.
    tour->start();

    putBytes(folder.path("end"), "now\n");
    ASSERT_TRUE(ended.wait(10000));
    EXPECT_FALSE(window.isMinimized());
    EXPECT_FALSE(dataset.isMinimized());
    EXPECT_EQ(ended.size(), 1);
    EXPECT_EQ(workspace().documentCount(), 1);
    EXPECT_EQ(workspace().documentPath(workspace().currentDocument()), folder.path("own.vmr"));
}

TEST_F(TourFromTheMenu, BringsWhatIsOpenBackWhenItCannotBePlayed)
{
    auto *const tour = new GuidedTour(window, folder.path("nothing"));
    loadPlugin();
    writeVmr(folder.path("own.vmr"), zeroVmr());
    window.openFiles({folder.path("own.vmr")});
    ModalDriver driver;
    driver.expect<QMessageBox>([](QMessageBox &box) {
        EXPECT_TRUE(box.text().startsWith(QStringLiteral("The tour cannot be played: ")));
        QTest::keyClick(&box, Qt::Key_Return);
    });
    tour->start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window.isMinimized(); }));
}

TEST_F(TourFromTheMenu, SaysThatItsPluginIsMissing)
{
    ModalDriver driver;
    driver.expectMessage(QStringLiteral("Corvane"),
                         QStringLiteral("The tour needs the plugin Tessera Analysis."));
    chooseTour();
}

TEST_F(TourFromTheMenu, ThePluginFindsTheSameFunctionsOfTheHostAsBeforeItWasLoaded)
{
    const QStringList before = functionsOfTheHost();
    EXPECT_EQ(before.size(), 21);
    loadPlugin();
    ASSERT_EQ(window.pluginNames(), QStringList{tourPlugin()});
    EXPECT_EQ(functionsOfTheHost(), before);
    for (const QString &name : before)
        EXPECT_EQ(dlsym(RTLD_DEFAULT, name.toLatin1().constData()),
                  ownFunction(name.toLatin1().constData()))
            << qPrintable(name);
}

} // namespace corvane
