// SPDX-License-Identifier: GPL-3.0-or-later
// Time from a press on "Visualize" to the first complete picture of the ring and of the matrix
// browser, from the choice of another slice to its picture, and from a step of the ring's display
// range to the picture of the edges that are left.

#include "bench/first_paint.h"
#include "engine/connectivity_object.h"
#include "plots/circular_plot.h"
#include "plots/circular_plot_widget.h"
#include "plots/my_label.h"
#include "plots/my_slider.h"
#include "plots/view_matrix.h"
#include "plots/view_matrix_table.h"
#include "results/connectivity_object_ui.h"

#include <QApplication>
#include <QGridLayout>

#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <vector>

namespace
{

/// A full symmetric matrix of weights below 1, as a correlation of absolute values gives it.
Eigen::MatrixXf weights(int n, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> weight(0.01f, 0.99f);
    Eigen::MatrixXf matrix = Eigen::MatrixXf::Zero(n, n);
    for (int i = 0; i < n; ++i) {
        for (int j = i + 1; j < n; ++j)
            matrix(i, j) = matrix(j, i) = weight(generator);
    }
    return matrix;
}

/// A subject of n nodes with two slices and their spanning trees.
struct Result {
    explicit Result(int n) : subject(QSharedPointer<Subject>::create())
    {
        SubjectProtocol protocol(QStringLiteral("Protocol"), 1, 2);
        protocol.volumeNames = {{1, QStringLiteral("Rest")}, {11, QStringLiteral("Faces")}};
        protocol.volumeEvents = {{1, 0}, {11, 0}};
        subject->setProtocol(protocol);
        subject->setUseProtocol(true);
        for (int node = 0; node < n; ++node)
            subject->voiNames += QStringLiteral("VOI %1").arg(node);
        object.setSubject(subject);
        object.setMatrices({weights(n, 1), weights(n, 2)});
        object.computeMinimumSpanningTrees();
    }

    QSharedPointer<Subject> subject;
    ConnectivityObject object{QStringLiteral("Subject 1"), nullptr};
    ConnectivityObjectUI dialog{&object, nullptr};
};

std::unique_ptr<CircularPlot> openRing(Result &result)
{
    auto window = std::make_unique<CircularPlot>(&result.dialog);
    window->updateLabels();
    window->plotFirstSlice();
    FirstPaint firstPaint(window->plotWidget()->viewport());
    window->show();
    firstPaint.wait();
    return window;
}

std::unique_ptr<ViewMatrix> openBrowser(Result &result)
{
    auto window = std::make_unique<ViewMatrix>(&result.dialog);
    const SubjectProtocol protocol = result.subject->protocol();
    window->setConditionNames(protocol.volumeNames.values());
    window->setConditionTimes(protocol.volumeNames.keys());
    window->buildConditionList();
    window->loadRange();
    window->setLabels(result.subject->voiLabels(false));
    window->fillTable();
    window->paintTable();
    window->drawOverview();
    window->buildLegend();
    FirstPaint firstPaint(window->findChild<ViewMatrixTable *>()->viewport());
    window->show();
    firstPaint.wait();
    return window;
}

template <typename Window>
void openWindow(benchmark::State &state, std::unique_ptr<Window> (*open)(Result &))
{
    Result result(int(state.range(0)));
    for (auto _ : state) {
        auto window = open(result);
        state.PauseTiming(); // closing is not opening
        window.reset();
        state.ResumeTiming();
    }
}

void showRing(benchmark::State &state)
{
    openWindow(state, openRing);
}

void showBrowser(benchmark::State &state)
{
    openWindow(state, openBrowser);
}

void changeSliceOfRing(benchmark::State &state)
{
    Result result(int(state.range(0)));
    const auto window = openRing(result);
    auto *const slider = window->findChild<MySlider *>();
    int slice = 0;
    for (auto _ : state) {
        FirstPaint paint(window->plotWidget()->viewport());
        slice = 1 - slice;
        slider->setSliderDown(true);
        slider->setValue(slice + 1);
        slider->setSliderDown(false);
        paint.wait();
    }
}

/// Every step hides or shows a twentieth of the edges.
void moveDisplayRange(benchmark::State &state)
{
    Result result(int(state.range(0)));
    const auto window = openRing(result);
    int low = 500;
    for (auto _ : state) {
        FirstPaint paint(window->plotWidget()->viewport());
        low = 1050 - low;
        window->displayRangeChanged(low, 1000);
        paint.wait();
    }
}

void changeSliceOfBrowser(benchmark::State &state)
{
    Result result(int(state.range(0)));
    const auto window = openBrowser(result);
    const auto *const grid =
        window->findChild<QGridLayout *>(QStringLiteral("gridLayout_Conditions"));
    int slice = 0;
    for (auto _ : state) {
        FirstPaint paint(window->findChild<ViewMatrixTable *>()->viewport());
        slice = 1 - slice;
        emit qobject_cast<MyLabel *>(grid->itemAtPosition(slice, 0)->widget())->clicked();
        paint.wait();
    }
}

BENCHMARK(showRing)->ArgName("nodes")->Arg(10)->Arg(50)->Arg(116)->Unit(benchmark::kMillisecond);
BENCHMARK(changeSliceOfRing)
    ->ArgName("nodes")
    ->Arg(10)
    ->Arg(50)
    ->Arg(116)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(moveDisplayRange)
    ->ArgName("nodes")
    ->Arg(10)
    ->Arg(50)
    ->Arg(116)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(showBrowser)
    ->ArgName("nodes")
    ->Arg(10)
    ->Arg(116)
    ->Arg(200)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(changeSliceOfBrowser)
    ->ArgName("nodes")
    ->Arg(10)
    ->Arg(116)
    ->Arg(200)
    ->Unit(benchmark::kMillisecond);

} // namespace
