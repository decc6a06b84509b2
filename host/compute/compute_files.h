// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/compute/compute.h"
#include "host/files/output_folder.h"

namespace corvane
{

/// "<kind>.<ending>", or with a protocol "<kind>_<slice>_<condition>.<ending>", the condition cut
/// and cleaned where a file name has no room for it.
QString sliceFileName(const QString &kind, const QString &ending, const ComputeRequest &request,
                      const ComputeResult &result, std::size_t slice);

/// Writes the tables of a compute, and a summary that names `pictures` too. Throws InputError and
/// WorkStopped.
void writeComputeTables(const OutputFolder &folder, const ComputeRequest &request,
                        const ComputeResult &result, const QStringList &pictures,
                        const StepWatch &steps = {});

} // namespace corvane
