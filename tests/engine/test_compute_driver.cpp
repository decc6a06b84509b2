// SPDX-License-Identifier: GPL-3.0-or-later
//
// The compute, from the button to the finished subject in the list.
#include "dataset/plugin_settings.h"
#include "engine/assembly.h"
#include "engine/connectivity_object.h"
#include "engine/sign_treatment.h"
#include "engine/spanning_trees.h"
#include "tests/gui_test.h"
#include "tests/support/busy_pool.h"
#include "tests/support/dataset_fixture.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QThreadPool>
#include <nodalis/nodalis.h>

#include <gmock/gmock.h>

#include <cmath>

namespace
{

using Matrices = std::vector<Eigen::MatrixXf>;
using testing::ElementsAre;

/// Equal size and bits; NaN equals NaN.
bool same(const Eigen::MatrixXf &a, const Eigen::MatrixXf &b)
{
    if (a.rows() != b.rows() || a.cols() != b.cols())
        return false;
    for (Eigen::Index i = 0; i < a.size(); ++i) {
        const float x = a.data()[i];
        const float y = b.data()[i];
        if (!(x == y || (std::isnan(x) && std::isnan(y))))
            return false;
    }
    return true;
}

class Compute : public DatasetFixture
{
protected:
    Compute() { find<QCheckBox>("chkBox_ShowResults")->setChecked(false); }
    ~Compute() override
    {
        PluginSettings::instance()->dumpAll = false;
        PluginSettings::instance()->verboseLogging = false;
    }

    int addSelectedRow(const QVector<int> &seeds = {0, 3, 5, 8})
    {
        const int row = addReadyRow();
        selectProfile(row);
        selectSeeds(seeds);
        return row;
    }
    QPushButton *computeButton() { return find<QPushButton>("btn_Compute"); }
    bool isEnabled(const char *name) { return find<QWidget>(name)->isEnabled(); }

    /// Nothing of a compute is to be seen, and it can be tried again.
    void expectNothingHappened()
    {
        EXPECT_TRUE(objects().isEmpty());
        EXPECT_EQ(results()->count(), 0);
        EXPECT_FALSE(isEnabled("tab_Graphs"));
        EXPECT_TRUE(computeButton()->isEnabled());
        EXPECT_FALSE(subject(0).computed());
        EXPECT_TRUE(resultsDialogs().isEmpty());
    }

    /// A VTC that links a protocol with these conditions.
    QString addVtcWithProtocol(const QString &name, std::vector<fake_host::Condition> conditions,
                               int volumes = 40)
    {
        fake_host::Protocol protocol;
        protocol.name = "task";
        protocol.conditions = std::move(conditions);
        const QString prt = addProtocol(name + ".prt", protocol);
        fake_host::Vtc vtc = fake_host::makeVtc({{{50, 58}, {60, 68}, {70, 78}}}, 1, volumes);
        vtc.linkProtocol(prt.toLatin1().toStdString());
        return addVtc(name, vtc);
    }
    /// One finished subject with such a protocol.
    ConnectivityObject *computeWithProtocol(std::vector<fake_host::Condition> conditions,
                                            int volumes = 40)
    {
        click("cbox_UseProtocol");
        const int row = addRow();
        finishRow(row, addVtcWithProtocol("task.vtc", std::move(conditions), volumes),
                  addVois("set.voi"));
        computeRow(row, {0, 3, 5, 8});
        return object(0);
    }
};

TEST_F(Compute, MakesAResultAndListsIt)
{
    addSelectedRow();
    rename(0, "Ann"); // the model takes it, although the table would not
    compute();
    ASSERT_EQ(objects().size(), 1);
    EXPECT_EQ(object(0)->name(), "Ann");
    EXPECT_EQ(object(0)->parent(), &dialog());
    EXPECT_EQ(object(0)->subject(), &subject(0));
    ASSERT_EQ(object(0)->matrices().size(), 1u);
    EXPECT_EQ(object(0)->matrices()[0].rows(), 4);
    EXPECT_TRUE(object(0)->mstComputed());
    EXPECT_EQ(object(0)->property("unsavedResults").toString(), "Ann");

    ASSERT_EQ(results()->count(), 1);
    EXPECT_EQ(results()->item(0)->text(), "Ann");
    EXPECT_EQ(results()->item(0)->data(Qt::UserRole), 0);
    EXPECT_EQ(results()->item(0)->type(), 0);
    EXPECT_TRUE(isEnabled("tab_Graphs"));
    EXPECT_FALSE(isEnabled("cbox_GraphDistance"));
    EXPECT_FALSE(isEnabled("btn_ComputeGraphDistance"));
    EXPECT_TRUE(subject(0).computed());
    EXPECT_FALSE(computeButton()->isEnabled());
    EXPECT_TRUE(resultsDialogs().isEmpty());
}

TEST_F(Compute, DisablesTheButtonForThatSubjectAlone)
{
    addSelectedRow();
    compute();
    addReadyRow();
    selectProfile(1);
    EXPECT_TRUE(computeButton()->isEnabled());
    selectProfile(0);
    EXPECT_FALSE(computeButton()->isEnabled());
}

TEST_F(Compute, OpensTheResultsWhenAsked)
{
    addSelectedRow();
    click("chkBox_ShowResults");
    compute();
    EXPECT_EQ(resultsDialogs().size(), 1);
    closeDialog();
    EXPECT_TRUE(resultsDialogs().isEmpty());
}

struct Case {
    const char *name;
    int measure;
    int values;
};

class ComputeCase : public Compute, public testing::WithParamInterface<Case>
{
};

INSTANTIATE_TEST_SUITE_P(
    Measures, ComputeCase,
    testing::Values(Case{"CorrelationAbsolute", 1, 0}, Case{"CorrelationPositive", 1, 1},
                    Case{"CorrelationNegative", 1, 2}, Case{"PartialAbsolute", 2, 0},
                    Case{"PartialPositive", 2, 1}, Case{"PartialNegative", 2, 2}),
    [](const auto &test) { return std::string(test.param.name); });

TEST_P(ComputeCase, IsTheRoadOfTheEngine)
{
    addSelectedRow({8, 0, 5, 3});
    const char *const valueButtons[] = {"rbtn_AbsoluteMtx", "rbtn_PositiveMtx", "rbtn_NegativeMtx"};
    click(GetParam().measure == 1 ? "rbtn_Correlation" : "rbtn_PartialCorrelation");
    click(valueButtons[GetParam().values]);
    compute();

    const QVector<int> seeds = subject(0).scheme().seedVois;
    const Eigen::MatrixXf series =
        subject(0).averagedTimeseries(std::vector<int>(seeds.begin(), seeds.end()));
    ASSERT_EQ(series.rows(), 4);
    ASSERT_EQ(series.cols(), 40);
    Eigen::MatrixXf expected =
        GetParam().measure == 1 ? correlationMatrix(series) : partialCorrelationMatrix(series);
    treatSigns(expected, static_cast<MatrixValues>(GetParam().values));
    nodalis::treatment(expected);
    ASSERT_EQ(objects().size(), 1);
    EXPECT_TRUE(same(object(0)->matrices().at(0), expected));
    EXPECT_TRUE(same(object(0)->mstMatrices().at(0), spanningTrees({expected}).weights.at(0)));
    EXPECT_EQ(object(0)->mstTrees().at(0), spanningTrees({expected}).trees.at(0));
}

TEST_F(Compute, WithoutTheFilterThereAreNoTrees)
{
    addSelectedRow();
    click("chkBox_ComputeMST");
    compute();
    EXPECT_FALSE(object(0)->mstComputed());
    EXPECT_TRUE(object(0)->mstMatrices().empty());
}

// Names

TEST_F(Compute, DuplicateNameIsRefused)
{
    addSelectedRow();
    compute();
    const int row = addReadyRow();
    rename(row, "Subject 1");
    selectProfile(row);
    selectSeeds({0, 1});
    modals.expect<QMessageBox>([this](QMessageBox &box) {
        EXPECT_EQ(box.windowTitle(), "Cannot continue...");
        EXPECT_EQ(box.text(), "Duplicate subject name found. Aborting.");
        EXPECT_EQ(box.parentWidget(), &dialog());
        box.accept();
    });
    click("cbox_UseProtocol");
    compute();
    EXPECT_EQ(objects().size(), 1);
    EXPECT_EQ(results()->count(), 1);
    EXPECT_FALSE(subject(row).computed());
    EXPECT_TRUE(subject(row).useProtocol()) << "what the box said stays in the record";
    EXPECT_TRUE(computeButton()->isEnabled());
}

TEST_F(Compute, NamesThatDifferInCaseBothCompute)
{
    addSelectedRow();
    compute();
    const int row = addReadyRow();
    rename(row, "subject 1");
    computeRow(row, {0, 1});
    EXPECT_EQ(objects().size(), 2);
    EXPECT_EQ(results()->item(1)->text(), "subject 1");
    EXPECT_EQ(results()->item(1)->data(Qt::UserRole), 1);
}

TEST_F(Compute, SecondComputeOfASubjectIsRefusedByItsName)
{
    addSelectedRow();
    compute();
    const Matrices before = object(0)->matrices();
    selectSeeds({1, 2}); // which enables the button again
    EXPECT_TRUE(computeButton()->isEnabled());
    modals.expectMessage("Cannot continue...", "Duplicate subject name found. Aborting.");
    compute();
    EXPECT_EQ(objects().size(), 1);
    EXPECT_TRUE(same(object(0)->matrices().at(0), before.at(0)));
    // Under a new name it is another result of the same record.
    rename(0, "Ann");
    compute();
    ASSERT_EQ(objects().size(), 2);
    EXPECT_EQ(object(0)->subject(), object(1)->subject());
    EXPECT_EQ(object(0)->name(), "Subject 1");
    EXPECT_EQ(object(1)->matrices().at(0).rows(), 2);
}

TEST_F(Compute, MainDialogClosedUnderTheMessageEndsTheSlot)
{
    addSelectedRow();
    compute();
    selectSeeds({1, 2});
    modals.expect<QMessageBox>([this](QMessageBox &) { closeDialog(); });
    compute();
    EXPECT_EQ(modals.remaining(), 0u);
}

// The protocol

TEST_F(Compute, WithProtocolOneMatrixPerIntervalInOrderOfTime)
{
    const ConnectivityObject *const result =
        computeWithProtocol({{"A", {{1, 10}, {21, 30}}}, {"B", {{11, 20}}}});
    EXPECT_TRUE(result->subject()->useProtocol());
    ASSERT_EQ(result->matrices().size(), 3u);
    EXPECT_EQ(result->mstMatrices().size(), 3u);
    EXPECT_EQ(result->mstTrees().size(), 3u);
    EXPECT_EQ(result->volumeNames().values(), (QStringList{"A", "B", "A"}));
    const Eigen::MatrixXf series = subject(0).averagedTimeseries({0, 3, 5, 8});
    for (int slice = 0; slice < 3; ++slice) {
        Eigen::MatrixXf expected = correlationMatrix(series.middleCols(10 * slice, 10));
        treatSigns(expected, MatrixValues::Absolute);
        nodalis::treatment(expected);
        EXPECT_TRUE(same(result->matrices().at(slice), expected)) << slice;
    }
}

TEST_F(Compute, ProtocolUnusedMeansOneMatrix)
{
    const int row = addRow();
    finishRow(row, addVtcWithProtocol("task.vtc", {{"A", {{1, 10}}}, {"B", {{11, 20}}}}),
              addVois("set.voi"));
    computeRow(row, {0, 1, 2});
    EXPECT_EQ(object(0)->matrices().size(), 1u);
    EXPECT_FALSE(subject(row).useProtocol());
}

TEST_F(Compute, ProtocolWithoutIntervalsMeansNoMatrix)
{
    ConnectivityObject *const result = computeWithProtocol({{"A", {}}});
    EXPECT_TRUE(result->matrices().empty());
    EXPECT_TRUE(result->mstComputed());
    EXPECT_EQ(results()->count(), 1);
    result->showResults();
    EXPECT_EQ(resultsDialogs().size(), 1);
}

TEST_F(Compute, IntervalsBeyondTheRunAreCut)
{
    const ConnectivityObject *const result =
        computeWithProtocol({{"A", {{31, 60}, {-5, 10}, {100, 120}, {20, 10}}}}, 40);
    ASSERT_EQ(result->matrices().size(), 4u); // from -5, 20, 31 and 100
    const Eigen::MatrixXf series = subject(0).averagedTimeseries({0, 3, 5, 8});
    const Eigen::Index firsts[] = {0, 30};
    const std::size_t slices[] = {0, 2};
    for (int i = 0; i < 2; ++i) {
        Eigen::MatrixXf expected = correlationMatrix(series.middleCols(firsts[i], 10));
        treatSigns(expected, MatrixValues::Absolute);
        nodalis::treatment(expected);
        EXPECT_TRUE(same(result->matrices().at(slices[i]), expected)) << i;
    }
    // Nothing is left of the others: NaN, which the library's treatment makes 0.
    EXPECT_TRUE(result->matrices().at(1).isZero(0.0f));
    EXPECT_TRUE(result->matrices().at(3).isZero(0.0f));
}

TEST_F(Compute, TwoThousandIntervals)
{
    fake_host::Condition odd{"odd", {}};
    fake_host::Condition even{"even", {}};
    for (int interval = 0; interval < 2000; ++interval)
        (interval % 2 == 0 ? even : odd).intervals.emplace_back(2 * interval + 1, 2 * interval + 2);
    const ConnectivityObject *const result = computeWithProtocol({odd, even}, 4000);
    EXPECT_EQ(result->matrices().size(), 2000u);
    EXPECT_EQ(result->mstTrees().size(), 2000u);
    EXPECT_EQ(result->volumeNames().size(), 2000);
    EXPECT_EQ(result->volumeNames().first(), "even");
}

// The dumps

TEST_F(Compute, DumpsEveryStep)
{
    const QTemporaryDir dumps;
    addSelectedRow();
    PluginSettings::instance()->dumpAll = true;
    PluginSettings::instance()->dumpFolder = dumps.path();
    compute();
    EXPECT_EQ(QDir(dumps.path()).entryList(QDir::Files, QDir::Name),
              (QStringList{"connectivity_ts.csv", "correlation_mtx_0.csv",
                           "correlation_mtx_0_mst.csv", "correlation_mtx_0_treatment_pass_1.csv",
                           "correlation_mtx_0_treatment_pass_2.csv"}));
    const auto file = [&dumps](const char *name) {
        QFile csv(dumps.filePath(name));
        return csv.open(QIODevice::ReadOnly) ? csv.readAll() : QByteArray("missing");
    };
    const auto expect = [&](const char *name, const Eigen::MatrixXf &matrix) {
        const QTemporaryDir own;
        nodalis::to_csv(matrix, own.filePath("m.csv").toStdString());
        QFile csv(own.filePath("m.csv"));
        ASSERT_TRUE(csv.open(QIODevice::ReadOnly));
        EXPECT_EQ(file(name), csv.readAll()) << name;
    };
    const Eigen::MatrixXf series = subject(0).averagedTimeseries({0, 3, 5, 8});
    Eigen::MatrixXf matrix = correlationMatrix(series);
    expect("connectivity_ts.csv", series);
    expect("correlation_mtx_0.csv", matrix);
    treatSigns(matrix, MatrixValues::Absolute);
    expect("correlation_mtx_0_treatment_pass_1.csv", matrix);
    nodalis::treatment(matrix);
    expect("correlation_mtx_0_treatment_pass_2.csv", matrix);
    expect("correlation_mtx_0_mst.csv", object(0)->mstMatrices().at(0));
}

TEST_F(Compute, DumpsFourFilesPerSliceWithAProtocol)
{
    const QTemporaryDir dumps;
    dialog(); // which reads the settings
    PluginSettings::instance()->dumpAll = true;
    PluginSettings::instance()->dumpFolder = dumps.path();
    computeWithProtocol({{"A", {{1, 10}, {21, 30}}}, {"B", {{11, 20}}}});
    EXPECT_EQ(QDir(dumps.path()).entryList(QDir::Files).size(), 3 * 4 + 1);
}

TEST_F(Compute, WritesNoFileWhileDumpingIsOff)
{
    const QTemporaryDir dumps;
    addSelectedRow();
    PluginSettings::instance()->dumpAll = false;
    PluginSettings::instance()->dumpFolder = dumps.path();
    compute();
    EXPECT_EQ(objects().size(), 1);
    EXPECT_TRUE(QDir(dumps.path()).isEmpty());
}

TEST_F(Compute, DumpsNoTreesWithoutTheFilter)
{
    const QTemporaryDir dumps;
    addSelectedRow();
    click("chkBox_ComputeMST");
    PluginSettings::instance()->dumpAll = true;
    PluginSettings::instance()->dumpFolder = dumps.path();
    compute();
    EXPECT_EQ(QDir(dumps.path()).entryList(QDir::Files).size(), 4);
}

TEST_F(Compute, DumpsThatCannotBeWrittenDoNotMatter)
{
    addSelectedRow();
    PluginSettings::instance()->dumpAll = true;
    PluginSettings::instance()->dumpFolder = folder.filePath("run.vtc/below a file");
    compute();
    EXPECT_EQ(results()->count(), 1);
}

// The progress dialog

TEST_F(Compute, ProgressDialogIsAsDescribed)
{
    addSelectedRow();
    BusyPool pool;
    modals.expect<QProgressDialog>([&](QProgressDialog &progress) {
        const QProgressDialog untouched;
        EXPECT_EQ(progress.labelText(), "Processing...");
        EXPECT_EQ(progress.parentWidget(), &dialog());
        EXPECT_TRUE(progress.isModal());
        EXPECT_EQ(progress.minimumDuration(), untouched.minimumDuration());
        EXPECT_EQ(progress.autoClose(), untouched.autoClose());
        EXPECT_EQ(progress.windowTitle(), untouched.windowTitle());
        auto *const cancel = progress.findChild<QPushButton *>();
        ASSERT_NE(cancel, nullptr);
        EXPECT_EQ(cancel->text(), untouched.findChild<QPushButton *>()->text());
        pool.release();
    });
    compute();
    EXPECT_EQ(objects().size(), 1);
    EXPECT_EQ(dialog().findChild<QProgressDialog *>(), nullptr);
}

/// Notes the watcher of a future by what is sent to it: it belongs to the compute alone.
class FutureWatcherFinder : public QObject
{
public:
    FutureWatcherFinder() { QCoreApplication::instance()->installEventFilter(this); }
    QPointer<QObject> watcher;

private:
    bool eventFilter(QObject *receiver, QEvent *) override
    {
        if (receiver->inherits("QFutureWatcherBase"))
            watcher = receiver;
        return false;
    }
};

TEST_F(Compute, ProgressOfTheWorkWouldBeShown)
{
    addSelectedRow();
    BusyPool pool;
    FutureWatcherFinder finder;
    modals.expect<QProgressDialog>([&](QProgressDialog &progress) {
        EXPECT_TRUE(QTest::qWaitFor([&finder] { return !finder.watcher.isNull(); }));
        const auto tell = [&finder](const char *signal, auto... values) {
            return QMetaObject::invokeMethod(finder.watcher, signal, Qt::DirectConnection,
                                             Q_ARG(int, values)...);
        };
        EXPECT_TRUE(tell("progressRangeChanged", 3, 17));
        EXPECT_EQ(progress.minimum(), 3);
        EXPECT_EQ(progress.maximum(), 17);
        EXPECT_TRUE(tell("progressValueChanged", 11));
        EXPECT_EQ(progress.value(), 11);
        pool.release();
    });
    compute();
    EXPECT_EQ(objects().size(), 1);
}

TEST_F(Compute, CancelledInTheQueueLeavesEverythingAsItWas)
{
    addSelectedRow();
    BusyPool pool;
    modals.expect<QProgressDialog>([&](QProgressDialog &progress) {
        pool.release();
        QTest::mouseClick(progress.findChild<QPushButton *>(), Qt::LeftButton);
    });
    compute();
    expectNothingHappened();
    compute();
    EXPECT_EQ(objects().size(), 1) << "it can be pressed again";
}

TEST_F(Compute, CancelledAtWorkWaitsForTheWorkerAndDropsTheResult)
{
    const int row = addRow();
    finishRow(row,
              addVtc("long.vtc", fake_host::makeVtc({{{50, 52}, {60, 62}, {70, 73}}}, 1, 200000)),
              addVois("set.voi", 10));
    selectProfile(row);
    selectSeeds({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
    modals.expect<QProgressDialog>(
        [](QProgressDialog &progress) { QTest::keyClick(&progress, Qt::Key_Escape); });
    compute();
    expectNothingHappened();
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(10000));
}

TEST_F(Compute, MainDialogClosedUnderTheProgressEndsTheSlot)
{
    addSelectedRow();
    BusyPool pool;
    modals.expect<QProgressDialog>([&](QProgressDialog &) {
        pool.release();
        closeDialog();
    });
    compute();
    EXPECT_EQ(modals.remaining(), 0u);
}

TEST_F(Compute, MeasureThatThrowsIsToldInTheLog)
{
    addSelectedRow();
    subject(0).setMeasure(7); // no function stands behind it
    host.log.clear();
    compute();
    expectNothingHappened();
    EXPECT_THAT(host.log, ElementsAre("Plugin> The measure failed: bad_function_call. Nothing was "
                                      "computed for Subject 1."));
}

// Data that is not as it should be

TEST_F(Compute, WithoutSeedsTheMatrixIsEmpty)
{
    addReadyRow();
    selectProfile(0);
    compute();
    ASSERT_EQ(objects().size(), 1);
    ASSERT_EQ(object(0)->matrices().size(), 1u);
    EXPECT_EQ(object(0)->matrices().at(0).size(), 0);
    EXPECT_TRUE(object(0)->mstComputed());
}

TEST_F(Compute, SubjectWhoseDataWereNotLoadedGivesZeros)
{
    host.fail("zqGetHeaderOfVTCOfCurrentVMR", fake_host::Failure::Zero);
    addReadyRow();
    host.work();
    EXPECT_FALSE(subject(0).dataLoaded);
    computeRow(0, {0, 1, 2});
    ASSERT_EQ(objects().size(), 1);
    EXPECT_EQ(object(0)->matrices().at(0).rows(), 3);
    EXPECT_TRUE(object(0)->matrices().at(0).isZero(0.0f));
}

TEST_F(Compute, VoiThatTheHostDidNotGiveMovesTheOthersUp)
{
    fake_host::VoiSet set;
    set.vois = {{"V0", {{50, 60, 70}}}, {"V1", {{51, 60, 70}}, false}, {"V2", {{52, 60, 70}}}};
    const int row = addRow();
    finishRow(row, addVtc("run.vtc"), addVois("set.voi", set));
    EXPECT_EQ(subject(row).timeseries().size(), 2u);
    computeRow(row, {0, 1, 2}); // the last lies beyond the series
    const Eigen::MatrixXf matrix = object(0)->matrices().at(0);
    EXPECT_GT(matrix(0, 1), 0.0f);
    EXPECT_EQ(matrix(0, 2), 0.0f);
    EXPECT_EQ(matrix(1, 2), 0.0f);
}

TEST_F(Compute, VoiWithoutVoxelsIsANodeWithoutConnections)
{
    fake_host::VoiSet set;
    set.vois = {{"V0", {{50, 60, 70}}}, {"V1", {}}, {"V2", {{52, 60, 70}}}};
    const int row = addRow();
    finishRow(row, addVtc("run.vtc"), addVois("set.voi", set));
    computeRow(row, {0, 1, 2});
    const Eigen::MatrixXf matrix = object(0)->matrices().at(0);
    EXPECT_TRUE(matrix.row(1).isZero(0.0f));
    EXPECT_NE(matrix(0, 2), 0.0f);
    EXPECT_EQ(object(0)->mstTrees().at(0).sum(), 2);
}

TEST_F(Compute, ResultOutlivesItsRow)
{
    addSelectedRow();
    compute();
    removeRow(0);
    EXPECT_EQ(object(0)->subject()->name(), "Subject 1");
    EXPECT_EQ(object(0)->volumeNames().size(), 0);
    EXPECT_EQ(results()->count(), 1);
    object(0)->showResults();
    EXPECT_EQ(resultsDialogs().size(), 1);
    // A new subject of that name is refused while the result is there.
    const int row = addReadyRow();
    selectProfile(row);
    selectSeeds({0, 1});
    modals.expectMessage("Cannot continue...", "Duplicate subject name found. Aborting.");
    compute();
}

TEST_F(Compute, OddNamesAreListedAsTheyAre)
{
    const QStringList names = {QString(10000, QLatin1Char('n')), QString::fromUtf8("נבדק א"),
                               QStringLiteral("../a/b"), QStringLiteral("%1")};
    for (const QString &name : names) {
        const int row = addReadyRow();
        rename(row, name);
        computeRow(row, {0, 1, 2});
    }
    for (int i = 0; i < names.size(); ++i) {
        EXPECT_EQ(results()->item(i)->text(), names.at(i));
        EXPECT_EQ(object(i)->name(), names.at(i));
    }
}

TEST_F(Compute, LogsItsFourLines)
{
    addSelectedRow();
    PluginSettings::instance()->verboseLogging = true;
    takeMessages();
    compute();
    PluginSettings::instance()->verboseLogging = false;
    QStringList texts;
    for (const LoggedMessage &message : takeMessages())
        texts.append(message.text);
    EXPECT_EQ(texts, (QStringList{"", "Available vois: 12", "Selected vois: 4", ""}));
}

/// Everything that writes verbose lines, from the first row to the comparison.
TEST_F(Compute, WritesNothingWhileLoggingIsOff)
{
    ASSERT_FALSE(PluginSettings::instance()->verboseLogging);
    takeMessages();
    click("cbox_UseProtocol");
    const QString vtc = addVtcWithProtocol("task.vtc", {{"A", {{1, 10}, {21, 30}}}});
    for (int row = 0; row < 2; ++row) {
        addRow();
        vmrBox(row)->setCurrentIndex(1);
        chooseFile(row, VtcColumn, vtc);
        chooseFile(row, PrtColumn, addProtocol("task.prt", host.protocols.begin()->second));
        chooseFile(row, VoiColumn, addVois("set.voi"));
        computeRow(row, {0, 3, 5, 8});
    }
    showTab(results());
    results()->selectAll();
    click("btn_ComputeGraphDistance");
    const QPoint place = results()->visualItemRect(results()->item(0)).center();
    QTest::mouseClick(results()->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(results()->viewport(), Qt::LeftButton, {}, place);
    ASSERT_EQ(resultsDialogs().size(), 1);
    addRow();
    removeRow(2);
    QTest::mouseClick(find<QPushButton>("btn_CloseDialog"), Qt::LeftButton);

    // The one line that is always written: once for each row that links its protocol.
    QStringList written;
    for (const LoggedMessage &message : takeMessages()) {
        if (message.type == QtDebugMsg || message.type == QtInfoMsg)
            written += message.text;
    }
    const QString linked = "Linked proto file: " + vtc + ".prt";
    EXPECT_EQ(written, (QStringList{linked, linked}));
}

TEST_F(Compute, OpensTheListedSubjectOnADoubleClick)
{
    addSelectedRow();
    compute();
    showTab(results());
    PluginSettings::instance()->verboseLogging = true;
    takeMessages();
    const QPoint place = results()->visualItemRect(results()->item(0)).center();
    QTest::mouseClick(results()->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(results()->viewport(), Qt::LeftButton, {}, place);
    PluginSettings::instance()->verboseLogging = false;
    EXPECT_EQ(resultsDialogs().size(), 1);
    bool told = false;
    for (const LoggedMessage &message : takeMessages())
        told = told ||
               message.text == "void __cdecl Tessera::subjects_OpenSelected(class QModelIndex)";
    EXPECT_TRUE(told);
    for (const char *name : {"btn_OpenSubject", "btn_ReleaseSubject", "btn_ReleaseAllSubjects"})
        click(name); // whose slots are empty
    EXPECT_EQ(resultsDialogs().size(), 1);
    EXPECT_EQ(results()->count(), 1);
}

} // namespace
