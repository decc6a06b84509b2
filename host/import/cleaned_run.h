// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/run_cleaning.h"
#include "host/files/progress.h"
#include "host/files/prt_file.h"
#include "host/files/vtc_file.h"

/// @file
/// An imported run whose voxels are cleaned. Whoever includes this links `signals`.

namespace corvane
{

/// How a run is cleaned for an import. Throws what planCleaning throws, and signals::UsageError
/// when the series are to be standardised: then slices would show nothing.
RunCleaning planImportCleaning(const CleaningRequest &request, int volumes, double repetitionTime,
                               QStringList &notes);

/// What stands of it in the header of a `.vtc`.
CleaningLedger ledgerOf(const CleaningRequest &request, const RunCleaning &cleaning);

/// The protocol on the volumes that are kept, which are numbered anew: an interval has those of its
/// volumes that are left, or is gone. Each that shrinks or goes is told in `notes`. `kept` counts
/// from 0, the protocol from 1.
Prt renumberedProtocol(const Prt &protocol, const std::vector<Eigen::Index> &kept,
                       QStringList &notes);

/// Writes a cleaned copy of a run: `info` is what it will hold, the kept volumes as floats. The
/// mean of each voxel over the kept volumes is added again, so that slices stay readable. A voxel
/// with a sample that is not finite has none that is; how many these are is returned. Tells the
/// watch of voxels. Throws InputError and WorkStopped.
qint64 writeCleanedRun(const QString &path, const VtcInfo &info, const VtcFile &run,
                       const signals::Design &design, const ProgressWatch &watch);

} // namespace corvane
