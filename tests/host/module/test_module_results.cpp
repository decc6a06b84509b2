// SPDX-License-Identifier: GPL-3.0-or-later
//
// The whole workflow in the plugin's module: a real recording, its compute, and everything that its
// results dialog offers, down to the last bit of every export.
#include "tests/gui_test.h"
#include "tests/host/module/module_session.h"
#include "tests/host/support/program.h"
#include "tests/support/reference_folder.h"
#include "tests/support/slider_handle.h"

#include <QDir>
#include <QGraphicsSimpleTextItem>
#include <QGraphicsTextItem>
#include <QGraphicsView>
#include <QGridLayout>
#include <QImage>
#include <QLabel>
#include <QSlider>
#include <QTableView>
#include <QTableWidget>
#include <QTest>
#include <QWindow>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>
#include <QtCharts/QSplineSeries>
#include <nodalis/nodalis.h>

#include <cstring>

namespace corvane
{

namespace
{

using namespace QtCharts;

struct PerNode {
    const char *key;
    const char *title;
    Eigen::ArrayXf (*values)(const Eigen::MatrixXf &weights);
};

const PerNode perNode[] = {
    {"clustering_coeff", "Clustering Coefficient", nodalis::clustering_coeff},
    {"local_efficiency", "Local Efficiency", nodalis::local_efficiency},
    {"degree", "Degree", nodalis::degree},
    {"eigenvector_centrality", "Eigenvector Centrality", nodalis::eigenvector_centrality},
    {"strength", "Strength", nodalis::strength},
    {"nodal_ge", "Nodal Global Efficiency", nodalis::nodal_global_efficiency},
};

void expectSameBits(const Eigen::MatrixXf &found, const Eigen::MatrixXf &expected)
{
    ASSERT_EQ(found.rows(), expected.rows());
    ASSERT_EQ(found.cols(), expected.cols());
    const auto bytes = sizeof(float) * static_cast<std::size_t>(found.size());
    EXPECT_EQ(std::memcmp(found.data(), expected.data(), bytes), 0);
}

/// The samples at the voxels of a VOI, voxels x volumes.
Eigen::MatrixXf samplesAt(const VtcFile &vtc, const Voi &voi)
{
    const VtcInfo &info = vtc.info();
    Eigen::MatrixXf samples(Eigen::Index(voi.voxels.size()), info.nrOfVolumes);
    for (Eigen::Index row = 0; row < samples.rows(); ++row) {
        const std::array<int, 3> &voxel = voi.voxels[std::size_t(row)];
        const qint64 i = (voxel[0] - info.xStart) / info.resolution;
        const qint64 j = (voxel[1] - info.yStart) / info.resolution;
        const qint64 k = (voxel[2] - info.zStart) / info.resolution;
        const qint64 place = info.nrOfVolumes * (i + info.dimX() * (j + info.dimY() * k));
        for (int t = 0; t < info.nrOfVolumes; ++t)
            samples(row, t) = float(vtc.shortSamples()[place + t]);
    }
    return samples;
}

class ModuleResults : public ModuleSession
{
protected:
    /// For who compares what two systems have exported.
    void TearDown() override
    {
        const QString kept = qEnvironmentVariable("TESSERA_KEEP_EXPORTS");
        if (kept.isEmpty())
            return;
        const QString test = testing::UnitTest::GetInstance()->current_test_info()->name();
        const QDir place(kept + QLatin1Char('/') + test);
        ASSERT_TRUE(place.mkpath(QStringLiteral(".")));
        for (const QString &name : QDir(exported("")).entryList(QDir::Files))
            EXPECT_TRUE(QFile::copy(exported(qPrintable(name)), place.filePath(name)));
    }

    /// Adds the recording, computes it and opens its results.
    void computeRecording(const SubjectFiles &recorded, bool useProtocol)
    {
        files = recorded;
        openWorkbench({files.vmr});
        startPlugin();
        setUseProtocol(useProtocol);
        addSubject("recorded", files);
        selectProfile("recorded");
        chooseVois({6, 1, 4, 2});
        compute();
        subject = finished(0);
        ASSERT_EQ(windowsOf("ConnectivityObjectUI").size(), 1);
    }

    // Each of these looks at one window of the results.
    void expectRing();
    void expectBrowser();
    void expectMeasures();
    void expectExports();

    void expectRingShows(QWidget *ring, int slice);
    void expectBrowserShows(QWidget *browser, int slice);
    void expectLines(QWidget *plot, const PerNode &measure);

    QString exported(const char *name) { return folder.path(QStringLiteral("exports/") + name); }
    bool usesProtocol() const { return !subject.intervals.isEmpty(); }
    bool isTrigger(int slice) const { return subject.events.value(slice) != 0; }
    int slices() const { return int(subject.matrices.size()); }
    const Eigen::MatrixXf &matrix(int slice) const { return subject.matrices[std::size_t(slice)]; }

    SubjectFiles files;
    FinishedSubject subject;
};

// ---- the ring

void ModuleResults::expectRingShows(QWidget *ring, int slice)
{
    QChart *chart = nullptr;
    const auto *const view = ring->findChild<QGraphicsView *>();
    for (QGraphicsItem *item : view->scene()->items())
        if (auto *const found = dynamic_cast<QChart *>(item))
            chart = found;
    ASSERT_NE(chart, nullptr);
    QStringList texts;
    for (const QGraphicsItem *item : chart->childItems()) {
        if (!item->isVisible())
            continue;
        if (const auto *const title = dynamic_cast<const QGraphicsSimpleTextItem *>(item))
            texts += title->text();
        if (const auto *const name = dynamic_cast<const QGraphicsTextItem *>(item))
            texts += name->toPlainText();
    }

    int edges = 0;
    int red = 0;
    for (const QAbstractSeries *series : chart->series()) {
        const auto *const edge = qobject_cast<const QSplineSeries *>(series);
        if (edge == nullptr)
            continue;
        ++edges;
        red += edge->pen().color() == QColor(Qt::red) ? 1 : 0;
        const float value = matrix(slice)(edge->property("emitting-from").toInt(),
                                          edge->property("emitting-to").toInt());
        EXPECT_EQ(float(edge->property("value").toDouble()), value);
    }
    if (isTrigger(slice)) {
        EXPECT_EQ(edges, 0);
        EXPECT_EQ(texts.filter(subject.intervals[slice]).size(), 1);
        return;
    }
    const int nodes = int(matrix(slice).rows());
    EXPECT_EQ(edges, nodes * (nodes - 1) / 2);
    // The spanning tree of a run without a protocol is not shown.
    EXPECT_EQ(red, usesProtocol() ? nodes - 1 : 0);
    for (const QString &node : subject.nodes)
        EXPECT_TRUE(texts.contains(node)) << node.toStdString();
}

void ModuleResults::expectRing()
{
    click(resultsDialog(), "btn_CircularPlotConnMtx");
    QWidget *const ring = windowOf("CircularPlot");
    ASSERT_NE(ring, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(ring));
    expectRingShows(ring, 0);
    auto *const slider = find<QSlider>(ring, "hSlider_Conditions");
    EXPECT_EQ(slider->isVisible(), usesProtocol());
    for (int slice = slices() - 1; usesProtocol() && slice >= 0; --slice) {
        SCOPED_TRACE(slice);
        QWindow *const window = ring->windowHandle();
        QTest::mousePress(window, Qt::LeftButton, {}, sliderHandle(*slider, slider->value()));
        QTest::mouseMove(window, sliderHandle(*slider, slice + 1));
        QTest::mouseRelease(window, Qt::LeftButton, {}, sliderHandle(*slider, slice + 1));
        ASSERT_EQ(slider->value(), slice + 1);
        expectRingShows(ring, slice);
    }

    const QString picture = exported("ring.png");
    exportTo(picture, [&] { chooseFromMenu(ring, "Export to image..."); });
    const QImage image(picture);
    EXPECT_EQ(image,
              ring->findChild<QGraphicsView *>()->grab().toImage().convertToFormat(image.format()));
    click(resultsDialog(), "chkBox_CircPlot_ShowLabels");
    click(resultsDialog(), "chkBox_CircPlot_ConnColors");
    exportTo(exported("coloured ring.png"), [&] { chooseFromMenu(ring, "Export to image..."); });
    EXPECT_NE(QImage(exported("coloured ring.png")), image);
}

// ---- the browser

void ModuleResults::expectBrowserShows(QWidget *browser, int slice)
{
    auto *const table = find<QTableWidget>(browser, "tableMatrix");
    ASSERT_EQ(table->rowCount(), matrix(slice).rows());
    ASSERT_EQ(table->columnCount(), matrix(slice).cols());
    for (int row = 0; row < table->rowCount(); ++row) {
        EXPECT_EQ(table->verticalHeaderItem(row)->text(), subject.nodes[row]);
        for (int column = 0; column < table->columnCount(); ++column) {
            const QRect place = table->visualItemRect(table->item(row, column));
            QTest::mouseMove(browser->windowHandle(),
                             table->viewport()->mapTo(browser, place.center()));
            EXPECT_EQ(find<QLabel>(browser, "lbl_Value")->text(),
                      QString::number(double(matrix(slice)(row, column)), 'g', 6));
        }
    }
    const auto *const overview = find<QGraphicsView>(browser, "graphicsView");
    EXPECT_EQ(overview->scene()->items().size(), matrix(slice).size());
}

void ModuleResults::expectBrowser()
{
    click(resultsDialog(), "btn_PlotConnMtx");
    QWidget *const browser = windowOf("ViewMatrix");
    ASSERT_NE(browser, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(browser));
    expectBrowserShows(browser, 0);
    const auto *const conditions = find<QGridLayout>(browser, "gridLayout_Conditions");
    if (!usesProtocol()) {
        EXPECT_EQ(qobject_cast<QLabel *>(conditions->itemAtPosition(0, 0)->widget())->text(),
                  QStringLiteral("No protocol loaded."));
        return;
    }
    int shown = 0;
    for (int slice = slices() - 1; slice >= 0; --slice) {
        SCOPED_TRACE(slice);
        QWidget *const name = conditions->itemAtPosition(slice, 1)->widget();
        EXPECT_EQ(qobject_cast<QLabel *>(name)->text(),
                  (isTrigger(slice) ? "Trigger: " : "") + subject.intervals[slice]);
        clickAt(name, name->rect().center());
        if (!isTrigger(slice))
            shown = slice;
        expectBrowserShows(browser, shown);
    }
}

// ---- the measures

void ModuleResults::expectLines(QWidget *plot, const PerNode &measure)
{
    EXPECT_EQ(plot->windowTitle(), QStringLiteral("Plot: ") + measure.title);
    const QList<QAbstractSeries *> lines = plot->findChild<QChartView *>()->chart()->series();
    ASSERT_EQ(lines.size(), slices());
    for (int slice = 0; slice < slices(); ++slice) {
        const auto *const line = qobject_cast<QLineSeries *>(lines.at(slice));
        EXPECT_EQ(line->name(), usesProtocol() ? subject.intervals[slice] : "Series 0");
        EXPECT_EQ(line->isVisible(), !isTrigger(slice));
        const Eigen::ArrayXf values = measure.values(matrix(slice));
        ASSERT_EQ(line->count(), values.size());
        for (int node = 0; node < line->count(); ++node)
            EXPECT_EQ(line->at(node), QPointF(node, double(values(node))));
    }

    auto *const view = plot->findChild<QChartView *>();
    QStringList numbers;
    const Eigen::ArrayXf first = measure.values(matrix(0));
    for (Eigen::Index node = 0; node < first.size(); ++node)
        numbers += QString::number(double(first(node)), 'g', 6);
    exportTo(exported(measure.key) + ".csv", [&] { chooseFromMenu(view, "Export to CSV..."); });
    EXPECT_EQ(QString::fromUtf8(bytesOf(exported(measure.key) + ".csv")), numbers.join(','));
    exportTo(exported(measure.key) + ".png", [&] { chooseFromMenu(view, "Export to image..."); });
    EXPECT_EQ(QImage(exported(measure.key) + ".png").size(), view->size());
}

void ModuleResults::expectMeasures()
{
    QWidget *const dialog = resultsDialog();
    for (const PerNode &measure : perNode) {
        SCOPED_TRACE(measure.key);
        EXPECT_FALSE(measureButton(dialog, measure.key, "inspect")->isEnabled());
        click(measureButton(dialog, measure.key, "compute"));
        click(measureButton(dialog, measure.key, "inspect"));
        QWidget *const plot = windowOf("LinePlot");
        ASSERT_NE(plot, nullptr);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(plot));
        expectLines(plot, measure);
        plot->close();
    }

    const QString key = QStringLiteral("global_efficiency");
    const float global = nodalis::global_efficiency(matrix(0));
    QPushButton *const compute = measureButton(dialog, key, "compute");
    click(compute);
    QPushButton *const inspect = measureButton(dialog, key, "inspect");
    if (!usesProtocol()) {
        EXPECT_EQ(inspect, nullptr);
        const auto *const table = find<QTableView>(dialog, "tblView_GraphFeatures");
        const int row = compute->property("row").toInt();
        EXPECT_EQ(table->model()->index(row, 4).data().toFloat(), global);
        return;
    }
    click(inspect);
    QWidget *const plot = windowOf("TimeseriesLinePlot");
    ASSERT_NE(plot, nullptr);
    const QList<QAbstractSeries *> lines = plot->findChild<QChartView *>()->chart()->series();
    ASSERT_EQ(lines.size(), 1);
    const auto *const line = qobject_cast<QLineSeries *>(lines.front());
    ASSERT_EQ(line->count(), slices());
    for (int slice = 0; slice < slices(); ++slice)
        EXPECT_EQ(line->at(slice), QPointF(slice, double(global))) << "that of the first matrix";
}

// ---- the exports

void ModuleResults::expectExports()
{
    QWidget *const dialog = resultsDialog();
    exportTo(exported("net.csv"), [&] { click(dialog, "btn_exportConnectivityMatrix"); });
    if (!usesProtocol())
        expectSameBits(readTable(exported("net.csv")), matrix(0));
    for (int slice = 0; slice < slices() && usesProtocol(); ++slice) {
        const QString name =
            QStringLiteral("net_%1_%2.csv").arg(slice).arg(subject.intervals[slice]);
        expectSameBits(readTable(exported(qPrintable(name))), matrix(slice));
    }

    exportTo(exported("series.csv"), [&] { click(dialog, "btn_exportFMRITS"); });
    const VtcFile vtc(files.vtc);
    const VoiSet set = readVoiFile(files.voi);
    for (const Voi &voi : set.vois) {
        const QString name = QStringLiteral("series_%1.csv").arg(voi.name);
        expectSameBits(readTable(exported(qPrintable(name))), samplesAt(vtc, voi));
    }
    const int matrices = usesProtocol() ? slices() : 1;
    EXPECT_EQ(QDir(exported("")).entryList({"net*", "series*"}, QDir::Files).size(),
              matrices + int(set.vois.size()));
    EXPECT_FALSE(find<QPushButton>(dialog, "btn_exportMSTMatrix")->isEnabled());
}

} // namespace

TEST_F(ModuleResults, OfARealRecording)
{
    if (!haveRecordings())
        GTEST_SKIP() << "no real recordings in " << referenceFolder();
    QDir().mkpath(exported(""));
    computeRecording(importRecording(folder, "run001", Events::LeftOut), false);
    ASSERT_EQ(slices(), 1);
    expectRing();
    expectBrowser();
    expectMeasures();
    expectExports();
}

TEST_F(ModuleResults, OfARealRecordingWithItsProtocolAndATrigger)
{
    if (!haveRecordings())
        GTEST_SKIP() << "no real recordings in " << referenceFolder();
    QDir().mkpath(exported(""));
    SubjectFiles recorded = importRecording(folder, "run001", Events::Imported);
    recorded.prt = folder.path("with cue.prt");
    Prt prt = readPrtFile(folder.path("run001.prt"));
    ASSERT_EQ(prt.conditions.size(), 8u);
    prt.conditions.push_back({QStringLiteral("cue"), {{60, 60}, {120, 120}}});
    writePrtFile(recorded.prt, prt);
    computeRecording(recorded, true);
    ASSERT_EQ(slices(), 10);
    ASSERT_EQ(subject.events.count(1), 2);
    expectRing();
    expectBrowser();
    expectMeasures();
    expectExports();
}

} // namespace corvane
