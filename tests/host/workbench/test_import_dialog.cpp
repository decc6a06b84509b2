// SPDX-License-Identifier: GPL-3.0-or-later
//
// The import dialog on the example dataset.
#include "host/files/vtc_file.h"
#include "host/import/cleaning_choice.h"
#include "host/import/example_dataset.h"
#include "host/workbench/file_field.h"
#include "host/workbench/import_dialog.h"
#include "tests/host/support/host_files.h"
#include "tests/host/workbench/dropping.h"
#include "tests/support/busy_pool.h"
#include "tests/support/modal_driver.h"
#include "tests/support/no_further_thread.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QTableWidget>
#include <QTest>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

/// Before the dialog is made, which remembers choices.
struct ClearSettings {
    ClearSettings() { QSettings().clear(); }
};

class ImportDialogTest : public testing::Test, ClearSettings
{
protected:
    static void SetUpTestSuite()
    {
        source = new TemporaryFolder;
        writeExample(source->path());
    }
    static void TearDownTestSuite()
    {
        delete source;
        source = nullptr;
    }

    ImportRequest exampleRequest() const
    {
        ImportRequest request;
        request.anatomy = source->path("sub-01_T1w.nii.gz");
        request.functional = source->path("sub-01_task-movement_bold.nii.gz");
        request.voiSources = {{VoiSource::Atlas, source->path("sub-01_dseg.nii.gz"),
                               source->path("sub-01_dseg.tsv")}};
        request.events = source->path("sub-01_task-movement_events.tsv");
        request.folder = folder.path("out");
        return request;
    }

    QPushButton *importButton() const
    {
        for (QAbstractButton *button : dialog.findChild<QDialogButtonBox *>()->buttons())
            if (button->text() == QStringLiteral("&Import"))
                return qobject_cast<QPushButton *>(button);
        return nullptr;
    }

    void showWith(const ImportRequest &request)
    {
        dialog.setRequest(request);
        dialog.show();
    }
    void waitForPreview()
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return importButton()->isEnabled(); }, 30000))
            << state().toStdString();
    }
    QString state() const { return dialog.findChild<QLabel *>(QStringLiteral("state"))->text(); }
    FileField *field(const char *name) const
    {
        return dialog.findChild<FileField *>(QLatin1String(name));
    }
    QTableWidget *vois() const { return dialog.findChild<QTableWidget *>(QStringLiteral("vois")); }
    QTableWidget *sources() const
    {
        return dialog.findChild<QTableWidget *>(QStringLiteral("voiSources"));
    }
    QString notes() const
    {
        return dialog.findChild<QPlainTextEdit *>(QStringLiteral("notes"))->toPlainText();
    }
    /// A preview of all that can be used, while something else cannot.
    void waitForFault(const std::function<bool()> &isTold)
    {
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return isTold() && state() != QStringLiteral("Looking at the files..."); },
            30000))
            << state().toStdString();
        EXPECT_FALSE(importButton()->isEnabled());
    }

    static TemporaryFolder *source;
    const TemporaryFolder folder;
    ImportDialog dialog;
};

TemporaryFolder *ImportDialogTest::source = nullptr;

} // namespace

TEST_F(ImportDialogTest, ShowsWhatGoesWhereAndImportsIt)
{
    showWith(exampleRequest());
    EXPECT_FALSE(importButton()->isEnabled());
    waitForPreview();
    EXPECT_EQ(dialog.request().name, QStringLiteral("sub-01_task-movement_bold"));
    EXPECT_EQ(state(), QStringLiteral("72 x 60 x 60 samples, 3 mm apart, copied as they are; 200 "
                                      "volumes, one each 2 s"));
    auto *const vois = dialog.findChild<QTableWidget *>(QStringLiteral("vois"));
    ASSERT_EQ(vois->rowCount(), 16);
    EXPECT_EQ(vois->item(0, 0)->text(), QStringLiteral("Calcarine L"));
    EXPECT_GT(vois->item(0, 1)->text().toInt(), 0);
    EXPECT_EQ(vois->item(0, 2)->text(), QStringLiteral("0"));
    EXPECT_TRUE(dialog.findChild<QWidget *>(QStringLiteral("conditions"))
                    ->accessibleDescription()
                    .contains(QStringLiteral("rest: ")));
    // So far nothing was written.
    EXPECT_TRUE(folder.entries().isEmpty());

    QTest::mouseClick(importButton(), Qt::LeftButton);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    ASSERT_EQ(dialog.importedFiles().size(), 3);
    for (const QString &file : dialog.importedFiles())
        EXPECT_TRUE(QFileInfo::exists(file)) << file.toStdString();
    EXPECT_EQ(VtcFile(dialog.importedFiles().last()).info().nrOfVolumes, 200);
}

TEST_F(ImportDialogTest, WithoutAFurtherThreadImportsTheSame)
{
    const NoFurtherThread refused;
    showWith(exampleRequest());
    waitForPreview();
    EXPECT_EQ(vois()->rowCount(), 16);
    QTest::mouseClick(importButton(), Qt::LeftButton);
    EXPECT_EQ(dialog.importedFiles().size(), 3);
    EXPECT_EQ(namesIn(folder.path("out")).size(), 4);
}

TEST_F(ImportDialogTest, CleansByTheConfoundsBesideTheRun)
{
    ImportRequest request = exampleRequest();
    request.functional = source->path("sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz");
    request.events.clear();
    showWith(request);
    waitForPreview();
    // Found by its name; nothing is cleaned before a strategy is chosen.
    auto *const confounds = dialog.findChild<FileField *>(QStringLiteral("confounds"));
    EXPECT_EQ(confounds->path(), source->path("sub-01_task-rest_desc-confounds_timeseries.tsv"));
    auto *const motion = dialog.findChild<QWidget *>(QStringLiteral("motion"));
    EXPECT_FALSE(motion->isVisible());

    dialog.findChild<QComboBox *>(QStringLiteral("strategy"))
        ->setCurrentText(QStringLiteral("36P"));
    dialog.findChild<QDoubleSpinBox *>(QStringLiteral("fdThreshold"))->setValue(0.5);
    EXPECT_FALSE(importButton()->isEnabled());
    waitForPreview();
    EXPECT_TRUE(motion->isVisible());
    EXPECT_TRUE(state().endsWith(QStringLiteral(
        "154 volumes, one each 2 s\nCleaned: 36P, order joint, FD > 0.5 mm left out: "
        "154 of 200 volumes kept, 110 degrees of freedom left")))
        << state().toStdString();
    EXPECT_EQ(motion->accessibleDescription(), QStringLiteral("46 of 200 volumes are left out"));

    QTest::mouseClick(importButton(), Qt::LeftButton);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    const VtcFile vtc(dialog.importedFiles().last());
    EXPECT_EQ(vtc.info().nrOfVolumes, 154);
    ASSERT_TRUE(vtc.info().cleaning.has_value());
    EXPECT_EQ(vtc.info().cleaning->kept, 154);
}

TEST_F(ImportDialogTest, TellsWhatTheConfoundsLack)
{
    ImportRequest request = exampleRequest();
    request.cleaning =
        cleaningOf({source->path("sub-01_task-movement_events.tsv"), QStringLiteral("36P"), {}});
    showWith(request);
    waitForFault([this] { return field("confounds")->hasFault(); });
    EXPECT_TRUE(field("confounds")->message().contains(QStringLiteral("expected")))
        << field("confounds")->message().toStdString();
    EXPECT_EQ(vois()->rowCount(), 16);
}

TEST_F(ImportDialogTest, ACancelledImportLeavesNothing)
{
    showWith(exampleRequest());
    waitForPreview();
    ModalDriver driver;
    driver.expect<QProgressDialog>([](QProgressDialog &progress) {
        QTest::mouseClick(progress.findChild<QPushButton *>(), Qt::LeftButton);
    });
    QTest::mouseClick(importButton(), Qt::LeftButton);
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_TRUE(dialog.importedFiles().isEmpty());
    EXPECT_TRUE(folder.entries().isEmpty());
}

TEST_F(ImportDialogTest, SaysWhatItNeedsAndWhatIsOptional)
{
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return state().startsWith(QStringLiteral("Choose a functional run")); }));
    QStringList optional;
    for (const char *name : {"anatomy", "functional", "events", "confounds", "folder"}) {
        const auto *const line =
            dialog.findChild<QWidget *>(QLatin1String(name))->findChild<QLineEdit *>();
        EXPECT_NE(line->placeholderText(), QString()) << name;
        EXPECT_EQ(line->toolTip(), line->placeholderText());
        if (line->placeholderText().startsWith(QStringLiteral("Optional")))
            optional += QLatin1String(name);
    }
    EXPECT_EQ(optional, QStringList({"anatomy", "events", "confounds"}));
    EXPECT_TRUE(sources()->toolTip().startsWith(QStringLiteral("Optional")));
}

TEST_F(ImportDialogTest, SaysWhyItCannotImport)
{
    showWith({});
    ImportRequest request = exampleRequest();
    request.functional = source->path("sub-01_T1w.nii.gz");
    dialog.setRequest(request);
    waitForFault([&] {
        return field("functional")->message().contains(QStringLiteral("expected 4 dimensions"));
    });
    EXPECT_TRUE(field("functional")->hasFault());

    dialog.setRequest(exampleRequest());
    field("folder")->setPath(QString());
    waitForFault([&] {
        return field("folder")->message() == QStringLiteral("missing: a folder for the files");
    });
    field("folder")->setPath(source->path("sub-01_T1w.nii.gz/out"));
    waitForFault(
        [&] { return field("folder")->message().endsWith(QStringLiteral("is no folder")); });
}

TEST_F(ImportDialogTest, TakesAFileThatIsDroppedOnItsField)
{
    dialog.show();
    auto *const field = dialog.findChild<QWidget *>(QStringLiteral("anatomy"));
    auto *const line = field->findChild<QLineEdit *>();
    const QString path = folder.path("T1 \xc3\xa4.nii.gz");
    EXPECT_TRUE(dropOn(line, {path}));
    EXPECT_EQ(dialog.request().anatomy, path);
    // Two files have no place in one field.
    EXPECT_FALSE(dropOn(line, {folder.path("a.nii"), folder.path("b.nii")}));
    EXPECT_EQ(dialog.request().anatomy, path);
}

TEST_F(ImportDialogTest, AsksBeforeItReplacesFiles)
{
    ImportRequest request = exampleRequest();
    request.folder = folder.path();
    request.name = QStringLiteral("run");
    putBytes(folder.path("run.voi"), "mine");
    showWith(request);
    waitForPreview();
    ModalDriver driver;
    driver.expect<QMessageBox>([](QMessageBox &box) {
        EXPECT_TRUE(box.text().contains(QStringLiteral("run.voi")));
        QTest::keyClick(&box, Qt::Key_Return);
    });
    QTest::mouseClick(importButton(), Qt::LeftButton);
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(bytesOf(folder.path("run.voi")), "mine");
}

TEST_F(ImportDialogTest, TellsOfFoldersAsTheyAreWritten)
{
    ImportRequest request = exampleRequest();
    putBytes(folder.path("<b>file"), "not a folder");
    request.folder = folder.path("<b>file/out");
    showWith(request);
    waitForFault([&] { return field("folder")->hasFault(); });
    EXPECT_EQ(field("folder")->message(), folder.path("<b>file") + QStringLiteral(" is no folder"));
}

TEST_F(ImportDialogTest, TellsOfWorkThatFailsInPlainText)
{
    ImportRequest request = exampleRequest();
    request.folder = folder.path();
    request.name = QStringLiteral("<b>run");
    ASSERT_TRUE(QDir().mkpath(folder.path("<b>run.vtc")));
    showWith(request);
    waitForPreview();
    ModalDriver driver;
    driver.expect<QMessageBox>(
        [](QMessageBox &box) { QTest::mouseClick(box.button(QMessageBox::Yes), Qt::LeftButton); });
    driver.expect<QMessageBox>([&](QMessageBox &box) {
        EXPECT_TRUE(box.text().contains(folder.path("<b>run.vtc"))) << box.text().toStdString();
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    QTest::mouseClick(importButton(), Qt::LeftButton);
    EXPECT_TRUE(dialog.isVisible());
}

TEST_F(ImportDialogTest, MayGoBeforeItsPreviewIsDone)
{
    BusyPool pool;
    {
        ImportDialog other;
        other.setRequest(exampleRequest());
        const auto *const state = other.findChild<QLabel *>(QStringLiteral("state"));
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return state->text() == QStringLiteral("Looking at the files..."); }));
    }
    pool.release();
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(30000));
    QCoreApplication::processEvents();
}

TEST_F(ImportDialogTest, TheLastInputCountsWhenItChangesDuringAPreview)
{
    showWith(exampleRequest());
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return state() == QStringLiteral("Looking at the files..."); }));
    dialog.findChild<QDoubleSpinBox *>(QStringLiteral("repetitionTime"))->setValue(2.5);
    waitForPreview();
    EXPECT_TRUE(state().endsWith(QStringLiteral("one each 2.5 s"))) << state().toStdString();
    EXPECT_TRUE(dialog.findChild<QPlainTextEdit *>(QStringLiteral("notes"))
                    ->toPlainText()
                    .contains(QStringLiteral("2.5 s as given")));
}

TEST_F(ImportDialogTest, TellsBesideEachFieldWhatItHoldsAndWhatIsWrong)
{
    showWith(exampleRequest());
    waitForPreview();
    EXPECT_EQ(field("functional")->message(),
              QStringLiteral("60 x 72 x 60 voxels of 3 x 3 x 3 mm, 200 volumes"));
    EXPECT_FALSE(field("functional")->hasFault());
    EXPECT_TRUE(field("events")->message().endsWith(QStringLiteral("conditions")));
    EXPECT_EQ(sources()->item(0, 3)->text(), QStringLiteral("16 names"));
    EXPECT_EQ(field("folder")->message(), QStringLiteral("will be made"));

    // What is wrong with one keeps nothing else from being shown.
    putBytes(folder.path("events.tsv"), "time\tduration\n");
    field("events")->setPath(folder.path("events.tsv"));
    waitForFault([&] { return field("events")->hasFault(); });
    EXPECT_TRUE(field("events")->message().contains(QStringLiteral("expected a column \"onset\"")));
    EXPECT_EQ(field("events")->findChild<QLineEdit *>()->accessibleDescription(),
              field("events")->message());
    EXPECT_EQ(vois()->rowCount(), 16);
    EXPECT_TRUE(state().startsWith(QStringLiteral("72 x 60 x 60 samples")));
    EXPECT_TRUE(state().endsWith(QStringLiteral("stands beside its field.")));

    // An image that turns out to be none only when it is read.
    field("events")->setPath(QString());
    sources()->item(0, 1)->setText(source->path("sub-01_T1w.nii.gz"));
    sources()->item(0, 2)->setText(folder.path("none.tsv"));
    waitForFault(
        [&] { return sources()->item(0, 3)->text().contains(QStringLiteral("none.tsv")); });
    EXPECT_EQ(vois()->rowCount(), 0);
    EXPECT_TRUE(state().startsWith(QStringLiteral("72 x 60 x 60 samples")));
}

TEST_F(ImportDialogTest, TakesVoisOfManyFiles)
{
    const QString mask = folder.path("hand.nii.gz");
    ASSERT_TRUE(QFile::copy(source->path("sub-01_dseg.nii.gz"), mask));
    putBytes(folder.path("places.tsv"), "x\ty\tz\tname\n0\t0\t0\tmiddle\n");
    showWith(exampleRequest());
    EXPECT_TRUE(dropOn(sources()->parentWidget(), {mask, folder.path("places.tsv")}));
    ASSERT_EQ(sources()->rowCount(), 3);
    qobject_cast<QComboBox *>(sources()->cellWidget(1, 0))->setCurrentText(QStringLiteral("mask"));
    waitForPreview();
    ASSERT_EQ(vois()->rowCount(), 18);
    EXPECT_EQ(vois()->item(16, 0)->text(), QStringLiteral("hand"));
    EXPECT_EQ(vois()->item(17, 0)->text(), QStringLiteral("middle"));

    // By the keyboard: the last one goes.
    sources()->setFocus();
    sources()->selectRow(1);
    auto *const remove = dialog.findChild<QPushButton *>(QStringLiteral("removeSource"));
    remove->setFocus();
    QTest::keyClick(remove, Qt::Key_Space);
    waitForPreview();
    EXPECT_EQ(vois()->rowCount(), 17);

    ModalDriver driver;
    driver.expectFile(source->path("sub-01_dseg.tsv"));
    sources()->selectRow(0);
    sources()->item(0, 2)->setText(QString());
    QTest::mouseClick(dialog.findChild<QPushButton *>(QStringLiteral("sourceLabels")),
                      Qt::LeftButton);
    EXPECT_EQ(dialog.request().voiSources[0].labels, source->path("sub-01_dseg.tsv"));
    driver.expectFile(source->path("sub-01_dseg.nii.gz"));
    QTest::mouseClick(dialog.findChild<QPushButton *>(QStringLiteral("addSource")), Qt::LeftButton);
    ASSERT_EQ(dialog.request().voiSources.size(), 3U);
    // The table of the same name comes along.
    EXPECT_EQ(dialog.request().voiSources[2].labels, source->path("sub-01_dseg.tsv"));
}

TEST_F(ImportDialogTest, LetsGoOfVoisFromTheFirstToTheLast)
{
    const QString second = folder.path("second.nii.gz");
    ASSERT_TRUE(QFile::copy(source->path("sub-01_dseg.nii.gz"), second));
    showWith(exampleRequest());
    EXPECT_TRUE(dropOn(sources()->parentWidget(), {second}));
    auto *const remove = dialog.findChild<QPushButton *>(QStringLiteral("removeSource"));
    for (int left = 2; left > 0; --left) {
        ASSERT_EQ(sources()->rowCount(), left);
        sources()->selectRow(0);
        QTest::mouseClick(remove, Qt::LeftButton);
        EXPECT_EQ(dialog.request().voiSources.size(), std::size_t(left - 1));
    }
    EXPECT_FALSE(remove->isEnabled());
}

TEST_F(ImportDialogTest, ShowsTheRunsMeanWithoutAnAnatomy)
{
    ImportRequest request = exampleRequest();
    request.anatomy.clear();
    showWith(request);
    waitForPreview();
    EXPECT_TRUE(notes().contains(QStringLiteral("the mean of the run stands in its place")));
}

/// 1280 x 720 less the frame of a window.
TEST_F(ImportDialogTest, HasItsButtonsInSightOnASmallScreen)
{
    showWith(exampleRequest());
    waitForPreview();
    const QSize screen(1280 - 20, 720 - 60);
    EXPECT_LE(dialog.minimumSizeHint().width(), screen.width());
    EXPECT_LE(dialog.minimumSizeHint().height(), screen.height());
    for (const QSize &size : {screen, QSize(700, 400)}) {
        dialog.resize(size);
        QCoreApplication::processEvents();
        EXPECT_EQ(dialog.size(), size);
        for (QAbstractButton *button : dialog.findChild<QDialogButtonBox *>()->buttons()) {
            const QRect place(button->mapTo(&dialog, QPoint(0, 0)), button->size());
            EXPECT_TRUE(dialog.rect().contains(place)) << button->text().toStdString();
            EXPECT_FALSE(button->visibleRegion().isEmpty());
        }
    }
    // On such a screen nothing has to be scrolled.
    dialog.resize(screen);
    QCoreApplication::processEvents();
    const auto *const scroll = dialog.findChild<QScrollArea *>(QStringLiteral("scroll"));
    EXPECT_EQ(scroll->horizontalScrollBar()->maximum(), 0);
    EXPECT_EQ(scroll->verticalScrollBar()->maximum(), 0);
}

TEST_F(ImportDialogTest, ReachesEachFieldByItsMnemonic)
{
    dialog.show();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    QStringList keys;
    for (QLabel *label : dialog.findChildren<QLabel *>()) {
        const QKeySequence key = QKeySequence::mnemonic(label->text());
        if (label->buddy() == nullptr || !label->buddy()->isEnabled())
            continue;
        ASSERT_FALSE(key.isEmpty()) << label->text().toStdString();
        keys += key.toString();
        importButton()->setFocus();
        QTest::keyClick(&dialog, Qt::Key(key[0] & ~Qt::ALT), Qt::AltModifier);
        const QWidget *const focus = QApplication::focusWidget();
        ASSERT_NE(focus, nullptr);
        EXPECT_TRUE(focus == label->buddy() || label->buddy()->isAncestorOf(focus))
            << label->text().toStdString();
    }
    EXPECT_EQ(keys.size(), 12);
    for (QAbstractButton *button : dialog.findChildren<QPushButton *>())
        if (!QKeySequence::mnemonic(button->text()).isEmpty())
            keys += QKeySequence::mnemonic(button->text()).toString();
    const int all = keys.size();
    EXPECT_EQ(keys.removeDuplicates(), 0) << all;
}

TEST_F(ImportDialogTest, ScrollsThroughManyConditionsAndWarnsOfShortOnes)
{
    QByteArray table = "onset\tduration\ttrial_type\n";
    for (int n = 0; n < 30; ++n)
        table += QByteArray::number(10 * n) + "\t4\tcondition " + QByteArray::number(n) + "\n";
    table += "300\t40\tlong\n340\t4\tlong\n";
    putBytes(folder.path("many.tsv"), table);
    ImportRequest request = exampleRequest();
    request.events = folder.path("many.tsv");
    showWith(request);
    waitForPreview();
    auto *const scroll = dialog.findChild<QScrollArea *>(QStringLiteral("conditionScroll"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return scroll->verticalScrollBar()->maximum() > 0; }));
    scroll->setFocus();
    QTest::keyClick(scroll, Qt::Key_Down);
    EXPECT_GT(scroll->verticalScrollBar()->value(), 0);
    EXPECT_TRUE(notes().contains(QStringLiteral(
        "protocol: condition \"condition 0\": 1 of 1 interval below 10 volumes, the shortest has "
        "2: their matrices say little")))
        << notes().toStdString();
    EXPECT_TRUE(notes().contains(
        QStringLiteral("protocol: condition \"condition 0\" has only 2 volumes in all")));
    EXPECT_TRUE(notes().contains(
        QStringLiteral("protocol: condition \"long\": 1 of 2 intervals below 10 volumes")));
    EXPECT_FALSE(notes().contains(QStringLiteral("condition \"long\" has only")));
}

TEST_F(ImportDialogTest, RemembersWhatTheNextImportHasInCommon)
{
    const QString atlas = folder.path("atlas.nii.gz");
    ASSERT_TRUE(QFile::copy(source->path("sub-01_dseg.nii.gz"), atlas));
    ImportRequest request = exampleRequest();
    request.voiSources = {{VoiSource::Atlas, atlas, source->path("sub-01_dseg.tsv")},
                          {VoiSource::Mask, source->path("sub-01_dseg.nii.gz")}};
    request.voiGrid = VoiGrid::Anatomy;
    request.folder = folder.path("subjects/first");
    showWith(request);
    waitForPreview();
    QTest::mouseClick(importButton(), Qt::LeftButton);
    ASSERT_EQ(dialog.result(), QDialog::Accepted);

    ImportDialog next;
    EXPECT_EQ(next.request().voiGrid, VoiGrid::Anatomy);
    // The mask is of one subject alone.
    ASSERT_EQ(next.request().voiSources.size(), 1U);
    EXPECT_EQ(next.request().voiSources[0].file, atlas);
    EXPECT_EQ(next.request().voiSources[0].labels, source->path("sub-01_dseg.tsv"));
    EXPECT_EQ(next.request().folder, QString());
    ImportRequest files;
    files.functional = source->path("sub-01_task-movement_bold.nii.gz");
    next.setFiles(files);
    EXPECT_EQ(next.request().folder, folder.path("subjects/sub-01"));
    EXPECT_EQ(next.request().voiSources.size(), 1U);
    // Until the user gives another.
    next.findChild<FileField *>(QStringLiteral("folder"))->setPath(folder.path("mine"));
    files.functional = source->path("sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz");
    next.setFiles(files);
    EXPECT_EQ(next.request().folder, folder.path("mine"));
}

TEST_F(ImportDialogTest, SaysWhoseDataItTakesThemFor)
{
    showWith(exampleRequest());
    auto *const subject = dialog.findChild<QLineEdit *>(QStringLiteral("subject"));
    auto *const space = dialog.findChild<QLineEdit *>(QStringLiteral("space"));
    EXPECT_EQ(subject->placeholderText(), QStringLiteral("sub-01"));
    EXPECT_EQ(space->placeholderText(), QStringLiteral("not known"));
    space->setText(QStringLiteral("T1w"));
    waitForPreview();
    QTest::mouseClick(importButton(), Qt::LeftButton);
    const Provenance written = VtcFile(dialog.importedFiles().last()).info().provenance;
    EXPECT_EQ(written.subject, QStringLiteral("sub-01"));
    EXPECT_EQ(written.space, QStringLiteral("T1w"));
}

} // namespace corvane
