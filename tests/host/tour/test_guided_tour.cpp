// SPDX-License-Identifier: GPL-3.0-or-later
//
// Help > Guided Tour with the real plugin, as a reader goes through it. This program is named as
// the host and exports what the host exports.
#include "host/import/resample_anatomy.h"
#include "host/session/session.h"
#include "host/tour/guided_tour.h"
#include "host/tour/tour_steps.h"
#include "host/workbench/log_pane.h"
#include "host/workbench/main_window.h"
#include "tests/host/support/control_names.h"
#include "tests/host/support/host_files.h"
#include "tests/host/tour/caption_reader.h"
#include "tests/support/modal_driver.h"

#include <QDialog>
#include <QLabel>
#include <QMenuBar>
#include <QSettings>
#include <QTest>
#include <dlfcn.h>
#include <gmock/gmock.h>

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
        qputenv("XDG_DATA_HOME", folder.path().toUtf8());
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
    EXPECT_EQ(reader.captions.size(), 15);
    windows.remove(QStringLiteral("QMenu"));
    // The dialog is the one that selects VOIs.
    EXPECT_EQ(windows,
              (QSet<QString>{"corvane::MainWindow", "Tessera", "QDialog", "ConnectivityObjectUI",
                             "CircularPlot", "ViewMatrix", "LinePlot"}));
    EXPECT_EQ(CaptionReader::caption(), nullptr);
    for (const QWidget *other : QApplication::topLevelWidgets())
        EXPECT_FALSE(other->isVisible() && qobject_cast<const QDialog *>(other))
            << qPrintable(other->windowTitle());
    EXPECT_EQ(workspace().documentCount(), 1);
}

TEST_F(TourFromTheMenu, LeavesTheAnatomiesThatAreOpenAlone)
{
    writeVmr(folder.path("own.vmr"), zeroVmr());
    window.openFiles({folder.path("own.vmr")});
    loadPlugin();
    const CaptionReader reader;
    chooseTour();
    ASSERT_TRUE(isDone()) << qPrintable(reader.captions.join(QLatin1Char('\n')));
    ASSERT_EQ(workspace().documentCount(), 2);
    for (int document : {0, 1}) {
        workspace().setCurrentDocument(document);
        EXPECT_EQ(workspace().linkedVtc() != nullptr, document == 1);
    }
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
        ASSERT_TRUE(QTest::qWaitFor([] { return CaptionReader::caption() != nullptr; }, 60000));
        // A tour that is running is not begun a second time.
        entry->trigger();
        QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
        EXPECT_EQ(window.log().text().count(QStringLiteral("The tour was ended.")), n);
        EXPECT_EQ(CaptionReader::caption(), nullptr);
        if (QWidget *const menu = QApplication::activePopupWidget())
            menu->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(TourFromTheMenu, LeavesADatasetThatIsBeingWorkedOnAlone)
{
    loadPlugin();
    QDialog dataset;
    dataset.show();
    ModalDriver driver;
    driver.expectMessage(QStringLiteral("Corvane"),
                         QStringLiteral("The tour opens windows of the plugin. Close those that "
                                        "are open first."));
    chooseTour();
    EXPECT_EQ(CaptionReader::caption(), nullptr);
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
