// SPDX-License-Identifier: GPL-3.0-or-later
//
// From the files of a subject through the compute of the main dialog to everything that the results
// dialog offers.
#include "engine/connectivity_object.h"
#include "plots/circular_plot.h"
#include "plots/circular_plot_widget.h"
#include "plots/line_plot.h"
#include "plots/timeseries_line_plot.h"
#include "plots/view_matrix.h"
#include "results/connectivity_object_ui.h"
#include "results/feature_values.h"
#include "results/graph_features_model.h"
#include "tests/gui_test.h"
#include "tests/results/export_check.h"
#include "tests/support/dataset_fixture.h"

#include <QCheckBox>
#include <QDir>
#include <QGraphicsScene>
#include <QLabel>
#include <QListWidget>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QTest>
#include <QtCharts/QChart>
#include <nodalis/nodalis.h>

namespace
{

const QStringList measures = {"clustering_coeff", "local_efficiency",       "global_efficiency",
                              "degree",           "eigenvector_centrality", "strength",
                              "nodal_ge"};

class ComputedSubject : public DatasetFixture
{
protected:
    /// The one open results dialog.
    ConnectivityObjectUI &shown()
    {
        const QList<QWidget *> open = resultsDialogs();
        EXPECT_EQ(open.size(), 1);
        return *qobject_cast<ConnectivityObjectUI *>(open.value(0));
    }

    void press(QAbstractButton *button)
    {
        auto *const tabs = shown().findChild<QTabWidget *>("tabWidget");
        for (int tab = 0; tab < tabs->count(); ++tab) {
            if (tabs->widget(tab)->isAncestorOf(button))
                tabs->setCurrentIndex(tab);
        }
        ASSERT_TRUE(button->isVisible());
        QTest::mouseClick(button, Qt::LeftButton);
    }
    void press(const char *button) { press(shown().findChild<QAbstractButton *>(button)); }

    /// The button of a measure in that column, or null.
    QPushButton *featureButton(const QString &key, int column)
    {
        for (QPushButton *const button : shown().findChildren<QPushButton *>()) {
            const QString text = column == 3 ? "compute" : "inspect";
            if (button->property("measure") == key && button->text() == text)
                return button;
        }
        return nullptr;
    }
    QVariant result(const QString &key)
    {
        auto *const model = qobject_cast<GraphFeaturesModel *>(
            shown().findChild<QTableView *>("tblView_GraphFeatures")->model());
        return model->result(model->featureIndex(key));
    }

    template <typename Window>
    int plots()
    {
        return shown().findChildren<Window *>(QString(), Qt::FindDirectChildrenOnly).size();
    }

    void openEverything()
    {
        press("btn_CircularPlotConnMtx");
        press("btn_PlotConnMtx");
        for (const QString &key : measures) {
            press(featureButton(key, 3));
            QPushButton *const inspect = featureButton(key, 4);
            if (inspect && inspect->isEnabled())
                press(inspect);
        }
    }

    /// Exports into a folder of its own and gives its files.
    QStringList exported(const char *button, const QString &name)
    {
        QDir(folder.path()).mkpath("out");
        exportTo(out(name), modals, [this, button] { press(button); });
        return filesBelow(folder.filePath("out"));
    }
    QString out(const QString &name) const { return folder.filePath("out/" + name); }

    QString addVtcWithProtocol(std::vector<fake_host::Condition> conditions, int volumes = 60)
    {
        fake_host::Protocol protocol;
        protocol.name = "task";
        protocol.conditions = std::move(conditions);
        const QString prt = addProtocol("task.prt", protocol);
        fake_host::Vtc vtc = fake_host::makeVtc({{{50, 58}, {60, 68}, {70, 78}}}, 1, volumes);
        vtc.linkProtocol(prt.toLatin1().toStdString());
        return addVtc("task.vtc", vtc);
    }
};

TEST_F(ComputedSubject, OffersEverything)
{
    addReadyRow();
    find<QCheckBox>("chkBox_ShowResults")->setChecked(true);
    computeRow(0, {7, 0, 3, 5});
    const Eigen::MatrixXf matrix = object(0)->matrices().at(0);
    EXPECT_EQ(shown().parent(), nullptr) << "a window of its own beside the main dialog";
    EXPECT_EQ(shown().findChild<QLabel *>("lbl_VTC_filename")->text(), subject(0).vtcFile());
    EXPECT_EQ(shown().findChild<QLabel *>("lbl_VOI_filename")->text(), subject(0).voiFile());

    openEverything();
    EXPECT_EQ(plots<CircularPlot>(), 1);
    EXPECT_EQ(plots<ViewMatrix>(), 1);
    EXPECT_EQ(plots<LinePlot>(), 6);
    EXPECT_EQ(plots<TimeseriesLinePlot>(), 0);
    EXPECT_EQ(result("global_efficiency"), nodalis::global_efficiency(matrix));
    const Eigen::ArrayXf strength = nodalis::strength(matrix);
    EXPECT_EQ(result("strength").value<FeatureValues>(),
              FeatureValues({{strength.data(), strength.data() + strength.size()}}));

    EXPECT_EQ(exported("btn_exportConnectivityMatrix", "net.csv"), QStringList("net.csv"));
    expectSameBits(readCsv(out("net.csv")), matrix);
    ASSERT_EQ(exported("btn_exportFMRITS", "ts.csv").filter("ts_").size(), 12);
    for (int voi = 0; voi < 12; ++voi) {
        expectSameBits(readCsv(out(QStringLiteral("ts_V%1.csv").arg(voi))),
                       subject(0).timeseries()[std::size_t(voi)]);
    }
}

TEST_F(ComputedSubject, WithAProtocolAndATrigger)
{
    click("cbox_UseProtocol");
    addRow();
    finishRow(0,
              addVtcWithProtocol(
                  {{"rest", {{1, 10}, {31, 40}}}, {"face", {{11, 20}}}, {"cue", {{25, 25}}}}),
              addVois("set.voi"));
    find<QCheckBox>("chkBox_ShowResults")->setChecked(true);
    computeRow(0, {7, 0, 3, 5});
    const std::vector<Eigen::MatrixXf> matrices = object(0)->matrices();
    ASSERT_EQ(matrices.size(), 4u);
    EXPECT_TRUE(shown().findChild<QLabel *>("lbl_PRT_filename")->text().isEmpty());

    openEverything();
    EXPECT_EQ(plots<CircularPlot>(), 1);
    EXPECT_EQ(plots<ViewMatrix>(), 1);
    EXPECT_EQ(plots<LinePlot>(), 6);
    EXPECT_EQ(plots<TimeseriesLinePlot>(), 1);
    FeatureValues degrees;
    for (const Eigen::MatrixXf &matrix : matrices) {
        const Eigen::ArrayXf degree = nodalis::degree(matrix);
        degrees.emplace_back(degree.data(), degree.data() + degree.size());
    }
    EXPECT_EQ(result("degree").value<FeatureValues>(), degrees);
    EXPECT_EQ(result("global_efficiency").value<FeatureValues>(),
              FeatureValues{std::vector<float>(4, nodalis::global_efficiency(matrices[0]))});

    const QStringList names = {"net_0_rest.csv", "net_1_face.csv", "net_2_cue.csv",
                               "net_3_rest.csv"};
    ASSERT_EQ(exported("btn_exportConnectivityMatrix", "net.csv"), names);
    for (int slice = 0; slice < names.size(); ++slice)
        expectSameBits(readCsv(out(names[slice])), matrices[std::size_t(slice)]);
    EXPECT_EQ(exported("btn_exportFMRITS", "ts.csv").filter("ts_").size(), 12);

    removeRow(0);
    exported("btn_exportConnectivityMatrix", "late.csv");
    for (int slice = 0; slice < names.size(); ++slice)
        expectSameBits(readCsv(out(QString(names[slice]).replace("net", "late"))),
                       matrices[std::size_t(slice)]);
    EXPECT_EQ(exported("btn_exportFMRITS", "late.csv").filter("late_V").size(), 12);
}

/// The box is ticked although the subject has no protocol: there is not one matrix.
TEST_F(ComputedSubject, WithoutMatricesEverythingOpensAndNothingIsWritten)
{
    addReadyRow();
    click("cbox_UseProtocol");
    computeRow(0, {0, 3, 5});
    ASSERT_TRUE(object(0)->matrices().empty());
    object(0)->showResults();
    openEverything();
    EXPECT_EQ(plots<CircularPlot>(), 1);
    EXPECT_EQ(plots<ViewMatrix>(), 1);
    EXPECT_EQ(plots<LinePlot>(), 0);
    EXPECT_EQ(shown().findChild<QTableWidget *>("tableMatrix")->rowCount(), 0);
    EXPECT_TRUE(shown().findChild<QGraphicsView *>("graphicsView")->scene()->items().isEmpty());
    for (QGraphicsItem *const item : shown().findChild<CircularPlotWidget *>()->scene()->items()) {
        if (auto *const chart = dynamic_cast<QtCharts::QChart *>(item)) {
            EXPECT_TRUE(chart->series().isEmpty());
        }
    }
    for (const QString &key : measures) {
        EXPECT_FALSE(result(key).isValid()) << qPrintable(key);
        EXPECT_FALSE(featureButton(key, 4)->isEnabled()) << qPrintable(key);
    }
    EXPECT_EQ(exported("btn_exportConnectivityMatrix", "net.csv"), QStringList());
}

TEST_F(ComputedSubject, WhoseRowIsGoneIsShownAndExportedAllTheSame)
{
    addReadyRow();
    computeRow(0, {0, 3, 5});
    const std::vector<Eigen::MatrixXf> series = subject(0).timeseries();
    const Eigen::MatrixXf matrix = object(0)->matrices().at(0);
    const QString vtc = subject(0).vtcFile();
    removeRow(0);
    ASSERT_EQ(model().rowCount(), 0);

    object(0)->showResults();
    EXPECT_EQ(shown().findChild<QLabel *>("lbl_VTC_filename")->text(), vtc);
    openEverything();
    EXPECT_EQ(plots<LinePlot>(), 6);
    exported("btn_exportConnectivityMatrix", "net.csv");
    expectSameBits(readCsv(out("net.csv")), matrix);
    exported("btn_exportFMRITS", "ts.csv");
    for (std::size_t voi = 0; voi < series.size(); ++voi)
        expectSameBits(readCsv(out(QStringLiteral("ts_V%1.csv").arg(voi))), series[voi]);
}

/// The series of the VOIs behind one that the host does not give move up by one place.
TEST_F(ComputedSubject, WithAVoiThatWasSkippedAtLoad)
{
    addRow();
    fake_host::VoiSet set;
    for (int voi = 0; voi < 4; ++voi)
        set.vois.push_back({"V" + std::to_string(voi), {{50 + voi, 60, 70}}});
    chooseFile(0, VoiColumn, addVois("set.voi", set));
    host.fail("zqGetVOI", fake_host::Failure::Zero, 2);
    chooseFile(0, VtcColumn, addVtc("run.vtc"));
    const std::vector<Eigen::MatrixXf> series = subject(0).timeseries();
    ASSERT_EQ(series.size(), 3u);
    computeRow(0, {0, 1});
    EXPECT_EQ(subject(0).voiLabels(true).size(), 4);
    object(0)->showResults();
    EXPECT_EQ(exported("btn_exportFMRITS", "ts.csv"),
              QStringList({"ts_V0.csv", "ts_V1.csv", "ts_V2.csv"}));
    for (int voi = 0; voi < 3; ++voi) {
        expectSameBits(readCsv(out(QStringLiteral("ts_V%1.csv").arg(voi))),
                       series[std::size_t(voi)]);
    }
}

TEST_F(ComputedSubject, GoesWithTheMainDialogWhateverIsOpen)
{
    addReadyRow();
    computeRow(0, {0, 3, 5});
    object(0)->showResults();
    openEverything();
    const QPointer<QWidget> results = &shown();
    QList<QPointer<QWidget>> open;
    for (QWidget *const child :
         shown().findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly)) {
        if (child->isWindow())
            open += child;
    }
    EXPECT_EQ(open.size(), 8);
    dialog().close();
    EXPECT_TRUE(QTest::qWaitFor([&results] { return results.isNull(); }));
    for (const QPointer<QWidget> &window : open)
        EXPECT_TRUE(window.isNull());
}

TEST_F(ComputedSubject, IsOpenedWithADoubleClick)
{
    addReadyRow();
    find<QCheckBox>("chkBox_ShowResults")->setChecked(false);
    computeRow(0, {0, 3, 5});
    EXPECT_TRUE(resultsDialogs().isEmpty());
    showTab(results());
    const QPoint place = results()->visualItemRect(results()->item(0)).center();
    QTest::mouseClick(results()->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(results()->viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(shown().connectivityObject, object(0));
}

} // namespace
