// SPDX-License-Identifier: GPL-3.0-or-later
// Time from the making of a line plot to its first complete picture on the screen, as a press on
// "inspect" costs it.

#include "bench/first_paint.h"
#include "plots/line_plot.h"

#include <QApplication>
#include <QStringList>
#include <QtCharts/QChartView>

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

namespace
{

std::vector<float> featureValues(int nodes, int line)
{
    std::vector<float> values;
    for (int node = 0; node < nodes; ++node)
        values.push_back(float(line) + std::sin(0.1f * float(node * (line % 7 + 1))));
    return values;
}

/// Lines, points per line, and whether the lines belong to conditions.
void openLinePlot(benchmark::State &state)
{
    const int lines = int(state.range(0));
    const int points = int(state.range(1));
    const bool conditions = state.range(2) != 0;
    std::vector<std::vector<float>> values;
    QStringList names;
    for (int line = 0; line < lines; ++line) {
        values.push_back(featureValues(points, line));
        names += conditions ? QStringLiteral("Condition %1").arg(line % 6) : QString();
    }
    QStringList labels;
    for (int node = 0; node < points; ++node)
        labels += QStringLiteral("VOI %1").arg(node);

    for (auto _ : state) {
        auto plot = std::make_unique<LinePlot>(QStringLiteral("Degree"));
        plot->setWindowTitle(QStringLiteral("Plot: Degree"));
        plot->prepareChart();
        for (int line = 0; line < lines; ++line)
            plot->addSeries(values[size_t(line)], names[line], 0);
        plot->finishPlot(labels, conditions);
        FirstPaint firstPaint(plot->findChild<QtCharts::QChartView *>()->viewport());
        plot->show();
        firstPaint.wait();

        state.PauseTiming(); // closing is not opening
        plot.reset();
        state.ResumeTiming();
    }
}

BENCHMARK(openLinePlot)
    ->ArgNames({"lines", "points", "conditions"})
    ->Args({10, 400, 1})
    ->Args({200, 10, 1})
    ->Args({1, 10, 0})
    ->Args({1, 2000, 0})
    ->Unit(benchmark::kMillisecond);

} // namespace
