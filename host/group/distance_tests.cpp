// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/distance_tests.h"

#include "host/files/input_error.h"
#include "host/group/group_rearrangements.h"
#include "statistics/distances.h"
#include "statistics/parallel.h"

#include <mutex>
#include <nodalis/nodalis.h>
#include <set>

namespace corvane
{

namespace
{

using statistics::Index;

/// The spectrum of each graph, on several threads.
std::vector<Eigen::VectorXd> spectraOf(const std::vector<Eigen::MatrixXf> &graphs, int threads,
                                       const ProgressWatch &watch)
{
    std::vector<Eigen::VectorXd> spectra(graphs.size());
    std::mutex mutex; // a watch is told by one thread at a time
    qint64 done = 0;
    statistics::for_each_chunk(Index(graphs.size()), threads, [&](Index i, int) {
        spectra[i] = nodalis::distances::spectrum(graphs[i]);
        const std::lock_guard<std::mutex> lock(mutex);
        tellProgress(watch, ++done, qint64(graphs.size()));
    });
    return spectra;
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

DistanceResult testDistances(const GroupData &data, const GroupRequest &request,
                             const ProgressWatch &watch)
{
    const std::set<std::string> participants(data.participants.begin(), data.participants.end());
    const bool areRepeated = participants.size() < data.participants.size();
    if (request.contrasts.isEmpty() && !areRepeated)
        throw InputError(request.table, QStringLiteral("participant_id"),
                         QStringLiteral("one row for each participant"),
                         QStringLiteral("a --contrast to test, or sessions to compare"));
    const std::vector<Eigen::VectorXd> spectra = spectraOf(data.graphs, request.threads, watch);
    DistanceResult result;
    result.distances = statistics::all_distances(
        Index(spectra.size()),
        [&](Index i, Index j) {
            return double(nodalis::distances::between_spectra(spectra[i], spectra[j], 0));
        },
        request.threads);
    for (const QString &contrast : request.contrasts)
        result.contrasts.push_back(testOf(contrast, result.distances, data, request));
    if (areRepeated)
        result.dbicc = statistics::dbicc(result.distances, data.participants);
    return result;
}

} // namespace corvane
