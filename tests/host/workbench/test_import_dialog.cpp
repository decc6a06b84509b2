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
#include <QTableWidget>
#include <QTest>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

class ImportDialogTest : public testing::Test
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
    ASSERT_TRUE(QTest::qWaitFor(
        [this] { return state().contains(QStringLiteral("sub-01_task-movement_events.tsv: ")); },
        30000))
        << state().toStdString();
    EXPECT_FALSE(importButton()->isEnabled());
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
    EXPECT_TRUE(state().startsWith(QStringLiteral("Choose an anatomy")));
    QStringList optional;
    for (const char *name : {"anatomy", "functional", "atlas", "labels", "events", "folder"}) {
        const auto *const line =
            dialog.findChild<QWidget *>(QLatin1String(name))->findChild<QLineEdit *>();
        EXPECT_NE(line->placeholderText(), QString()) << name;
        EXPECT_EQ(line->toolTip(), line->placeholderText());
        if (line->placeholderText().startsWith(QStringLiteral("Optional")))
            optional += QLatin1String(name);
    }
    EXPECT_EQ(optional, QStringList({"atlas", "labels", "events"}));
}

TEST_F(ImportDialogTest, SaysWhyItCannotImport)
{
    showWith({});
    ImportRequest request = exampleRequest();
    request.functional = source->path("sub-01_T1w.nii.gz");
    dialog.setRequest(request);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return state().contains(QStringLiteral("expected 4 dimensions")); }, 30000));
    EXPECT_FALSE(importButton()->isEnabled());

    request = exampleRequest();
    request.folder.clear();
    dialog.setRequest(request);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return state().endsWith(QStringLiteral("Choose a folder to import into.")); },
        30000));
    EXPECT_FALSE(importButton()->isEnabled());
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
    waitForPreview();
    ModalDriver driver;
    driver.expect<QMessageBox>([&](QMessageBox &box) {
        EXPECT_TRUE(box.text().contains(folder.path("<b>file"))) << box.text().toStdString();
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

} // namespace corvane
