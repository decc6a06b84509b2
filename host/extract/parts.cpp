// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/extract/parts.h"

#include "host/derivatives/bids_names.h"
#include "signals/conditions.h"

#include <numeric>

namespace corvane
{

namespace
{

using Index = Eigen::Index;

Part wholeRun(std::size_t rows)
{
    Part part;
    part.rows.resize(rows);
    std::iota(part.rows.begin(), part.rows.end(), Index(0));
    part.effective = double(rows);
    return part;
}

/// "window-007", with as many digits as the last one needs.
QString numbered(const char *entity, std::size_t number, std::size_t count)
{
    return QLatin1String(entity) +
           QStringLiteral("%1").arg(number, QString::number(count).size(), 10, QLatin1Char('0'));
}

void addWindows(const PartsRequest &request, const std::vector<Index> &kept, Index volumes,
                Index firstSteady, double repetitionTime, std::vector<Part> &parts)
{
    const std::vector<signals::Window> all =
        signals::windows(volumes, firstSteady, repetitionTime, *request.window, request.step);
    for (std::size_t n = 0; n < all.size(); ++n) {
        const Eigen::ArrayXd weights = signals::window_weights(all[n], request.taper, kept);
        Part part;
        part.entity = numbered("window-", n + 1, all.size());
        part.windows = {all[n]};
        part.rows = signals::rows_in(part.windows, kept);
        part.weights = weights(part.rows);
        part.filled = signals::is_filled(all[n], kept);
        part.effective = signals::effective_volumes(weights);
        parts.push_back(part);
    }
}

Part conditionPart(const PartsRequest &request, const QString &entity, const QString &condition,
                   const std::vector<signals::Window> &windows, const std::vector<Index> &kept)
{
    Part part;
    part.entity = entity;
    part.condition = condition;
    part.windows = windows;
    part.rows = signals::rows_in(windows, kept);
    part.centreIntervals = request.centreIntervals;
    part.filled = Index(part.rows.size()) >= signals::least_volumes;
    part.effective = double(part.rows.size());
    return part;
}

/// The letters and digits of each condition; numbers tell apart what would be equal.
QStringList conditionLabels(const QStringList &conditions)
{
    QStringList labels;
    for (const QString &condition : conditions) {
        const QString label = bidsLabel(condition);
        QString unique = label.isEmpty() ? QStringLiteral("condition") : label;
        for (int number = 2; labels.contains(unique, Qt::CaseInsensitive); ++number)
            unique = label + QString::number(number);
        labels += unique;
    }
    return labels;
}

void addConditions(const PartsRequest &request, const std::vector<Index> &kept, Index volumes,
                   double repetitionTime, std::vector<Part> &parts)
{
    const EventsTable &table = *request.events;
    const QStringList labels = conditionLabels(table.conditions);
    for (int number = 0; number < table.conditions.size(); ++number) {
        const QString &condition = table.conditions[number];
        std::vector<signals::Window> intervals;
        for (const Event &event : table.events) {
            if (event.condition != condition)
                continue;
            const signals::Window interval = signals::event_volumes(
                {event.onset, event.duration}, request.delay, repetitionTime, volumes);
            if (interval.length > 0)
                intervals.push_back(interval);
        }
        const QString entity = QStringLiteral("cond-") + labels[number];
        parts.push_back(conditionPart(request, entity, condition, intervals, kept));
        for (std::size_t n = 0; request.perInterval && n < intervals.size(); ++n)
            parts.push_back(conditionPart(request,
                                          entity + numbered("_interval-", n + 1, intervals.size()),
                                          condition, {intervals[n]}, kept));
    }
}

} // namespace

std::vector<Part> partsOf(const PartsRequest &request, const std::vector<Index> &kept,
                          Index volumes, Index firstSteady, double repetitionTime)
{
    std::vector<Part> parts{wholeRun(kept.size())};
    if (request.window)
        addWindows(request, kept, volumes, firstSteady, repetitionTime, parts);
    if (request.events)
        addConditions(request, kept, volumes, repetitionTime, parts);
    return parts;
}

} // namespace corvane
