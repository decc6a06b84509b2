// SPDX-License-Identifier: GPL-3.0-or-later
//
// The ways into the main window: the dialog, dropped files, the example dataset.
#include "host/import/resample_anatomy.h"
#include "host/session/session.h"
#include "host/workbench/log_pane.h"
#include "host/workbench/main_window.h"
#include "host/workbench/slice_view.h"
#include "host/workbench/time_course_view.h"
#include "host/workbench/volume_view.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/nifti_files.h"
#include "tests/host/workbench/dropping.h"
#include "tests/support/modal_driver.h"

#include <QCheckBox>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTest>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

using testing::HasSubstr;
using testing::Not;

class Opening : public testing::Test
{
protected:
    Opening()
    {
        QSettings().clear();
        qputenv("XDG_DATA_HOME", folder.path("data").toUtf8());
        writeVmr(folder.path("head.vmr"), zeroVmr());
        NiftiParts parts;
        parts.setSize({3, 3, 3});
        setSamples<qint16>(parts, std::vector<qint16>(27, 700));
        putBytes(folder.path("head.nii.gz"), gzipped(niftiBytes(parts)));
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    QString nameOf(int document) const
    {
        return QFileInfo(workspace.documentPath(document)).fileName();
    }
    bool opened(int documents)
    {
        return QTest::qWaitFor([=] { return workspace.documentCount() == documents; });
    }
    template <typename Widget>
    Widget *child(const char *name) const
    {
        return window.findChild<Widget *>(QString::fromLatin1(name));
    }
    QStringList exampleFolder() const
    {
        return QDir(folder.path("data")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    const TemporaryFolder folder;
    Session session{openForeignAnatomy};
    Workspace &workspace = session.workspace();
    MainWindow window{session};
};

} // namespace

TEST_F(Opening, TakesAnatomiesOfEachFormatThatAreDropped)
{
    EXPECT_TRUE(dropOn(&window, {folder.path("head.nii.gz")}));
    ASSERT_TRUE(opened(1));
    EXPECT_EQ(nameOf(0), QStringLiteral("head.nii.gz"));
    EXPECT_EQ(intensityAt(*workspace.currentVmr(), {128, 128, 128}), 700);
    EXPECT_TRUE(dropOn(&window, {folder.path("head.vmr"), folder.path("head.nii.gz")}));
    ASSERT_TRUE(opened(3));
    EXPECT_EQ(nameOf(1), QStringLiteral("head.vmr"));
}

TEST_F(Opening, TakesAllKindsOfFilesThatAreDroppedTogether)
{
    const VtcInfo info = smallVtcInfo();
    putBytes(folder.path("run.vtc"), vtcBytes(info, numberedSamples<short>(info)));
    writeVoiFile(folder.path("areas.voi"), smallVoiSet());
    writePrtFile(folder.path("blocks.prt"), smallPrt());
    EXPECT_TRUE(dropOn(&window, {folder.path("blocks.prt"), folder.path("areas.voi"),
                                 folder.path("run.vtc"), folder.path("head.vmr")}));
    ASSERT_TRUE(opened(1));
    EXPECT_NE(workspace.linkedVtc(), nullptr);
    EXPECT_NE(workspace.vois(), nullptr);
    EXPECT_NE(workspace.protocol(), nullptr);
}

TEST_F(Opening, TakesFilesDroppedOnEachPartOfTheWindow)
{
    window.openFiles({folder.path("head.vmr")});
    QWidget *const parts[] = {child<SliceView>("Axial slice"),
                              child<QWidget>("timeCourse"),
                              child<QListWidget>("voiList")->viewport(),
                              child<QPlainTextEdit>("logLines")->viewport(),
                              child<QSpinBox>("crossX")->findChild<QLineEdit *>(),
                              window.menuBar()};
    int documents = 1;
    for (QWidget *part : parts) {
        EXPECT_TRUE(dropOn(part, {folder.path("head.vmr")})) << part->metaObject()->className();
        EXPECT_TRUE(opened(++documents)) << part->metaObject()->className();
    }
    EXPECT_EQ(child<QSpinBox>("crossX")->value(), 128);
}

TEST_F(Opening, AsksForFilesAndRemembersTheirFolder)
{
    ModalDriver driver;
    driver.expectFile(folder.path("head.nii.gz"));
    QTest::keyClick(&window, Qt::Key_O, Qt::ControlModifier);
    ASSERT_EQ(workspace.documentCount(), 1);
    EXPECT_EQ(nameOf(0), QStringLiteral("head.nii.gz"));

    driver.expect<QFileDialog>([this](QFileDialog &dialog) {
        EXPECT_EQ(dialog.directory().path(), folder.path());
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFiles);
        dialog.reject();
    });
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(workspace.documentCount(), 1);
}

TEST_F(Opening, MakesTheExampleDatasetOnceAndOpensIt)
{
    QTest::mouseClick(child<QPushButton>("welcomeExample"), Qt::LeftButton);
    ASSERT_EQ(workspace.documentCount(), 1);
    EXPECT_EQ(nameOf(0), QStringLiteral("example.vmr"));
    ASSERT_NE(workspace.linkedVtc(), nullptr);
    ASSERT_NE(workspace.protocol(), nullptr);
    EXPECT_EQ(child<QListWidget>("voiList")->count(), 16);

    const QString vmr = workspace.documentPath(0);
    EXPECT_TRUE(vmr.startsWith(folder.path("data")));
    const QDateTime made = QFileInfo(vmr).lastModified();
    for (QAction *action : window.menuBar()->actions().constFirst()->menu()->actions())
        if (action->text() == QStringLiteral("Open &Example Dataset"))
            action->trigger();
    EXPECT_EQ(workspace.documentCount(), 2);
    EXPECT_EQ(QFileInfo(vmr).lastModified(), made);
}

TEST_F(Opening, ACancelledExampleDatasetLeavesNothing)
{
    ModalDriver driver;
    driver.expect<QProgressDialog>([](QProgressDialog &progress) {
        QTest::mouseClick(progress.findChild<QPushButton *>(), Qt::LeftButton);
    });
    QTest::mouseClick(child<QPushButton>("welcomeExample"), Qt::LeftButton);
    EXPECT_EQ(workspace.documentCount(), 0);
    for (const QString &part : exampleFolder())
        EXPECT_TRUE(QDir(folder.path("data/") + part).isEmpty()) << qPrintable(part);
    EXPECT_THAT(window.log().text().toStdString(), Not(HasSubstr("stopped")));
}

/// A run of nine volumes, 100 v + t at voxel v, and what a cleaning kept of it.
class CleanedRunOpened : public Opening
{
protected:
    CleanedRunOpened()
    {
        NiftiParts parts;
        parts.setSize({3, 2, 2, 9});
        std::vector<float> samples;
        for (int t = 0; t < 9; ++t)
            for (int v = 0; v < 12; ++v)
                samples.push_back(float(100 * v + t));
        setSamples(parts, samples);
        putBytes(run, niftiBytes(parts));
        info.cleaning = CleaningLedger();
        info.cleaning->method = QStringLiteral("24P, order joint");
        info.cleaning->volumes = 9;
        info.cleaning->censored = 5;
        info.cleaning->kept = 4;
        UncleanedRun uncleaned;
        uncleaned.path = run;
        uncleaned.bytes = QFileInfo(run).size();
        uncleaned.signature = runSignature(run);
        uncleaned.volumes = {3, 4, 5, 9};
        info.uncleaned = uncleaned;
    }
    void openRun()
    {
        putBytes(folder.path("run.vtc"), vtcBytes(info, numberedSamples<short>(info)));
        window.openFiles({folder.path("head.vmr"), folder.path("run.vtc")});
        window.findChild<VolumeView *>()->setCross({60, 52, 62});
        EXPECT_TRUE(QTest::qWaitFor([this] { return !view()->scene().samples.empty(); }));
    }
    TimeCourseView *view() const { return window.findChild<TimeCourseView *>(); }
    QCheckBox *box() const { return child<QCheckBox>("beforeCleaning"); }

    const QString run = folder.path("rest.nii");
    VtcInfo info = smallVtcInfo();
};

TEST_F(CleanedRunOpened, ShowsTheCourseBeforeTheCleaningWhenAsked)
{
    openRun();
    EXPECT_TRUE(box()->isVisible());
    ASSERT_TRUE(box()->isEnabled());
    EXPECT_TRUE(view()->scene().before.empty());
    box()->click();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !view()->scene().before.empty(); }));
    EXPECT_THAT(view()->scene().samples, testing::ElementsAre(8, 9, 10, 11));
    EXPECT_THAT(view()->scene().before, testing::ElementsAre(702, 703, 704, 708));
    window.findChild<VolumeView *>()->setCross({57, 52, 59});
    ASSERT_TRUE(QTest::qWaitFor(
        [this] { return !view()->scene().before.empty() && view()->scene().before.front() == 2; }));
    box()->click();
    EXPECT_TRUE(QTest::qWaitFor([this] { return view()->scene().before.empty(); }));
}

TEST_F(CleanedRunOpened, SaysWhyTheCourseBeforeTheCleaningCannotBeShown)
{
    putBytes(run, bytesOf(run) + "more");
    openRun();
    EXPECT_TRUE(box()->isVisible());
    EXPECT_FALSE(box()->isEnabled());
    EXPECT_THAT(box()->toolTip().toStdString(), HasSubstr("has changed since it was imported"));
    info.uncleaned.reset();
    openRun();
    EXPECT_FALSE(box()->isEnabled());
    EXPECT_THAT(box()->toolTip().toStdString(), HasSubstr("does not say of which run"));
}

// The run goes while it is looked at.
TEST_F(CleanedRunOpened, LeavesTheCourseOutWhenItsRunHasGone)
{
    openRun();
    ASSERT_TRUE(box()->isEnabled());
    ASSERT_TRUE(QFile::remove(run));
    box()->click();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !box()->isEnabled(); }));
    EXPECT_TRUE(view()->scene().before.empty());
    EXPECT_THAT(box()->toolTip().toStdString(), HasSubstr("is not at"));
}

TEST_F(CleanedRunOpened, OffersNothingForARunThatWasNotCleaned)
{
    info.cleaning.reset();
    info.uncleaned.reset();
    openRun();
    EXPECT_FALSE(box()->isVisible());
}

} // namespace corvane
