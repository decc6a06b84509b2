// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/prt_file.h"

#include <QString>
#include <QStringList>
#include <vector>

/// @file
/// From a table of events (BIDS `events.tsv`) to a protocol.

namespace corvane
{

/// One row of the table that can be used.
struct Event {
    QString condition;
    double onset;    ///< seconds from the first stored volume, below 0 for one before it
    double duration; ///< seconds, 0 or more
    QString place;   ///< of the row in the file
};

struct EventsTable {
    QString path;
    QStringList conditions; ///< in the order of their first rows, also of rows that were skipped
    std::vector<Event> events;
};

/// Reads a table with the columns "onset" and "duration" and, if there is one, "trial_type", which
/// names the condition; without it the file's name does. Rows without an onset, a duration or a
/// condition ("n/a") are skipped, with one line in `notes` for each of these reasons. Throws
/// InputError for anything that is no time.
EventsTable readEvents(const QString &path, QStringList &notes);

/// The first and last volume of an event, counted from 1: from the volume in which it begins to the
/// one in which it ends, at least one. A time within a thousandth of a volume of a border between
/// volumes stands on that border: repetition times are rounded numbers.
struct VolumeInterval {
    double from;
    double to;
};
VolumeInterval volumesOfEvent(double onset, double duration, double repetitionTime);

/// The protocol of a run. Intervals that run past the last volume are cut, those behind it and
/// those that begin before the first are skipped. Each of these is said in one line of `notes`, and
/// so is all that protocolNotes finds.
Prt protocolFromEvents(const EventsTable &table, const QString &name, double repetitionTime,
                       int volumes, QStringList &notes);

/// What is legal in a protocol and yet may surprise: overlaps, intervals that begin at the same
/// volume, so that only the last of them gets a connectivity matrix, conditions whose names a
/// plugin cannot tell apart, and conditions that mix one-volume and longer intervals, all of which
/// then count as events.
QStringList protocolNotes(const Prt &prt);

/// A matrix of fewer volumes says little.
constexpr int fewVolumes = 10;

/// Conditions with intervals below fewVolumes, and those that have fewer in all, one line each.
QStringList shortIntervalNotes(const Prt &prt);

} // namespace corvane
