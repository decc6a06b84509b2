// SPDX-License-Identifier: GPL-3.0-or-later
// What a user waits for in the connectome window, with 400 and 1,000 nodes: the first paint of each
// view, the mouse over it, and a step of the threshold with all measures. The processor time is
// that of all threads: it tells more than the real one where others share the cores.
//
//   bench_explorer --benchmark_filter='step.*/400/'
#include "bench/first_paint.h"
#include "host/explorer/network_views.h"

#include <QElapsedTimer>
#include <QMouseEvent>
#include <benchmark/benchmark.h>
#include <random>

namespace
{

using namespace corvane;

/// Networks of nodes with correlations as strong within as real ones, and noise between.
std::shared_ptr<const NetworkResult> resultOf(int nodes)
{
    constexpr int networks = 7;
    std::mt19937 random(1);
    const auto noise = [&] { return double(random() % 2001) / 1000 - 1; };
    auto result = std::make_shared<NetworkResult>();
    result->title = QStringLiteral("benchmark");
    Eigen::MatrixXd series(200, nodes);
    for (int t = 0; t < 200; ++t) {
        double shared[networks];
        for (double &value : shared)
            value = noise();
        for (int node = 0; node < nodes; ++node)
            series(t, node) = shared[node % networks] + noise();
    }
    series.rowwise() -= series.colwise().mean();
    series.colwise().normalize();
    ResultMatrix matrix;
    matrix.name = QStringLiteral("Pearson correlation, whole run");
    matrix.kind = ValueKind::Correlation;
    matrix.values = series.transpose() * series;
    result->matrices.push_back(matrix);
    for (int node = 0; node < nodes; ++node)
        result->nodes.push_back(
            {QStringLiteral("%1Networks_LH_Net%2_%3").arg(networks).arg(node % networks).arg(node),
             QStringLiteral("Net%1").arg(node % networks), QStringLiteral("Left"),
             Eigen::Vector3d(60 * noise(), 80 * noise(), 50 * noise())});
    return result;
}

const std::shared_ptr<const NetworkResult> &known(int nodes)
{
    static const auto small = resultOf(400);
    static const auto large = resultOf(1000);
    return nodes == 400 ? small : large;
}

EdgeThreshold density(double share)
{
    return {ThresholdKind::Density, share};
}

void waitFor(const ExplorerModel &model)
{
    while (model.isBusy())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

template <typename Canvas>
void firstPaint(benchmark::State &state)
{
    const auto &result = known(int(state.range(0)));
    ExplorerModel model({}, result);
    model.setThreshold(density(double(state.range(1)) / 100));
    waitFor(model);
    for (auto _ : state) {
        Canvas canvas(model);
        FirstPaint paint(&canvas);
        canvas.resize(600, 600);
        canvas.show();
        paint.wait();
    }
}

/// The mouse goes over the view; each place is painted.
template <typename Canvas>
void hover(benchmark::State &state)
{
    const auto &result = known(int(state.range(0)));
    ExplorerModel model({}, result);
    model.setThreshold(density(double(state.range(1)) / 100));
    waitFor(model);
    Canvas canvas(model);
    FirstPaint paint(&canvas);
    canvas.resize(600, 600);
    canvas.show();
    paint.wait();
    int step = 0;
    for (auto _ : state) {
        ++step;
        const QPointF place(100 + 37 * (step % 10), 300 + 11 * (step % 17));
        QMouseEvent move(QEvent::MouseMove, place, Qt::NoButton, Qt::NoButton, {});
        QCoreApplication::sendEvent(&canvas, &move);
        canvas.repaint();
    }
}

/// From the slider to all measures of all nodes, on the threads of the program.
void step(benchmark::State &state)
{
    const auto &result = known(int(state.range(0)));
    ExplorerModel model({}, result);
    waitFor(model);
    double share = double(state.range(1)) / 100;
    for (auto _ : state) {
        share += 1e-5; // another threshold each time
        model.setThreshold(density(share));
        waitFor(model);
    }
}

void order(benchmark::State &state)
{
    const auto &result = known(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(similarityOrder(result->matrices.front().values));
}

void sizes(benchmark::internal::Benchmark *bench)
{
    bench->Args({400, 5})->Args({1000, 5})->Unit(benchmark::kMillisecond);
    bench->MeasureProcessCPUTime()->UseRealTime();
}

BENCHMARK_TEMPLATE(firstPaint, MatrixCanvas)->Apply(sizes);
BENCHMARK_TEMPLATE(firstPaint, RingCanvas)->Apply(sizes);
BENCHMARK_TEMPLATE(firstPaint, BrainCanvas)->Apply(sizes);
BENCHMARK_TEMPLATE(hover, MatrixCanvas)->Apply(sizes);
BENCHMARK_TEMPLATE(hover, RingCanvas)->Apply(sizes);
BENCHMARK_TEMPLATE(hover, BrainCanvas)->Apply(sizes);
BENCHMARK(step)
    ->Args({400, 5})
    ->Args({400, 10})
    ->Args({400, 20})
    ->Args({400, 99})
    ->Args({1000, 5})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(order)->Arg(400)->Arg(1000)->Unit(benchmark::kMillisecond);

} // namespace
