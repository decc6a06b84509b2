// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/atlas.h"
#include "host/import_report.h"

#include <optional>

namespace corvane
{

/// What to import and how. Paths that are not given are empty.
struct ImportRequest {
    QString anatomy;                      ///< 3-D image: NIfTI or NRRD
    QString functional;                   ///< 4-D run: NIfTI
    QString atlas;                        ///< 3-D image of labels, for VOIs
    QString labels;                       ///< table with the names of the labels
    QString events;                       ///< table of events, for a protocol
    std::optional<int> resolution;        ///< cube voxels per sample; else nearestResolution
    std::optional<double> repetitionTime; ///< seconds; else the header's
    VoiGrid voiGrid = VoiGrid::Functional;
    QString name;   ///< of the files that are written, without ending
    QString folder; ///< where they are written; made when it is missing
};

/// The name of the files when the user gives none: that of the run without ".nii" or ".nii.gz".
QString defaultImportName(const QString &functional);

/// Writes NAME.vmr, NAME.vtc and, where there is something to make them of, NAME.voi and NAME.prt;
/// the .vtc names the .prt. All of them appear at the end, or none. Throws InputError.
ImportReport importDataset(const ImportRequest &request);

} // namespace corvane
