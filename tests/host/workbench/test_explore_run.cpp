// SPDX-License-Identifier: GPL-3.0-or-later
//
// From the run that is open to the connectome window.
#include "host/explorer/explorer_window.h"
#include "host/session/session.h"
#include "host/workbench/explore_run_dialog.h"
#include "host/workbench/file_field.h"
#include "host/workbench/main_window.h"
#include "host/workbench/volume_view.h"
#include "tests/host/support/host_files.h"
#include "tests/support/modal_driver.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

using testing::HasSubstr;

template <typename Widget>
Widget *childOf(const QWidget &window, const char *name)
{
    auto *const found = window.findChild<Widget *>(QLatin1String(name));
    EXPECT_NE(found, nullptr) << name;
    return found;
}

// ---- the dialog, with a program that writes down how it was called

class ExploreRunDialogTest : public testing::Test
{
protected:
    ExploreRunDialogTest() { QSettings().clear(); }

    void show(const QByteArray &script, const OpenRun &run)
    {
        const QString program = folder.path("Computes");
        putBytes(program, "#!/bin/sh\n" + script);
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        dialog = std::make_unique<ExploreRunDialog>(run, nullptr, program);
        dialog->show();
        dialog->activateWindow();
    }
    OpenRun run() const
    {
        return {QStringLiteral("/d/head.vmr"),
                folder.path("a run.vtc"),
                QStringLiteral("/d/areas.voi"),
                QStringLiteral("/d/blocks.prt"),
                14,
                false};
    }
    QPushButton *compute() const { return childOf<QPushButton>(*dialog, "compute"); }
    QString said() const { return childOf<QLabel>(*dialog, "said")->text(); }
    /// A script that writes each word of its call into a line of a file.
    QByteArray noting() const
    {
        return "for word in \"$@\"; do echo \"$word\"; done >" + folder.path("words").toUtf8() +
               "\n";
    }
    QStringList words() const
    {
        return QString::fromUtf8(bytesOf(folder.path("words")))
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    const TemporaryFolder folder;
    std::unique_ptr<ExploreRunDialog> dialog;
};

TEST_F(ExploreRunDialogTest, ComputesAllOfWhatIsOpen)
{
    show(noting(), run());
    EXPECT_EQ(childOf<QLabel>(*dialog, "run")->text(),
              QStringLiteral("a run.vtc, areas.voi, connections of all 14 VOIs"));
    EXPECT_EQ(dialog->folder(), folder.path("a run_connections"));
    QSignalSpy accepted(dialog.get(), &QDialog::accepted);
    QTest::keyClick(dialog.get(), Qt::Key_Return);
    EXPECT_FALSE(compute()->isEnabled());
    ASSERT_TRUE(!accepted.isEmpty() || accepted.wait(30000));
    EXPECT_EQ(words().join(QLatin1Char('|')),
              QStringLiteral("compute|--anatomy|/d/head.vmr|--vtc|%1|--voi|/d/areas.voi|--measure|"
                             "correlation|--values|signed|--names|--out|%2")
                  .arg(folder.path("a run.vtc"), folder.path("a run_connections")));
}

TEST_F(ExploreRunDialogTest, TakesWhatIsChosenAndKeepsIt)
{
    OpenRun mismatched = run();
    mismatched.isMismatched = true;
    show(noting(), mismatched);
    childOf<QComboBox>(*dialog, "measure")->setCurrentIndex(1);
    childOf<QComboBox>(*dialog, "values")->setCurrentIndex(2);
    childOf<QCheckBox>(*dialog, "protocol")->setChecked(true);
    childOf<FileField>(*dialog, "folder")->setPath(folder.path("else where"));
    QSignalSpy accepted(dialog.get(), &QDialog::accepted);
    compute()->click();
    ASSERT_TRUE(!accepted.isEmpty() || accepted.wait(30000));
    EXPECT_THAT(words().join(QLatin1Char('|')).toStdString(),
                HasSubstr("|--measure|partial-correlation|--values|positive|--names|--out|" +
                          folder.path("else where").toStdString() +
                          "|--use-protocol|--prt|/d/blocks.prt|--allow-mismatch"));
    show(noting(), run());
    EXPECT_EQ(childOf<QComboBox>(*dialog, "measure")->currentIndex(), 1);
    EXPECT_EQ(childOf<QComboBox>(*dialog, "values")->currentIndex(), 2);
    EXPECT_TRUE(childOf<QCheckBox>(*dialog, "protocol")->isChecked());
    OpenRun without = run();
    without.protocol.clear();
    show(noting(), without);
    EXPECT_FALSE(childOf<QCheckBox>(*dialog, "protocol")->isEnabled());
    EXPECT_FALSE(childOf<QCheckBox>(*dialog, "protocol")->isChecked());
}

TEST_F(ExploreRunDialogTest, WhatGoesWrongIsToldAndCanBeTriedAgain)
{
    show("echo 'a.voi: found nothing'; exit 1\n", run());
    compute()->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return compute()->isEnabled(); }, 30000));
    EXPECT_EQ(said(), QStringLiteral("a.voi: found nothing"));
    EXPECT_TRUE(dialog->isVisible());
    // One that is killed says nothing by itself.
    putBytes(folder.path("Computes"), "#!/bin/sh\nkill -KILL $$\n");
    compute()->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return compute()->isEnabled(); }, 30000));
    EXPECT_EQ(said(), QStringLiteral("It ended without a word."));
    childOf<FileField>(*dialog, "folder")->setPath({});
    EXPECT_FALSE(compute()->isEnabled());
    EXPECT_TRUE(childOf<FileField>(*dialog, "folder")->hasFault());
}

TEST_F(ExploreRunDialogTest, EscapeCancelsThenCloses)
{
    show("trap 'exit 143' TERM\necho started\nwhile true; do sleep 0.1; done\n", run());
    compute()->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return said() == QStringLiteral("started"); }, 30000));
    EXPECT_TRUE(childOf<QProgressBar>(*dialog, "progress")->isEnabled());
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    EXPECT_TRUE(dialog->isVisible());
    ASSERT_TRUE(QTest::qWaitFor([&] { return compute()->isEnabled(); }, 30000));
    EXPECT_EQ(said(), QStringLiteral("cancelled"));
    EXPECT_FALSE(childOf<QProgressBar>(*dialog, "progress")->isEnabled());
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(ExploreRunDialogTest, AsksBeforeAResultIsReplaced)
{
    show(noting(), run());
    QDir().mkpath(dialog->folder());
    putBytes(dialog->folder() + QStringLiteral("/summary.json"), "{}");
    ModalDriver driver;
    driver.expect<QMessageBox>([&](QMessageBox &box) {
        EXPECT_THAT(box.text().toStdString(), HasSubstr(dialog->folder().toStdString()));
        QTest::mouseClick(box.button(QMessageBox::No), Qt::LeftButton);
    });
    compute()->click();
    EXPECT_TRUE(compute()->isEnabled());
    driver.expect<QMessageBox>(
        [](QMessageBox &box) { QTest::mouseClick(box.button(QMessageBox::Yes), Qt::LeftButton); });
    QSignalSpy accepted(dialog.get(), &QDialog::accepted);
    compute()->click();
    ASSERT_TRUE(!accepted.isEmpty() || accepted.wait(30000));
    EXPECT_FALSE(words().isEmpty());
}

// ---- the whole way, with the program itself

/// An anatomy, a run, three VOIs in it and a protocol.
class ExploreRun : public testing::Test
{
protected:
    ExploreRun()
    {
        QSettings().clear();
        Vmr vmr = zeroVmr();
        vmr.space = VmrSpace{{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, {-128, -128, -128}};
        writeVmr(folder.path("head.vmr"), vmr);
        VoiSet set;
        set.vois = {{QStringLiteral("first"), 220, 60, 60, {{{126, 126, 126}}}},
                    {QStringLiteral("second"), 60, 60, 220, {{{130, 127, 126}}}},
                    {QStringLiteral("third"), 60, 160, 60, {{{132, 131, 130}}}}};
        writeVoiFile(folder.path("areas.voi"), set);
        writePrtFile(folder.path("blocks.prt"), turnsPrt());
        putBytes(folder.path("run.vtc"), middleVtcBytes());
        window.setProgram(QStringLiteral(CORVANE_PROGRAM));
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    QAction *entry()
    {
        for (QAction *action : window.menuBar()->actions().constFirst()->menu()->actions())
            if (action->text() == QStringLiteral("E&xplore Connections..."))
                return action;
        return nullptr;
    }
    void openAll()
    {
        window.openFiles({folder.path("head.vmr"), folder.path("run.vtc"), folder.path("areas.voi"),
                          folder.path("blocks.prt")});
    }

    const TemporaryFolder folder;
    Session session;
    MainWindow window{session};
};

TEST_F(ExploreRun, IsOfferedOnceARunHasItsVois)
{
    auto *const button = childOf<QPushButton>(window, "exploreVois");
    ASSERT_NE(entry(), nullptr);
    EXPECT_FALSE(entry()->isEnabled());
    window.openFiles({folder.path("head.vmr")});
    EXPECT_TRUE(button->isVisible());
    EXPECT_FALSE(button->isEnabled());
    window.openFiles({folder.path("run.vtc")});
    EXPECT_FALSE(entry()->isEnabled());
    window.openFiles({folder.path("areas.voi")});
    EXPECT_TRUE(entry()->isEnabled());
    EXPECT_TRUE(button->isEnabled());
    const std::optional<OpenRun> run = openRun(session.workspace());
    ASSERT_TRUE(run);
    EXPECT_EQ(run->anatomy, folder.path("head.vmr"));
    EXPECT_EQ(run->vtc, folder.path("run.vtc"));
    EXPECT_EQ(run->voi, folder.path("areas.voi"));
    EXPECT_EQ(run->protocol, QString());
    EXPECT_EQ(run->vois, 3);
    session.workspace().unloadVois();
    QCoreApplication::processEvents();
    EXPECT_FALSE(entry()->isEnabled());
    EXPECT_FALSE(button->isEnabled());
}

TEST_F(ExploreRun, GoesByKeysFromTheMenuToTheConnectomeWindow)
{
    openAll();
    ModalDriver driver;
    driver.expect<ExploreRunDialog>([](ExploreRunDialog &dialog) {
        QTest::keyClick(&dialog, Qt::Key_P, Qt::AltModifier);
        auto *const protocol = childOf<QCheckBox>(dialog, "protocol");
        EXPECT_TRUE(QTest::qWaitFor([&] { return protocol->isChecked(); }));
        QTest::keyClick(&dialog, Qt::Key_C, Qt::AltModifier);
    });
    QTest::keyClick(&window, Qt::Key_F, Qt::AltModifier);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_X);
    auto *const explorer = window.findChild<ExplorerWindow *>();
    ASSERT_NE(explorer, nullptr);
    EXPECT_TRUE(explorer->isVisible());
    const NetworkResult &result = explorer->model().result();
    ASSERT_EQ(result.nodes.size(), 3U);
    EXPECT_EQ(result.nodes[1].name, QStringLiteral("second"));
    EXPECT_EQ(result.matrices.size(), 4U) << "one for each interval";
    EXPECT_EQ(result.folder, folder.path("run_connections"));
    // The cross-hair goes where the node is.
    explorer->model().select(1);
    EXPECT_EQ(window.findChild<VolumeView *>()->scene().cross, (CubeVoxel{130, 127, 126}));
}

TEST_F(ExploreRun, TheButtonDoesTheSameAndEscapeNothing)
{
    openAll();
    ModalDriver driver;
    driver.expect<ExploreRunDialog>(
        [](ExploreRunDialog &dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    auto *const button = childOf<QPushButton>(window, "exploreVois");
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Space);
    EXPECT_TRUE(window.findChildren<ExplorerWindow *>().isEmpty());
    EXPECT_FALSE(QDir(folder.path("run_connections")).exists());
}

} // namespace
} // namespace corvane
