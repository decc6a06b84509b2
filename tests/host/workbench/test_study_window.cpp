// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window of a study: its table, what it opens, and the step that computes it.
#include "host/explorer/explorer_window.h"
#include "host/session/session.h"
#include "host/workbench/cohort_run.h"
#include "host/workbench/file_field.h"
#include "host/workbench/main_window.h"
#include "host/workbench/result_opener.h"
#include "host/workbench/study_table.h"
#include "host/workbench/study_window.h"
#include "host/workbench/volume_view.h"
#include "tests/host/explorer/result_folder.h"
#include "tests/host/study/known_study.h"

#include <QAbstractItemModelTester>
#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTableView>
#include <QTest>
#include <QUrl>
#include <gmock/gmock.h>

namespace corvane
{

/// Takes the places that are opened in other programs.
class Opened : public QObject
{
    Q_OBJECT

public:
    Opened() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open"); }
    ~Opened() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    QStringList paths;

public Q_SLOTS:
    void open(const QUrl &url) { paths += url.toLocalFile(); }
};

namespace
{

constexpr auto head = "participant_id\tsession_id\ttask_id\tspace_id\trun\tatlas_id\tstatus\t"
                      "volumes\tkept\tmean_fd_before\treason\n";

QByteArray row(const char *participant, const char *session, const char *status, const char *kept,
               const char *reason)
{
    return QByteArray(participant) + '\t' + session + "\trest\tT1w\t" + participant +
           "_task-rest\tA\t" + status + "\t200\t" + kept + "\t0.123456789\t" + reason + '\n';
}

class StudyWindowTest : public testing::Test
{
protected:
    StudyWindowTest()
    {
        putBytes(folder.path("participants_connectome.tsv"),
                 head + row("sub-01", "a", "done", "190", "n/a") +
                     row("sub-02", "n/a", "excluded", "90", "too little is left") +
                     row("sub-03", "n/a", "done", "1000", "n/a"));
        put("sub-01/ses-a/func/sub-01_task-rest_atlas-A_report.html");
        put("sub-03.html");
    }

    void put(const char *name)
    {
        const QString path = folder.path(name);
        QDir().mkpath(QFileInfo(path).path());
        putBytes(path, "x");
    }
    /// Opens the study in a window that computes by this script of the shell.
    void show(const QByteArray &script = "exit 1\n")
    {
        const QString program = scripts.path("Computes");
        putBytes(program, "#!/bin/sh\n" + script);
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        window = std::make_unique<StudyWindow>(nullptr, program);
        window->openStudy(folder.path());
        window->show();
    }
    template <typename Widget>
    Widget *child(const char *name) const
    {
        auto *const found = window->findChild<Widget *>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QPushButton *button(const char *name) const { return child<QPushButton>(name); }
    QStringList column(int number) const
    {
        const QAbstractItemModel *const model = child<QTableView>("rows")->model();
        QStringList texts;
        for (int n = 0; n < model->rowCount(); ++n)
            texts += model->index(n, number).data().toString();
        return texts;
    }
    void select(int number) const { child<QTableView>("rows")->selectRow(number); }
    void fillForm() const
    {
        child<FileField>("dataset")->setPath(QStringLiteral("/the data"));
        child<FileField>("atlas")->setPath(QStringLiteral("/atlas.nii"));
        child<QComboBox>("clean")->setCurrentText(QStringLiteral("36P"));
        child<QSpinBox>("processes")->setValue(1);
    }
    QString said() const { return child<QPlainTextEdit>("said")->toPlainText(); }

    const TemporaryFolder folder;
    const TemporaryFolder scripts;
    std::unique_ptr<StudyWindow> window;
};

TEST_F(StudyWindowTest, ShowsTheTableWithWhatBecameOfEachRun)
{
    show();
    EXPECT_EQ(column(0), (QStringList{QStringLiteral("sub-01"), QStringLiteral("sub-02"),
                                      QStringLiteral("sub-03")}));
    EXPECT_EQ(child<QLabel>("summary")->text(), QStringLiteral("2 done, 1 excluded"));
    const QAbstractItemModel *const model = child<QTableView>("rows")->model();
    EXPECT_EQ(model->headerData(0, Qt::Horizontal).toString(), QStringLiteral("Participant"));
    EXPECT_EQ(model->headerData(9, Qt::Horizontal).toString(), QStringLiteral("Mean FD before"));
    EXPECT_EQ(model->index(0, 9).data().toString(), QStringLiteral("0.12346"));
    const auto colour = [&](int number) {
        return model->index(number, 6).data(Qt::BackgroundRole).value<QColor>();
    };
    EXPECT_NE(colour(0), colour(1));
    EXPECT_EQ(colour(0), colour(2));
    EXPECT_TRUE(child<QLabel>("reason")->text().isEmpty());
    select(1);
    EXPECT_EQ(child<QLabel>("reason")->text(), QStringLiteral("too little is left"));
}

TEST_F(StudyWindowTest, RowsAreFilteredAndSortedByNumbers)
{
    show();
    child<QLineEdit>("text")->setText(QStringLiteral("TOO LITTLE"));
    EXPECT_EQ(column(0), QStringList{QStringLiteral("sub-02")});
    child<QLineEdit>("text")->clear();
    child<QComboBox>("status")->setCurrentText(QStringLiteral("done"));
    EXPECT_EQ(column(0), (QStringList{QStringLiteral("sub-01"), QStringLiteral("sub-03")}));
    child<QComboBox>("status")->setCurrentIndex(0);
    child<QTableView>("rows")->sortByColumn(8, Qt::DescendingOrder);
    EXPECT_EQ(column(8),
              (QStringList{QStringLiteral("1000"), QStringLiteral("190"), QStringLiteral("90")}));
}

TEST_F(StudyWindowTest, OpensTheBestPageThereIsAndTheFiles)
{
    show();
    Opened opened;
    EXPECT_FALSE(button("report")->isEnabled());
    EXPECT_FALSE(button("studyReport")->isEnabled());
    select(0);
    button("report")->click();
    button("files")->click();
    select(1);
    EXPECT_FALSE(button("report")->isEnabled());
    EXPECT_FALSE(button("files")->isEnabled());
    select(2);
    button("report")->click();
    put("index.html");
    button("reload")->click();
    button("studyReport")->click();
    EXPECT_EQ(opened.paths,
              (QStringList{folder.path("sub-01/ses-a/func/sub-01_task-rest_atlas-A_report.html"),
                           folder.path("sub-01/ses-a/func"), folder.path("sub-03.html"),
                           folder.path("index.html")}));
}

TEST_F(StudyWindowTest, OffersTheMatricesOfARowThatIsDone)
{
    show();
    EXPECT_FALSE(button("explore")->isEnabled());
    QSignalSpy chosen(window.get(), &StudyWindow::resultChosen);
    select(0);
    button("explore")->click();
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen[0][0].toString(), folder.path("sub-01/ses-a/func"));
    EXPECT_EQ(chosen[0][1].toString(), QStringLiteral("sub-01_task-rest_atlas-A"));
    select(1);
    EXPECT_FALSE(button("explore")->isEnabled()) << "it was excluded";
}

TEST_F(StudyWindowTest, AnotherTableIsToldAndAnEmptyFolderIsNoFault)
{
    show();
    putBytes(folder.path("participants_connectome.tsv"), "participant_id\tage\nsub-01\t30\n");
    button("reload")->click();
    EXPECT_THAT(child<QLabel>("summary")->text().toStdString(), testing::HasSubstr("run"));
    EXPECT_EQ(column(0), QStringList());
    QFile::remove(folder.path("participants_connectome.tsv"));
    button("reload")->click();
    EXPECT_EQ(child<QLabel>("summary")->text(),
              QStringLiteral("There is no study in this folder yet."));
}

TEST_F(StudyWindowTest, ComputesWithProgressAndShowsWhatCame)
{
    show(R"sh(
echo "$@" >> arguments-of-the-test
case " $* " in
*" plan "*) echo "OUT: 3 rows of 3 participants, 2 to do" ;;
*) echo "sub-01_atlas-A: done, 154 of 200 volumes kept"
   echo "waiting for nothing"
   printf '%s' "$NEW_TABLE" > "$TABLE"
   echo "sub-02_atlas-A: excluded: too little" ;;
esac
)sh");
    qputenv("NEW_TABLE", head + row("sub-09", "n/a", "done", "5", "n/a"));
    qputenv("TABLE", folder.path("participants_connectome.tsv").toUtf8());
    EXPECT_FALSE(button("compute")->isEnabled());
    fillForm();
    child<QLineEdit>("options")->setText(QStringLiteral("--task-id \"a b\""));
    ASSERT_TRUE(button("compute")->isEnabled());
    QSignalSpy progress(child<QProgressBar>("progress"), &QProgressBar::valueChanged);
    const QString before = QDir::currentPath();
    QDir::setCurrent(scripts.path());
    button("compute")->click();
    EXPECT_FALSE(button("compute")->isEnabled());
    EXPECT_TRUE(button("cancel")->isEnabled());
    ASSERT_TRUE(QTest::qWaitFor([&] { return button("compute")->isEnabled(); }, 30000));
    QDir::setCurrent(before);
    const QByteArray same = "/the data " + folder.path().toUtf8();
    const QByteArray options = " --atlas /atlas.nii --clean 36P --nprocs 1 --task-id a b\n";
    EXPECT_EQ(bytesOf(scripts.path("arguments-of-the-test")).toStdString(),
              ("cohort " + same + " plan" + options + "cohort " + same + " participant" + options)
                  .toStdString());
    EXPECT_EQ(said(), QStringLiteral("sub-01_atlas-A: done, 154 of 200 volumes kept\n"
                                     "waiting for nothing\nsub-02_atlas-A: excluded: too little"));
    EXPECT_EQ(column(0), QStringList{QStringLiteral("sub-09")});
    QList<int> values;
    for (const QList<QVariant> &value : progress)
        values += value.first().toInt();
    EXPECT_THAT(values, testing::IsSupersetOf({1, 2}));
    EXPECT_FALSE(button("cancel")->isEnabled());
}

TEST_F(StudyWindowTest, WhatGoesWrongIsTold)
{
    show("echo 'Corvane: no such folder: /the data' >&2\nexit 1\n");
    fillForm();
    button("compute")->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return button("compute")->isEnabled(); }, 30000));
    EXPECT_EQ(said(), QStringLiteral("Corvane: no such folder: /the data"));
}

TEST_F(StudyWindowTest, IsCancelled)
{
    show(R"sh(
case " $* " in
*" plan "*) echo "OUT: 3 rows of 3 participants, 3 to do" ;;
*) trap 'echo ended by the signal; exit 143' TERM
   echo "sub-01_atlas-A: done, 154 of 200 volumes kept"
   while true; do sleep 0.1; done ;;
esac
)sh");
    fillForm();
    button("compute")->click();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return child<QProgressBar>("progress")->value() == 1; }, 30000));
    button("cancel")->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return button("compute")->isEnabled(); }, 30000));
    EXPECT_EQ(said(), QStringLiteral("sub-01_atlas-A: done, 154 of 200 volumes kept\n"
                                     "ended by the signal\ncancelled"));
}

TEST_F(StudyWindowTest, TheProcessEndsWithTheWindow)
{
    show(R"sh(
case " $* " in
*" plan "*) echo "OUT: 3 rows of 3 participants, 3 to do" ;;
*) trap 'echo ended > "$ENDED"; exit 143' TERM
   echo "sub-01_atlas-A: done"
   while true; do sleep 0.1; done ;;
esac
)sh");
    qputenv("ENDED", scripts.path("ended").toUtf8());
    fillForm();
    button("compute")->click();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return child<QProgressBar>("progress")->value() == 1; }, 30000));
    window.reset();
    EXPECT_EQ(bytesOf(scripts.path("ended")), "ended\n");
}

TEST_F(StudyWindowTest, TestsTheGroupByWhatItsFormSays)
{
    show(R"sh(
for word in "$@"; do echo "$word" >> arguments-of-the-test; done
mkdir -p "$STUDY/group"; echo page > "$STUDY/group/group.html"
echo "$STUDY/group: 24 rows, 38 nodes, 1 test"
)sh");
    qputenv("STUDY", folder.path().toUtf8());
    const TemporaryFolder dataset;
    putBytes(dataset.path("participants.tsv"), "participant_id\tgroup\tage\nsub-01\tC\t40\n");
    auto *const form = child<QWidget>("group");
    auto *const run = form->findChild<QPushButton *>(QStringLiteral("run"));
    auto *const report = form->findChild<QPushButton *>(QStringLiteral("groupReport"));
    const auto text = [&](const char *name) {
        return form->findChild<QLineEdit *>(QLatin1String(name));
    };
    const auto check = [&](const char *name) {
        return form->findChild<QCheckBox *>(QLatin1String(name));
    };
    child<FileField>("dataset")->setPath(dataset.path());
    EXPECT_EQ(form->findChild<QLabel *>(QStringLiteral("columns"))->text(),
              QStringLiteral("It may name group, age, mean_fd, degrees_of_freedom."));
    EXPECT_FALSE(run->isEnabled());
    check("glm")->setChecked(false);
    check("qcfc")->setChecked(true);
    EXPECT_TRUE(run->isEnabled()); // needs no model
    check("nbs")->setChecked(true);
    EXPECT_FALSE(run->isEnabled());
    text("formula")->setText(QStringLiteral("group + age"));
    text("contrast")->setText(QStringLiteral("patients=group[P]"));
    ASSERT_TRUE(run->isEnabled());
    text("threshold")->clear();
    EXPECT_FALSE(run->isEnabled());
    text("threshold")->setText(QStringLiteral("2.5"));
    text("furtherOptions")->setText(QStringLiteral("--task-id rest"));
    EXPECT_FALSE(report->isEnabled());

    const QString before = QDir::currentPath();
    QDir::setCurrent(scripts.path());
    run->click();
    EXPECT_FALSE(run->isEnabled());
    EXPECT_FALSE(button("compute")->isEnabled());
    EXPECT_TRUE(button("cancel")->isEnabled());
    ASSERT_TRUE(QTest::qWaitFor([&] { return run->isEnabled(); }, 30000));
    QDir::setCurrent(before);
    EXPECT_EQ(bytesOf(scripts.path("arguments-of-the-test")).split('\n'),
              (QList<QByteArray>{"cohort", dataset.path().toUtf8(), folder.path().toUtf8(), "group",
                                 "--test=nbs,qcfc", "--permutations=5000", "--formula=group + age",
                                 "--contrast=patients=group[P]", "--threshold=2.5", "--plots",
                                 "--page", "--task-id", "rest", ""}));
    EXPECT_EQ(said(), folder.path() + QStringLiteral("/group: 24 rows, 38 nodes, 1 test"));
    Opened opened;
    ASSERT_TRUE(report->isEnabled());
    report->click();
    EXPECT_EQ(opened.paths, QStringList{folder.path("group/group.html")});
}

TEST(StudyWindow, KnowsWhatTheStudyWasComputedWith)
{
    KnownStudy study;
    study.addParticipants(2);
    QStringList words =
        study.arguments(QStringLiteral("participant"),
                        {QStringLiteral("--measure=pearson,covariance"),
                         QStringLiteral("--per-interval"), QStringLiteral("--events")});
    words.removeAll(QStringLiteral("--no-pages"));
    ASSERT_EQ(runCorvane(words).status, 0);
    StudyWindow window(nullptr, QStringLiteral(CORVANE_PROGRAM));
    window.openStudy(study.out());
    const auto path = [&](const char *name) {
        return window.findChild<FileField *>(QLatin1String(name))->path();
    };
    EXPECT_EQ(path("dataset"), study.dataset());
    EXPECT_EQ(path("atlas"), study.atlas());
    EXPECT_EQ(window.findChild<QComboBox *>(QStringLiteral("clean"))->currentText(),
              QStringLiteral("columns:trouble"));
    auto *const compute = window.findChild<QPushButton *>(QStringLiteral("compute"));
    auto *const progress = window.findChild<QProgressBar *>(QStringLiteral("progress"));
    ASSERT_TRUE(compute->isEnabled());
    compute->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return compute->isEnabled(); }, 60000));
    const QString said = window.findChild<QPlainTextEdit *>(QStringLiteral("said"))->toPlainText();
    EXPECT_EQ(said.toStdString(), study.out().toStdString() + ": 2 rows: 2 done");
    EXPECT_EQ(progress->value(), 1);
}

TEST(Workbench, HasOneWindowForStudies)
{
    Session session;
    MainWindow window(session);
    window.show();
    for (int time = 0; time < 2; ++time) {
        for (QAction *action : window.findChildren<QAction *>())
            if (action->text() == QLatin1String("Open &Study..."))
                action->trigger();
        const QList<StudyWindow *> studies = window.findChildren<StudyWindow *>();
        ASSERT_EQ(studies.size(), 1);
        EXPECT_TRUE(studies.first()->isVisible());
        studies.first()->close();
    }
}

TEST(Workbench, CrossHairFollowsTheNodeOfAResult)
{
    const ExampleResult files;
    const TemporaryFolder folder;
    Vmr vmr;
    vmr.space = VmrSpace{{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, {-120, -130, -100}};
    vmr.voxels = std::shared_ptr<const void>(
        new quint8[std::size_t(Vmr::voxelCount)](),
        [](const void *voxels) { delete[] static_cast<const quint8 *>(voxels); });
    writeVmr(folder.path("a.vmr"), vmr);
    Session session;
    MainWindow window(session);
    window.show();
    window.openFiles({folder.path("a.vmr")});
    auto *const results = window.findChild<ResultOpener *>();
    ASSERT_NE(results, nullptr);
    QSignalSpy failed(results, &ResultOpener::failed);
    results->open(files.path());
    EXPECT_EQ(failed.size(), 0);
    auto *const explorer = window.findChild<ExplorerWindow *>();
    ASSERT_NE(explorer, nullptr);
    EXPECT_TRUE(explorer->isVisible());
    explorer->model().select(3); // at (0, 80, 12) mm
    EXPECT_EQ(window.findChild<VolumeView *>()->scene().cross, (CubeVoxel{120, 210, 112}));
    explorer->close();
}

TEST(ResultOpener, TellWhatCannotBeOpened)
{
    const TemporaryFolder folder;
    QWidget parent;
    ResultOpener results(&parent);
    QSignalSpy failed(&results, &ResultOpener::failed);
    results.open(folder.path());
    ASSERT_EQ(failed.size(), 1);
    EXPECT_TRUE(failed[0][0].toString().contains(QLatin1String("none of a finished result")));
    EXPECT_TRUE(parent.findChildren<ExplorerWindow *>().isEmpty());
}

TEST(CohortRun, FollowsTheProgramItself)
{
    KnownStudy study;
    study.addParticipants(3);
    CohortRun run(nullptr, QStringLiteral(CORVANE_PROGRAM));
    const QSignalSpy progress(&run, &CohortRun::progressed);
    QSignalSpy ended(&run, &CohortRun::ended);
    const QStringList options{QStringLiteral("--atlas"), study.atlas(), QStringLiteral("--clean"),
                              QStringLiteral("columns:trouble")};
    run.start(study.dataset(), study.out(), options);
    ASSERT_TRUE(ended.wait(120000));
    EXPECT_EQ(ended.takeFirst().first().toString(), QString());
    ASSERT_GE(progress.size(), 1);
    EXPECT_EQ(progress.last(), (QList<QVariant>{3, 3}));
    StudyTable table;
    table.read(study.out());
    EXPECT_EQ(table.summary(), QStringLiteral("3 done"));
    // Then there is nothing to do.
    run.start(study.dataset(), study.out(), options);
    ASSERT_TRUE(ended.wait(120000));
    EXPECT_EQ(ended.takeFirst().first().toString(), QString());
    EXPECT_EQ(progress.last(), (QList<QVariant>{0, 0}));
    // Wrong options end with their reason.
    run.start(study.dataset(), study.out(), {QStringLiteral("--clean"), QStringLiteral("best")});
    ASSERT_TRUE(ended.wait(120000));
    EXPECT_NE(ended.takeFirst().first().toString(), QString());
}

TEST(CohortRun, AProgramThatIsNotThereIsTold)
{
    CohortRun run(nullptr, QStringLiteral("/nowhere/Corvane"));
    QSignalSpy ended(&run, &CohortRun::ended);
    run.start(QStringLiteral("a"), QStringLiteral("b"), {});
    ASSERT_TRUE(!ended.isEmpty() || ended.wait(30000));
    EXPECT_NE(ended.first().first().toString(), QString());
    EXPECT_FALSE(run.isRunning());
}

TEST(StudyTable, IsASoundModel)
{
    const TemporaryFolder folder;
    putBytes(folder.path("participants_connectome.tsv"),
             head + row("sub-01", "n/a", "done", "5", "n/a"));
    StudyTable table;
    const QAbstractItemModelTester tester(&table,
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    table.read(folder.path());
    EXPECT_EQ(table.rowCount(), 1);
    EXPECT_EQ(table.text(0, "session_id"), QString());
    EXPECT_EQ(table.text(0, "no such column"), QString());
    table.read(folder.path("elsewhere"));
    EXPECT_EQ(table.rowCount(), 0);
}

} // namespace
} // namespace corvane

#include "test_study_window.moc"
