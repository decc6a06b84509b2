// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/events_table.h"

#include "dataset/counted.h"
#include "host/files/input_error.h"
#include "host/files/text_check.h"
#include "host/files/tsv_table.h"

#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

namespace corvane
{

namespace
{

/// Distance from a border between volumes, in volumes, within which a time stands on it.
constexpr double borderTolerance = 1e-3;

QString notAvailable()
{
    return QStringLiteral("n/a");
}

/// Time from the start of the run in volumes.
double inVolumes(double seconds, double repetitionTime)
{
    const double volumes = seconds / repetitionTime;
    const double border = std::round(volumes);
    return std::abs(volumes - border) < borderTolerance ? border : volumes;
}

QString seconds(double time)
{
    return QString::fromLatin1(shortestDecimal(time)) + QStringLiteral(" s");
}

QString intervalText(const QString &condition, double from, double to)
{
    return QStringLiteral("%1 %2-%3")
        .arg(quoted(condition), readableNumber(from, 0), readableNumber(to, 0));
}

/// A time in seconds, unset for "n/a".
std::optional<double> readTime(const TsvTable &table, int row, int column)
{
    const QString text = table.cell(row, column);
    if (text == notAvailable())
        return std::nullopt;
    const std::optional<double> time = finiteNumber(text);
    if (!time)
        throw InputError(table.path(), table.place(row, column), quoted(text),
                         QStringLiteral("seconds or \"n/a\""));
    return time;
}

QString conditionName(const TsvTable &table, int row, int column)
{
    if (column < 0)
        return QFileInfo(table.path()).completeBaseName();
    const QString name = table.cell(row, column);
    if (const std::optional<QString> fault = nameFault(name))
        throw InputError(table.path(), table.place(row, column), *fault,
                         QStringLiteral("the name of a condition"));
    return name == notAvailable() ? QString() : name;
}

/// A list that may be long: the first three and how many more there are.
QString firstOf(const QStringList &all)
{
    constexpr int shown = 3;
    const QString first = QStringList(all.mid(0, shown)).join(QStringLiteral(", "));
    return all.size() > shown ? QStringLiteral("%1 and %2 more").arg(first).arg(all.size() - shown)
                              : first;
}

/// "1 event is", "12 events are"
QString counted(const char *thing, int count, const char *one, const char *many)
{
    return ::counted(count, thing) + QLatin1Char(' ') + QLatin1String(count == 1 ? one : many);
}

/// Rows that share a reason to be told.
struct ToldRows {
    QString reason;
    QStringList rows;
};

/// Rows that are skipped, by their reasons in the order in which these come up.
class SkippedRows
{
public:
    void add(const QString &reason, const QString &row)
    {
        const auto found = std::find_if(m_told.begin(), m_told.end(), [&](const ToldRows &told) {
            return told.reason == reason;
        });
        if (found == m_told.end())
            m_told.push_back({reason, {row}});
        else
            found->rows += row;
    }

    QStringList notes(const QString &path) const
    {
        QStringList notes;
        for (const ToldRows &told : m_told)
            notes +=
                QStringLiteral("%1: %2 skipped, %3: %4")
                    .arg(printable(path, 4096), counted("event", told.rows.size(), "is", "are"),
                         told.reason, firstOf(told.rows));
        return notes;
    }

private:
    std::vector<ToldRows> m_told;
};

/// "line 2 (onset -3 s)"
QString rowWithOnset(const Event &event)
{
    return QStringLiteral("%1 (onset %2)").arg(event.place, seconds(event.onset));
}

struct Interval {
    QString condition;
    int number; ///< of the condition
    int from;
    int to;

    QString text() const { return intervalText(condition, from, to); }
};

std::vector<Interval> allIntervals(const Prt &prt)
{
    std::vector<Interval> intervals;
    int number = 0;
    for (const PrtCondition &condition : prt.conditions) {
        for (const auto &[from, to] : condition.intervals)
            intervals.push_back({condition.name, number, from, to});
        ++number;
    }
    // Stable: among equal starts the order of the protocol stays.
    std::stable_sort(intervals.begin(), intervals.end(),
                     [](const Interval &a, const Interval &b) { return a.from < b.from; });
    return intervals;
}

/// The end of the intervals that start where the one at `begin` does.
std::size_t endOfEqualStarts(const std::vector<Interval> &intervals, std::size_t begin)
{
    std::size_t end = begin;
    while (end < intervals.size() && intervals[end].from == intervals[begin].from)
        ++end;
    return end;
}

QStringList overlapNotes(const std::vector<Interval> &intervals)
{
    int count = 0;
    QString first;
    const Interval *longest = nullptr; // of those that began earlier, the one that ends last
    for (std::size_t begin = 0, end = 0; begin < intervals.size(); begin = end) {
        end = endOfEqualStarts(intervals, begin);
        if (longest && longest->to >= intervals[begin].from) {
            count += static_cast<int>(end - begin);
            if (first.isEmpty())
                first = QStringLiteral("%1 and %2").arg(longest->text(), intervals[begin].text());
        }
        for (std::size_t i = begin; i < end; ++i)
            if (!longest || intervals[i].to > longest->to)
                longest = &intervals[i];
    }
    if (count == 0)
        return {};
    return {QStringLiteral("protocol: %1 before an earlier one has ended, first %2")
                .arg(counted("interval", count, "begins", "begin"), first)};
}

/// Of intervals with the same start the first one of the last condition keeps the slice.
QStringList equalStartNotes(const std::vector<Interval> &intervals)
{
    QStringList losers;
    for (std::size_t begin = 0, end = 0; begin < intervals.size(); begin = end) {
        end = endOfEqualStarts(intervals, begin);
        std::size_t winner = begin;
        for (std::size_t i = begin; i < end; ++i)
            if (intervals[i].number > intervals[winner].number)
                winner = i;
        for (std::size_t i = begin; i < end; ++i)
            if (i != winner)
                losers += QStringLiteral("%1 beside %2")
                              .arg(intervals[i].text(), intervals[winner].text());
    }
    if (losers.isEmpty())
        return {};
    return {QStringLiteral("protocol: %1 no slice, since another begins at the same volume: %2")
                .arg(counted("interval", losers.size(), "gets", "get"), firstOf(losers))};
}

/// Plugins read names as at most 255 characters of Latin-1.
QByteArray nameForPlugins(const QString &name)
{
    return name.toLatin1().left(255);
}

QStringList equalNameNotes(const Prt &prt)
{
    QStringList notes;
    std::map<QByteArray, QStringList> names;
    for (const PrtCondition &condition : prt.conditions)
        names[nameForPlugins(condition.name)] += quoted(condition.name);
    for (const auto &[shown, conditions] : names)
        if (conditions.size() > 1)
            notes +=
                QStringLiteral("protocol: %1 conditions have the same name for plugins, %2: %3")
                    .arg(QString::number(conditions.size()), quoted(QString::fromLatin1(shown)),
                         conditions.join(QStringLiteral(", ")));
    return notes;
}

QStringList mixNotes(const Prt &prt)
{
    QStringList notes;
    for (const PrtCondition &condition : prt.conditions) {
        const auto single =
            std::count_if(condition.intervals.begin(), condition.intervals.end(),
                          [](const auto &pair) { return pair.first == pair.second; });
        const auto longer = static_cast<std::ptrdiff_t>(condition.intervals.size()) - single;
        if (single > 0 && longer > 0)
            notes +=
                QStringLiteral("protocol: condition %1 mixes %2 one-volume and %3 longer "
                               "intervals: all its slices count as events")
                    .arg(quoted(condition.name), QString::number(single), QString::number(longer));
    }
    return notes;
}

} // namespace

EventsTable readEvents(const QString &path, QStringList &notes)
{
    const TsvTable table(path);
    notes += table.notes();
    const int onsetColumn = table.requiredColumn(QStringLiteral("onset"));
    const int durationColumn = table.requiredColumn(QStringLiteral("duration"));
    const int conditionColumn = table.column(QStringLiteral("trial_type"));

    EventsTable result;
    result.path = path;
    SkippedRows skipped;
    for (int row = 0; row < table.rowCount(); ++row) {
        const QString place = table.place(row);
        const QString condition = conditionName(table, row, conditionColumn);
        if (!condition.isEmpty() && !result.conditions.contains(condition))
            result.conditions += condition;
        const std::optional<double> onset = readTime(table, row, onsetColumn);
        const std::optional<double> duration = readTime(table, row, durationColumn);
        if (duration && *duration < 0)
            throw InputError(path, table.place(row, durationColumn), seconds(*duration),
                             QStringLiteral("0 or more"));
        if (!onset)
            skipped.add(QStringLiteral("no onset (n/a)"), place);
        else if (!duration)
            skipped.add(QStringLiteral("no duration (n/a)"), place);
        else if (condition.isEmpty())
            skipped.add(QStringLiteral("no trial_type (n/a)"), place);
        else
            result.events.push_back({condition, *onset, *duration, place});
    }
    notes += skipped.notes(path);
    return result;
}

VolumeInterval volumesOfEvent(double onset, double duration, double repetitionTime)
{
    const double from = std::floor(inVolumes(onset, repetitionTime)) + 1;
    const double to = std::ceil(inVolumes(onset + duration, repetitionTime));
    return {from, std::max(from, to)};
}

Prt protocolFromEvents(const EventsTable &table, const QString &name, double repetitionTime,
                       int volumes, QStringList &notes)
{
    Prt prt;
    prt.name = name;
    for (const QString &condition : table.conditions)
        prt.conditions.push_back({condition, {}});
    SkippedRows skipped;
    QStringList cut;
    for (const Event &event : table.events) {
        const VolumeInterval interval = volumesOfEvent(event.onset, event.duration, repetitionTime);
        if (interval.from < 1) {
            skipped.add(QStringLiteral("before the first volume"), rowWithOnset(event));
            continue;
        }
        if (interval.from > volumes) {
            skipped.add(QStringLiteral("behind the last of %1 volumes").arg(volumes),
                        rowWithOnset(event));
            continue;
        }
        if (interval.to > volumes)
            cut += QStringLiteral("%1 (%2)").arg(
                event.place, intervalText(event.condition, interval.from, interval.to));
        prt.conditions[table.conditions.indexOf(event.condition)].intervals.emplace_back(
            static_cast<int>(interval.from),
            static_cast<int>(std::min(interval.to, double(volumes))));
    }
    notes += skipped.notes(table.path);
    if (!cut.isEmpty())
        notes += QStringLiteral("%1: %2 cut at the last of %3 volumes: %4")
                     .arg(printable(table.path, 4096), counted("event", cut.size(), "is", "are"),
                          QString::number(volumes), firstOf(cut));
    for (const PrtCondition &condition : prt.conditions)
        if (condition.intervals.empty())
            notes += QStringLiteral("protocol: condition %1 has no interval")
                         .arg(quoted(condition.name));
    notes += protocolNotes(prt);
    return prt;
}

QStringList protocolNotes(const Prt &prt)
{
    const std::vector<Interval> intervals = allIntervals(prt);
    return overlapNotes(intervals) + equalStartNotes(intervals) + equalNameNotes(prt) +
           mixNotes(prt);
}

QStringList shortIntervalNotes(const Prt &prt)
{
    QStringList notes;
    for (const PrtCondition &condition : prt.conditions) {
        if (condition.intervals.empty())
            continue; // told where the protocol is made
        int brief = 0;
        int shortest = condition.intervals.front().second;
        int volumes = 0;
        for (const auto &[from, to] : condition.intervals) {
            const int length = to - from + 1;
            brief += length < fewVolumes;
            shortest = std::min(shortest, length);
            volumes += length;
        }
        if (brief > 0)
            notes +=
                QStringLiteral("protocol: condition %1: %2 of %3 below %4 volumes, the shortest "
                               "has %5: their matrices say little")
                    .arg(quoted(condition.name), QString::number(brief),
                         ::counted(qint64(condition.intervals.size()), "interval"),
                         QString::number(fewVolumes), QString::number(shortest));
        if (volumes < fewVolumes)
            notes += QStringLiteral("protocol: condition %1 has only %2 in all")
                         .arg(quoted(condition.name), ::counted(volumes, "volume"));
    }
    return notes;
}

} // namespace corvane
