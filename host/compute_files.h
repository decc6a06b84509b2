// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/compute.h"

namespace corvane
{

/// Writes the tables and the summary of a compute into a folder, which is made when it is missing.
/// The files appear together or, when one cannot be written, not at all; files of the same names
/// are replaced. Throws InputError.
void writeComputeFiles(const QString &folder, const ComputeRequest &request,
                       const ComputeResult &result);

} // namespace corvane
