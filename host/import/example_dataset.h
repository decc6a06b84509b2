// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/import/write_import.h"

namespace corvane
{

/// Writes the example dataset into a folder, as a user would have it from a scanner and an atlas,
/// and imports it: anatomy, run and labels as NIfTI, the names of the labels and the events as TSV,
/// the correlations that the signals were made with, and the host's own files. The same on each
/// machine. All files appear at the end, or none. Throws InputError and WorkStopped.
ImportReport writeExample(const QString &folder, const ProgressWatch &watch = {});

} // namespace corvane
