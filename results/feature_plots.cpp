// SPDX-License-Identifier: GPL-3.0-or-later
#include "results/feature_plots.h"

#include "dataset/subject.h"
#include "plots/line_plot.h"
#include "plots/timeseries_line_plot.h"
#include "results/fitted_names.h"

namespace
{

QString windowTitle(const QString &title)
{
    return QStringLiteral("Plot: %1").arg(title);
}

} // namespace

LinePlot *plotPerNode(const QString &title, const FeatureValues &values, const Subject &subject,
                      QWidget *parent)
{
    const bool useProtocol = subject.useProtocol();
    const QStringList names = subject.protocol().volumeNames.values();
    const QList<int> events = subject.protocol().volumeEvents.values();
    const int nodes = values.empty() ? 0 : int(values.front().size());

    auto *const plot = new LinePlot(title, parent);
    plot->setWindowTitle(windowTitle(title));
    plot->prepareChart();
    for (int slice = 0; slice < int(values.size()); ++slice) {
        const std::vector<float> &line = values[std::size_t(slice)];
        if (useProtocol)
            plot->addSeries(line, nameAt(names, slice), events.value(slice));
        else
            plot->addSeries(line, QStringLiteral("Series %1").arg(slice), 0);
    }
    plot->finishPlot(fittedNames(subject.voiLabels(false), nodes), useProtocol);
    if (!useProtocol)
        plot->disableConditions();
    return plot;
}

TimeseriesLinePlot *plotPerSlice(const QString &title, const std::vector<float> &values,
                                 const Subject &subject, QWidget *parent)
{
    const QStringList names = subject.protocol().volumeNames.values();
    auto *const plot = new TimeseriesLinePlot(title, parent);
    plot->setWindowTitle(windowTitle(title));
    plot->prepareChart();
    plot->setSeries(values, QString());
    plot->finishPlot(fittedNames(names, int(values.size())));
    return plot;
}
