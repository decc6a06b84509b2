// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/assembly.h"

#include "dataset/subject.h"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

namespace
{

/// The condition's first interval with that start; (-1, -1) when there is none.
std::pair<int, int> intervalStartingAt(const ProtocolCondition &condition, int start)
{
    for (const auto &interval : condition.intervals) {
        if (interval.first == start)
            return interval;
    }
    return {-1, -1};
}

} // namespace

Eigen::MatrixXf matrixFromRows(const float *const *rows, unsigned rowCount, unsigned columnCount)
{
    if (rowCount == 0)
        return {};
    Eigen::MatrixXf result = Eigen::MatrixXf::Zero(rowCount, columnCount);
    for (unsigned c = 0; c < columnCount; ++c) {
        for (unsigned r = 0; r < rowCount; ++r)
            result(r, c) = rows[r][c];
    }
    return result;
}

Eigen::MatrixXf Subject::averagedTimeseries(std::vector<int> selection) const
{
    const Eigen::Index volumes = m_timeseries.empty() ? 0 : m_timeseries.front().cols();
    const auto nodes = static_cast<int>(selection.size());
    Eigen::MatrixXf result = Eigen::MatrixXf::Zero(nodes, volumes);
    for (int k = 0; k < nodes; ++k) {
        const auto voi = static_cast<std::size_t>(selection[static_cast<std::size_t>(k)]);
        if (voi >= m_timeseries.size()) {
            result.row(k).setConstant(std::numeric_limits<float>::quiet_NaN());
            continue;
        }
        const Eigen::MatrixXf &voxels = m_timeseries[voi];
        const auto voxelCount = static_cast<float>(voxels.rows());
        for (Eigen::Index t = 0; t < volumes; ++t)
            result(k, t) = voxels.col(t).sum() / voxelCount;
    }
    return result;
}

std::vector<std::pair<int, int>> sliceIntervals(const SubjectProtocol &protocol)
{
    std::map<int, ProtocolCondition> conditions = protocol.conditions;
    std::vector<std::pair<int, int>> intervals;
    for (const auto &[start, conditionIndex] : protocol.volumeConditions)
        intervals.push_back(intervalStartingAt(conditions[conditionIndex], start));
    return intervals;
}

Eigen::MatrixXf blockOfInterval(const Eigen::MatrixXf &timeseries, std::pair<int, int> interval)
{
    const Eigen::Index volumes = timeseries.cols();
    const Eigen::Index first =
        std::clamp<Eigen::Index>(Eigen::Index{interval.first} - 1, 0, volumes);
    const Eigen::Index end = std::clamp<Eigen::Index>(interval.second, first, volumes);
    return timeseries.middleCols(first, end - first);
}

std::vector<Eigen::MatrixXf> connectivityWorker(const Subject *subject, MeasureFunction measure,
                                                Eigen::MatrixXf timeseries)
{
    if (!subject->useProtocol())
        return {measure(timeseries)};

    std::vector<Eigen::MatrixXf> matrices;
    for (const auto &interval : sliceIntervals(subject->protocol()))
        matrices.push_back(measure(blockOfInterval(timeseries, interval)));
    return matrices;
}
