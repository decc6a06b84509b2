// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/file_kind.h"
#include "host/files/nifti_header.h"
#include "host/files/prt_file.h"
#include "host/files/vtc_file.h"
#include "host/import/atlas.h"
#include "host/import/resample_anatomy.h"

#include <optional>
#include <vector>

/// @file
/// An import is planned, then written (host/import/write_import.h). The plan is all that it makes
/// but for the time course, whose samples are read when it is written.

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

/// One file of an import.
struct PlannedFile {
    FileKind kind;
    QString name;  ///< without folder
    QString holds; ///< in a few words
};

struct ImportPlan {
    ImportRequest request;
    NiftiHeader run;           ///< four dimensions, each small enough to be counted
    double repetitionTime = 0; ///< seconds
    Vmr anatomy;
    FunctionalGrid grid;
    VoiSet vois;                         ///< without an atlas none
    std::vector<LabelCount> labelCounts; ///< one for each VOI
    Prt protocol;                        ///< without events empty
    std::vector<PlannedFile> files;      ///< in the order in which they are written
    QStringList notes;                   ///< what the user should look at, one line each

    int volumes() const { return static_cast<int>(run.dim[3]); }
    bool writes(FileKind kind) const;
};

/// Looks at all files of an import and writes nothing. The samples of the run are not read. Throws
/// InputError.
ImportPlan planImport(const ImportRequest &request);

/// What a .vtc of the plan will hold, but for its protocol's path and its checksum.
VtcInfo plannedVtc(const ImportPlan &plan);

} // namespace corvane
