// SPDX-License-Identifier: GPL-3.0-or-later
//
// Runs the benchmarks of a program that shows windows, without a display unless one is asked for.
#include <QApplication>
#include <benchmark/benchmark.h>

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
