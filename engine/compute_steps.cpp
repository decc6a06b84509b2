// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/compute_steps.h"

#include "dataset/subject.h"
#include "engine/assembly.h"
#include "engine/compute_settings.h"
#include "engine/measures.h"
#include "engine/sign_treatment.h"

#include <nodalis/treatment.h>

#include <utility>

namespace
{

/// Empty for a measure that there is not.
MeasureFunction functionOf(ConnectivityMeasure measure)
{
    switch (measure) {
    case ConnectivityMeasure::Correlation:
        return correlationMatrix;
    case ConnectivityMeasure::PartialCorrelation:
        return partialCorrelationMatrix;
    }
    return {};
}

/// The same function, which tells how far it is among that many calls.
MeasureFunction watched(ConnectivityMeasure measure, std::size_t calls,
                        const MeasureProgress &progress)
{
    if (!functionOf(measure))
        return {};
    const auto function = measure == ConnectivityMeasure::Correlation
                              ? watchedCorrelationMatrix
                              : watchedPartialCorrelationMatrix;
    return [=, done = 0.0](const Eigen::MatrixXf &series) mutable {
        Eigen::MatrixXf matrix =
            function(series, [&](double share) { progress((done + share) / double(calls)); });
        done += 1.0;
        return matrix;
    };
}

} // namespace

std::vector<Eigen::MatrixXf> measureSlices(const Subject &subject,
                                           const Eigen::MatrixXf &timeseries,
                                           const MeasureProgress &progress)
{
    const auto measure = static_cast<ConnectivityMeasure>(subject.measure());
    if (!progress)
        return connectivityWorker(&subject, functionOf(measure), timeseries);
    const std::size_t slices =
        subject.useProtocol() ? sliceIntervals(subject.protocol()).size() : 1;
    return connectivityWorker(&subject, watched(measure, slices, progress), timeseries);
}

ComputedMatrices finishSlices(const Subject &subject, std::vector<Eigen::MatrixXf> measured,
                              const ComputeObserver &observer)
{
    const auto show = [&observer](ComputeStep step, const std::vector<Eigen::MatrixXf> &matrices) {
        if (observer)
            observer(step, matrices);
    };
    ComputedMatrices result{std::move(measured), {}};
    show(ComputeStep::Measure, result.connectivity);

    const auto values = static_cast<MatrixValues>(subject.matrixValues());
    for (Eigen::MatrixXf &matrix : result.connectivity)
        treatSigns(matrix, values);
    show(ComputeStep::SignTreatment, result.connectivity);

    for (Eigen::MatrixXf &matrix : result.connectivity)
        nodalis::treatment(matrix);
    show(ComputeStep::Treatment, result.connectivity);

    if (subject.computeMst()) {
        result.trees = spanningTrees(result.connectivity);
        show(ComputeStep::SpanningTrees, result.trees.weights);
    }
    return result;
}
