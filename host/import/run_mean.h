// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/image3d.h"
#include "host/files/progress.h"

#include <QString>
#include <QStringList>

namespace corvane
{

/// The mean over the volumes of a run, for each voxel over those of its samples that are finite; 0
/// where there is none. All of the run is read; the last mean is kept, so that plans of one import
/// read it once. Tells the watch of volumes. Throws InputError and WorkStopped.
Image3d<float> runMean(const QString &path, QStringList &notes, const ProgressWatch &watch = {});

} // namespace corvane
