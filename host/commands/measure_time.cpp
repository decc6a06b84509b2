// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/measure_time.h"

#include "dataset/counted.h"
#include "host/compute/graph_files.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace corvane
{

namespace
{

constexpr int manyNodes = 2000;

/// "about 40 s", "about 12 min"
QString aboutSeconds(double seconds)
{
    return seconds < 90 ? QStringLiteral("about %1 s").arg(std::max(1.0, std::round(seconds)))
                        : QStringLiteral("about %1 min").arg(std::round(seconds / 60));
}

} // namespace

void tellTimeOfLocalEfficiency(const Eigen::MatrixXf &weights, int threads)
{
    if (weights.rows() <= manyNodes)
        return;
    std::fprintf(stderr, "local efficiency of %s takes %s\n",
                 counted(weights.rows(), "node").toUtf8().constData(),
                 aboutSeconds(secondsOfLocalEfficiency(weights, threads)).toUtf8().constData());
}

} // namespace corvane
