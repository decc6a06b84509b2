// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a user sees. With TESSERA_PICTURES set to a folder the pictures are saved there.
#include "tests/results/results_fixture.h"

#include "plots/circular_plot.h"
#include "plots/line_plot.h"
#include "plots/timeseries_line_plot.h"
#include "plots/view_matrix.h"

#include <QCheckBox>
#include <QDir>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QPixmap>
#include <QSet>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

namespace
{

class Appearance : public ResultsFixture
{
protected:
    /// The window as it is drawn.
    QImage picture(QWidget &window, const QString &name)
    {
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        QCoreApplication::processEvents();
        const QPixmap pixmap = window.grab();
        const QString pictures = qEnvironmentVariable("TESSERA_PICTURES");
        if (!pictures.isEmpty()) {
            const QString file =
                QStringLiteral("results_%1_at_%2.png").arg(name).arg(pixmap.devicePixelRatio());
            EXPECT_TRUE(pixmap.save(QDir(pictures).filePath(file))) << qPrintable(file);
        }
        return pixmap.toImage();
    }
};

int colorsOf(const QImage &image)
{
    QSet<QRgb> colors;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            colors.insert(image.pixel(x, y));
    }
    return colors.size();
}

bool isOfText(const QWidget *widget)
{
    return qobject_cast<const QLabel *>(widget) || qobject_cast<const QPushButton *>(widget) ||
           qobject_cast<const QCheckBox *>(widget);
}

TEST_F(Appearance, NoTextIsCutOffOnAnyPage)
{
    subject->setVtcFile("/data/study/sub-01/func/sub-01_task-rest.vtc");
    auto *const tabs = find<QTabWidget>("tabWidget");
    for (int tab = 0; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        SCOPED_TRACE(qPrintable(tabs->tabText(tab)));
        EXPECT_GT(colorsOf(picture(dialog(), tabs->widget(tab)->objectName())), 10);
        int texts = 0;
        for (const QWidget *const widget : tabs->widget(tab)->findChildren<QWidget *>()) {
            const bool inTable = qobject_cast<QTableView *>(widget->parentWidget()->parentWidget());
            if (!widget->isVisible() || !isOfText(widget) || inTable)
                continue;
            ++texts;
            EXPECT_LE(widget->minimumSizeHint().width(), widget->width())
                << qPrintable(widget->objectName());
            const int needed = widget->hasHeightForWidth() ? widget->heightForWidth(widget->width())
                                                           : widget->sizeHint().height();
            EXPECT_LE(needed, widget->height()) << qPrintable(widget->objectName());
        }
        EXPECT_GT(texts, 1);
    }
}

TEST_F(Appearance, TheTableShowsItsNamesAndButtonsWhole)
{
    showPage(features());
    compute("global_efficiency");
    compute("degree");
    picture(dialog(), "computed");
    const QHeaderView *const header = features()->horizontalHeader();
    const QString longest = QStringLiteral("Nodal Global Efficiency");
    EXPECT_GT(header->sectionSize(1), features()->fontMetrics().horizontalAdvance(longest));
    EXPECT_GT(header->sectionSize(2), 100);
    for (const char *const key : {"degree", "local_efficiency"}) {
        for (const QPushButton *const button : {computeButton(key), inspectButton(key)}) {
            EXPECT_GE(button->width(), button->fontMetrics().horizontalAdvance(button->text()));
            EXPECT_GE(button->height(), button->fontMetrics().height());
            EXPECT_TRUE(features()->viewport()->rect().contains(
                button->mapTo(features()->viewport(), button->rect().center())));
        }
    }
}

class PlotsAppearance : public Appearance, public testing::WithParamInterface<bool>
{
};

TEST_P(PlotsAppearance, EveryPlotShowsItsData)
{
    const bool withProtocol = GetParam();
    const QString kind = withProtocol ? "_protocol" : "";
    setNodes(10);
    if (withProtocol)
        setIntervals({{1, "rest"}, {11, "face"}, {21, "cue", 1}, {31, "rest"}}, 10);
    else
        setMatrices({weights(10, 3)});
    object->computeMinimumSpanningTrees();

    click("btn_CircularPlotConnMtx");
    EXPECT_GT(colorsOf(picture(*window<CircularPlot>(), "ring" + kind)), 50);
    picture(dialog(), "options" + kind);
    click("btn_PlotConnMtx");
    EXPECT_GT(colorsOf(picture(*window<ViewMatrix>(), "browser" + kind)), 100);
    for (const char *const key : {"clustering_coeff", "local_efficiency", "degree",
                                  "eigenvector_centrality", "strength", "nodal_ge"}) {
        compute(key);
        inspect(key);
        EXPECT_GT(colorsOf(picture(*windows<LinePlot>().last(), key + kind)), 50);
    }
    compute("global_efficiency");
    if (withProtocol) {
        inspect("global_efficiency");
        EXPECT_GT(colorsOf(picture(*window<TimeseriesLinePlot>(), "global_efficiency")), 50);
    }
}

INSTANTIATE_TEST_SUITE_P(Protocol, PlotsAppearance, testing::Bool(),
                         [](const auto &used) { return used.param ? "Used" : "NotUsed"; });

} // namespace
