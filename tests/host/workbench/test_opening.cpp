// SPDX-License-Identifier: GPL-3.0-or-later
//
// The ways into the main window: the dialog, dropped files, the example dataset.
#include "host/import/resample_anatomy.h"
#include "host/session/session.h"
#include "host/workbench/file_field.h"
#include "host/workbench/import_dialog.h"
#include "host/workbench/log_pane.h"
#include "host/workbench/main_window.h"
#include "host/workbench/runs_dialog.h"
#include "host/workbench/slice_view.h"
#include "host/workbench/time_course_view.h"
#include "host/workbench/user_folder.h"
#include "host/workbench/voi_source_list.h"
#include "host/workbench/volume_view.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/nifti_files.h"
#include "tests/host/support/small_study.h"
#include "tests/host/workbench/dropping.h"
#include "tests/support/modal_driver.h"

#include <QCheckBox>
#include <QDateTime>
#include <QDir>
#include <QDockWidget>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTableWidget>
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

// ---- what is to be imported first

class ImportOpened : public Opening
{
protected:
    ImportOpened()
    {
        NiftiParts parts;
        parts.setSize({3, 3, 3, 4});
        parts.pixdim[4] = 2;
        setSamples<qint16>(parts, std::vector<qint16>(108, 700));
        putBytes(folder.path("run.nii"), niftiBytes(parts));
        putBytes(folder.path("events.tsv"), "onset\tduration\n0\t2\n");
    }
    /// The next dialog is that of an import, which is looked at and left.
    void expectImport(const std::function<void(const ImportRequest &)> &look)
    {
        driver.expect<ImportDialog>([look](ImportDialog &dialog) {
            look(dialog.request());
            dialog.reject();
        });
    }

    ModalDriver driver;
};

TEST_F(ImportOpened, ARunGoesToTheImportWithItsFieldsFilled)
{
    expectImport([this](const ImportRequest &request) {
        EXPECT_EQ(request.functional, folder.path("run.nii"));
        EXPECT_EQ(request.name, QStringLiteral("run"));
    });
    window.openFiles({folder.path("run.nii")});
    EXPECT_EQ(driver.remaining(), 0U);
    EXPECT_EQ(workspace.documentCount(), 0);
}

TEST_F(ImportOpened, FilesThatAreDroppedTogetherFillTheImport)
{
    expectImport([this](const ImportRequest &request) {
        EXPECT_EQ(request.functional, folder.path("run.nii"));
        EXPECT_EQ(request.anatomy, folder.path("head.nii.gz"));
        EXPECT_EQ(request.events, folder.path("events.tsv"));
    });
    EXPECT_TRUE(dropOn(
        &window, {folder.path("events.tsv"), folder.path("head.nii.gz"), folder.path("run.nii")}));
    ASSERT_TRUE(QTest::qWaitFor([this] { return driver.remaining() == 0; }));
    EXPECT_EQ(workspace.documentCount(), 0);
}

TEST_F(ImportOpened, ATableAloneGoesThereToo)
{
    expectImport([this](const ImportRequest &request) {
        EXPECT_EQ(request.events, folder.path("events.tsv"));
    });
    window.openFiles({folder.path("events.tsv")});
    EXPECT_EQ(driver.remaining(), 0U);
}

TEST_F(ImportOpened, AnUnknownEndingIsToldWithWhatIsKnown)
{
    putBytes(folder.path("notes.docx"), "x");
    driver.expect<QMessageBox>([](QMessageBox &box) {
        EXPECT_THAT(
            box.text().toStdString(),
            HasSubstr("\"notes.docx\" is of no kind that this program knows: it opens .vmr"));
        QTest::keyClick(&box, Qt::Key_Return);
    });
    window.openFiles({folder.path("notes.docx"), folder.path("head.vmr")});
    EXPECT_EQ(driver.remaining(), 0U);
    EXPECT_EQ(workspace.documentCount(), 1);
}

/// A pipeline's folder with two runs and one that cannot be imported.
class FolderOpened : public ImportOpened
{
protected:
    FolderOpened()
    {
        study.addRun(QStringLiteral("sub-01/func"), QStringLiteral("sub-01_task-rest"),
                     QStringLiteral("space-T1w"));
        study.addRun(QStringLiteral("sub-02/func"), QStringLiteral("sub-02_task-rest"),
                     QStringLiteral("space-T1w"));
        study.put(QStringLiteral("sub-03/func/nothing.txt"), "x");
        study.addAtlas();
    }
    static QTableWidget *runsOf(const RunsDialog &dialog)
    {
        return dialog.findChild<QTableWidget *>(QStringLiteral("runs"));
    }
    static QPushButton *buttonOf(const QWidget &dialog, const QString &text)
    {
        for (QPushButton *button : dialog.findChildren<QPushButton *>())
            if (button->text() == text)
                return button;
        return nullptr;
    }

    const SmallStudy study{folder.path("study")};
};

TEST_F(FolderOpened, IsAListOfRunsWithWhatBelongsToEach)
{
    driver.expect<RunsDialog>([](RunsDialog &dialog) {
        const QTableWidget *const runs = runsOf(dialog);
        ASSERT_EQ(runs->rowCount(), 3);
        EXPECT_EQ(runs->item(0, 0)->text(), QStringLiteral("sub-01_task-rest_space-T1w"));
        EXPECT_EQ(runs->item(0, 0)->checkState(), Qt::Checked);
        EXPECT_EQ(runs->item(0, 1)->text(), QStringLiteral("the run's mean"));
        EXPECT_EQ(runs->item(0, 2)->text(),
                  QStringLiteral("sub-01_task-rest_space-T1w_desc-brain_mask.nii.gz"));
        EXPECT_EQ(runs->item(0, 5)->text(),
                  QStringLiteral("sub-01_task-rest_desc-confounds_timeseries.tsv"));
        EXPECT_FALSE(runs->item(2, 0)->flags().testFlag(Qt::ItemIsUserCheckable));
        EXPECT_THAT(runs->item(2, 1)->text().toStdString(),
                    HasSubstr("no desc-preproc_bold image"));
        QTest::mouseClick(buttonOf(dialog, QStringLiteral("Tick N&one")), Qt::LeftButton);
        EXPECT_FALSE(buttonOf(dialog, QStringLiteral("&Import"))->isEnabled());
        QTest::mouseClick(buttonOf(dialog, QStringLiteral("Tick &All")), Qt::LeftButton);
        EXPECT_TRUE(buttonOf(dialog, QStringLiteral("&Import"))->isEnabled());
        dialog.reject();
    });
    window.openFiles({study.path()});
    EXPECT_EQ(driver.remaining(), 0U);
}

TEST_F(FolderOpened, ImportsWhatIsTickedAndShowsTheFirst)
{
    driver.expect<RunsDialog>([this](RunsDialog &dialog) {
        dialog.findChild<FileField *>(QStringLiteral("folder"))->setPath(folder.path("out"));
        dialog.findChild<VoiSourceList *>()->add(
            {study.path(QStringLiteral("atlas-Four_dseg.nii.gz"))});
        QTest::mouseClick(buttonOf(dialog, QStringLiteral("&Import")), Qt::LeftButton);
    });
    window.openFiles({study.path()});
    EXPECT_EQ(driver.remaining(), 0U);
    ASSERT_EQ(workspace.documentCount(), 1);
    EXPECT_EQ(workspace.documentPath(0), folder.path("out/sub-01/sub-01_task-rest_space-T1w.vmr"));
    ASSERT_NE(workspace.vois(), nullptr);
    EXPECT_EQ(workspace.vois()->set.vois.size(), 4U);
    EXPECT_EQ(workspace.vois()->set.vois[0].name, QStringLiteral("A left"));
    EXPECT_TRUE(QFileInfo::exists(folder.path("out/sub-02/sub-02_task-rest_space-T1w.vtc")));
    EXPECT_EQ(userFolder(), QDir::homePath()); // and not where the import has put its files

    // Each is a whole subject among the recent ones.
    const QList<QAction *> recent =
        window.findChild<QMenu *>(QStringLiteral("recentFiles"))->actions();
    ASSERT_EQ(recent.size(), 4);
    EXPECT_THAT(recent[1]->text().toStdString(), HasSubstr("sub-02_task-rest_space-T1w.vtc"));
    recent[1]->trigger();
    ASSERT_EQ(workspace.documentCount(), 2);
    ASSERT_NE(workspace.linkedVtc(), nullptr);
    EXPECT_EQ(workspace.vois()->set.provenance.subject, QStringLiteral("sub-02"));
}

TEST_F(FolderOpened, ARunThatFailsIsToldAndStopsNoOther)
{
    study.put(QStringLiteral("sub-01/func/sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz"),
              "no image");
    driver.expect<RunsDialog>([this](RunsDialog &dialog) {
        dialog.findChild<FileField *>(QStringLiteral("folder"))->setPath(folder.path("out"));
        QTest::mouseClick(buttonOf(dialog, QStringLiteral("&Import")), Qt::LeftButton);
    });
    driver.expect<QMessageBox>([](QMessageBox &box) {
        EXPECT_THAT(box.text().toStdString(), HasSubstr("sub-01_task-rest_space-T1w: "));
        QTest::keyClick(&box, Qt::Key_Return);
    });
    window.openFiles({study.path()});
    EXPECT_EQ(driver.remaining(), 0U);
    ASSERT_EQ(workspace.documentCount(), 1);
    EXPECT_EQ(nameOf(0), QStringLiteral("sub-02_task-rest_space-T1w.vmr"));
}

TEST_F(FolderOpened, IsChosenInTheFileMenuToo)
{
    driver.expect<QFileDialog>([this](QFileDialog &dialog) {
        EXPECT_EQ(dialog.directory().path(), QDir::homePath());
        ModalDriver::enterFile(dialog, study.path(QStringLiteral("sub-02")));
    });
    driver.expect<RunsDialog>([](RunsDialog &dialog) {
        EXPECT_EQ(runsOf(dialog)->rowCount(), 1);
        dialog.reject();
    });
    QTest::keyClick(&window, Qt::Key_I, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(driver.remaining(), 0U);
}

TEST_F(FolderOpened, SeveralRunsOfNoPipelineAreAListToo)
{
    ASSERT_TRUE(QFile::copy(folder.path("run.nii"), folder.path("other.nii")));
    driver.expect<RunsDialog>([](RunsDialog &dialog) {
        ASSERT_EQ(runsOf(dialog)->rowCount(), 2);
        EXPECT_EQ(runsOf(dialog)->item(0, 0)->text(), QStringLiteral("other"));
        dialog.reject();
    });
    window.openFiles({folder.path("other.nii"), folder.path("run.nii")});
    EXPECT_EQ(driver.remaining(), 0U);
}

// ---- subjects

/// Files of a subject: head, run and areas.
class SubjectOpened : public Opening
{
protected:
    QStringList filesOf(const char *subject, const char *name)
    {
        const QString base = folder.path(name);
        Vmr vmr = zeroVmr();
        vmr.provenance.subject = QLatin1String(subject);
        writeVmr(base + QStringLiteral(".vmr"), vmr);
        VtcInfo info = smallVtcInfo();
        info.provenance = vmr.provenance;
        putBytes(base + QStringLiteral(".vtc"), vtcBytes(info, numberedSamples<short>(info)));
        VoiSet vois = smallVoiSet();
        vois.provenance = vmr.provenance;
        writeVoiFile(base + QStringLiteral(".voi"), vois);
        return {base + QStringLiteral(".vmr"), base + QStringLiteral(".vtc"),
                base + QStringLiteral(".voi")};
    }
    void expectQuestion(const char *says, QMessageBox::StandardButton answer)
    {
        driver.expect<QMessageBox>([=](QMessageBox &box) {
            EXPECT_THAT(box.text().toStdString(), HasSubstr(says));
            EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No));
            QTest::mouseClick(box.button(answer), Qt::LeftButton);
        });
    }

    ModalDriver driver;
};

TEST_F(SubjectOpened, IsNamedInTheTitleAndThePanes)
{
    const QStringList files = filesOf("sub-01", "one");
    window.openFiles(files);
    writePrtFile(folder.path("blocks.prt"), smallPrt());
    window.openFiles({folder.path("blocks.prt")});
    EXPECT_EQ(window.windowTitle(),
              QStringLiteral("one.vmr, one.vtc, one.voi, blocks.prt - Corvane"));
    EXPECT_EQ(window.findChild<QDockWidget *>(QStringLiteral("voiPane"))->windowTitle(),
              QStringLiteral("Volumes of Interest: one.voi"));
    EXPECT_EQ(child<QLabel>("courseName")->text(), QStringLiteral("one.vtc, protocol blocks.prt"));
    EXPECT_TRUE(child<QLabel>("courseName")->isVisible());
}

TEST_F(SubjectOpened, OfAnotherOneIsAskedAboutAndClosedUnlessWanted)
{
    const QStringList first = filesOf("sub-01", "one");
    const QStringList second = filesOf("sub-02", "two");
    window.openFiles(first);
    expectQuestion("two.vtc: its subject is \"sub-02\", that of one.vmr \"sub-01\"",
                   QMessageBox::No);
    window.openFiles({second[1]});
    EXPECT_EQ(workspace.linkedVtc(), nullptr);
    EXPECT_EQ(driver.remaining(), 0U);

    window.openFiles({first[1]});
    expectQuestion("two.voi: its subject is \"sub-02\"", QMessageBox::Yes);
    window.openFiles({second[2]});
    EXPECT_EQ(driver.remaining(), 0U);
    ASSERT_NE(workspace.vois(), nullptr);
    EXPECT_EQ(workspace.vois()->set.provenance.subject, QStringLiteral("sub-02"));
    // Answered once.
    window.openFiles({second[2]});
    EXPECT_NE(workspace.vois(), nullptr);
}

TEST_F(SubjectOpened, OfAnotherOneIsAskedAboutWhenAPluginLoadsItToo)
{
    window.openFiles(filesOf("sub-01", "one"));
    expectQuestion("two.voi: its subject is \"sub-02\"", QMessageBox::No);
    workspace.loadVois(filesOf("sub-02", "two")[2]);
    EXPECT_NE(workspace.vois(), nullptr); // the plugin has what it asked for
    ASSERT_TRUE(QTest::qWaitFor([this] { return driver.remaining() == 0; }));
    ASSERT_TRUE(QTest::qWaitFor([this] { return workspace.vois() == nullptr; }));
}

TEST_F(SubjectOpened, WithoutASubjectAgreesWithAll)
{
    window.openFiles(filesOf("sub-01", "one"));
    window.openFiles({filesOf("", "none")[2]});
    EXPECT_NE(workspace.vois(), nullptr);
}

TEST_F(SubjectOpened, IsOneRecentEntryWithAllItsFiles)
{
    const QStringList files = filesOf("sub-01", "one");
    window.openFiles({files[0]});
    window.openFiles({files[1]});
    window.openFiles({files[2]});
    const QList<QAction *> recent = child<QMenu>("recentFiles")->actions();
    ASSERT_EQ(recent.size(), 3);
    EXPECT_EQ(recent[0]->text(), QStringLiteral("one.vmr, one.vtc, one.voi"));
    workspace.unloadVois();
    recent[0]->trigger();
    EXPECT_EQ(workspace.documentCount(), 2);
    EXPECT_NE(workspace.linkedVtc(), nullptr);
    EXPECT_NE(workspace.vois(), nullptr);
}

TEST_F(Opening, DialogsBeginWhereTheUsersDataAreAndNotInTheExample)
{
    QTest::mouseClick(child<QPushButton>("welcomeExample"), Qt::LeftButton);
    ASSERT_EQ(workspace.documentCount(), 1);
    ModalDriver driver;
    const auto expectFolder = [&](const QString &wanted) {
        driver.expect<QFileDialog>([wanted](QFileDialog &dialog) {
            EXPECT_EQ(dialog.directory().path(), wanted);
            dialog.reject();
        });
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        QTest::keyClick(&window, Qt::Key_O, Qt::ControlModifier);
    };
    expectFolder(QDir::homePath());
    EXPECT_TRUE(dropOn(&window, {folder.path("head.vmr")}));
    ASSERT_TRUE(opened(2));
    expectFolder(folder.path());
}

TEST_F(Opening, QuittingAsksOnceWhileResultsExistNowhereElse)
{
    QWidget plugin;
    plugin.show();
    QObject first(&plugin);
    QObject second(&plugin);
    first.setProperty("unsavedResults", QStringLiteral("Anna"));
    second.setProperty("unsavedResults", QStringLiteral("Berta"));
    ModalDriver driver;
    const auto expectQuestion = [&](const char *names, QMessageBox::StandardButton answer) {
        driver.expect<QMessageBox>([=](QMessageBox &box) {
            EXPECT_EQ(box.text().toStdString(),
                      std::string("Results that exist nowhere else are open: ") + names +
                          ".\n\nQuit all the same?");
            QTest::mouseClick(box.button(answer), Qt::LeftButton);
        });
    };
    expectQuestion("Anna, Berta", QMessageBox::No);
    EXPECT_FALSE(window.close());
    EXPECT_TRUE(plugin.isVisible());
    first.setProperty("unsavedResults", QString());
    expectQuestion("Berta", QMessageBox::Yes);
    EXPECT_TRUE(window.close());
    EXPECT_FALSE(plugin.isVisible());
    EXPECT_EQ(driver.remaining(), 0U);
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
