// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/study/run_rows.h"

namespace corvane
{

/// Writes dataset_description.json, of a derivative of the dataset, unless it stands there like
/// this. Under the study's lock. Throws InputError, also for a folder that describes another
/// dataset.
void writeDescription(const QString &out, const QString &dataset, const Tell &tell);

/// Writes the study's table, participants_connectome.tsv, from the records of all participants:
/// whatever was computed where. Rows that a process which is gone had in work are recorded as
/// failed. Where rows have pages, so do their participants and the study: these need a
/// QGuiApplication. May be done any number of times, under the study's lock. Throws InputError.
void collectStudy(const QString &out, const Tell &tell);

} // namespace corvane
