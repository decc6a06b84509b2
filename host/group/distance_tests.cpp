// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/distance_tests.h"

#include "host/files/input_error.h"
#include "host/group/group_rearrangements.h"
#include "statistics/distances.h"

#include <nodalis/nodalis.h>
#include <set>

namespace corvane
{

namespace
{

using statistics::Index;

double spectralDistance(Eigen::MatrixXf a, Eigen::MatrixXf b)
{
    return double(nodalis::distances::spectral_euclidean(a, b, 0));
}

DistanceContrast testOf(const QString &text, const Eigen::MatrixXd &distances,
                        const GroupData &data, const GroupRequest &request)
{
    const statistics::Contrast contrast =
        statistics::read_contrast(text.toStdString(), data.design.columns);
    const statistics::Hypothesis hypothesis =
        statistics::make_hypothesis(data.design.matrix, data.design.columns, contrast);
    const statistics::Rearrangements rearrangements(hypothesis,
                                                    rearrangementOptions(data, request));
    return {contrast.name,
            statistics::distance_anova(distances, hypothesis, rearrangements, request.threads),
            qint64(rearrangements.count()), rearrangements.is_exhaustive()};
}

} // namespace

DistanceResult testDistances(const GroupData &data, const GroupRequest &request)
{
    const std::set<std::string> participants(data.participants.begin(), data.participants.end());
    const bool areRepeated = participants.size() < data.participants.size();
    if (request.contrasts.isEmpty() && !areRepeated)
        throw InputError(request.table, QStringLiteral("participant_id"),
                         QStringLiteral("one row for each participant"),
                         QStringLiteral("a --contrast to test, or sessions to compare"));
    DistanceResult result;
    result.distances = statistics::all_distances(
        static_cast<Index>(data.graphs.size()),
        [&](Index i, Index j) { return spectralDistance(data.graphs[i], data.graphs[j]); },
        request.threads);
    for (const QString &contrast : request.contrasts)
        result.contrasts.push_back(testOf(contrast, result.distances, data, request));
    if (areRepeated)
        result.dbicc = statistics::dbicc(result.distances, data.participants);
    return result;
}

} // namespace corvane
