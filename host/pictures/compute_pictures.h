// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/compute/compute.h"
#include "host/files/output_folder.h"
#include "host/files/progress.h"

namespace corvane
{

/// What of a result is not drawn and why, one line each.
QStringList picturesLeftOut(const ComputeRequest &request, const ComputeResult &result);

/// Draws all pictures of a result into the folder: for each slice that is no event its ring, its
/// matrix and the overview of it, and for the whole result a line plot per measure. Returns their
/// file names. Needs a QApplication. Throws InputError and WorkStopped.
QStringList writeComputePictures(const OutputFolder &folder, const ComputeRequest &request,
                                 const ComputeResult &result, const ProgressWatch &watch = {});

} // namespace corvane
