// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/provenance.h"

#include <QStringList>

/// @file
/// Whose data an import makes files of, and in which space they lie, by the names of its files.

namespace corvane
{

struct ImportRequest;

/// What the user gives; else what the run's name says in "sub-" and "space-", else the anatomy's.
/// Empty where none of them tells.
Provenance provenanceOf(const ImportRequest &request);

/// Names that contradict each other, one line each: an anatomy, an atlas or another file of another
/// subject or space than the run.
QStringList provenanceNotes(const ImportRequest &request);

} // namespace corvane
