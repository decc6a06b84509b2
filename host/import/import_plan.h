// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/file_kind.h"
#include "host/files/nifti_header.h"
#include "host/files/progress.h"
#include "host/files/provenance.h"
#include "host/files/prt_file.h"
#include "host/files/vtc_file.h"
#include "host/import/atlas.h"
#include "host/import/resample_anatomy.h"
#include "host/import/voi_source.h"

#include <memory>
#include <optional>
#include <vector>

/// @file
/// An import is planned, then written (host/import/write_import.h). The plan is all that it makes
/// but for the time course, whose samples are read when it is written.

namespace corvane
{

struct CleaningRequest; // host/extract/run_cleaning.h
struct RunCleaning;

/// What to import and how. Paths that are not given are empty.
struct ImportRequest {
    QString anatomy;                      ///< 3-D image: NIfTI or NRRD; else the run's mean
    QString functional;                   ///< 4-D run: NIfTI
    std::vector<VoiSource> voiSources;    ///< their VOIs follow each other in this order
    QString events;                       ///< table of events, for a protocol
    Provenance provenance;                ///< what is empty is taken from the names of the files
    std::optional<int> resolution;        ///< cube voxels per sample; else nearestResolution
    std::optional<double> repetitionTime; ///< seconds; else the header's
    VoiGrid voiGrid = VoiGrid::Functional;
    QString confounds; ///< the run's table, for whoever chooses a cleaning; is not read by itself
    std::shared_ptr<const CleaningRequest> cleaning; ///< null: samples stay as they are
    QString name;   ///< of the files that are written, without ending
    QString folder; ///< where they are written; made when it is missing
};

/// What a cleaning looked at in each volume of the run.
struct VolumeChoice {
    std::vector<double> displacement; ///< framewise, in mm; not a number where there is none
    std::vector<bool> leftOut;
    double fdThreshold = 0; ///< mm; 0 for none
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
    VoiSet vois;                                 ///< without a source of VOIs none
    std::vector<LabelCount> labelCounts;         ///< one for each VOI
    std::shared_ptr<const RunCleaning> cleaning; ///< null: samples stay as they are
    Prt protocol;                   ///< without events empty; on the volumes that are kept
    std::vector<PlannedFile> files; ///< in the order in which they are written
    QStringList notes;              ///< what the user should look at, one line each

    /// In the run, and in the .vtc: those that the cleaning keeps.
    int volumes() const { return static_cast<int>(run.dim[3]); }
    int keptVolumes() const;
    /// Of an import that is cleaned.
    VolumeChoice volumeChoice() const;
    bool writes(FileKind kind) const;
};

/// Looks at all files of an import and writes nothing. The samples of the run are read only when
/// its mean is to be the anatomy, which the watch is told of. Throws InputError, WorkStopped, and
/// with a cleaning what planImportCleaning throws.
ImportPlan planImport(const ImportRequest &request, const ProgressWatch &watch = {});

/// What a .vtc of the plan will hold, but for its protocol's path and its checksum; and what it
/// would hold without the cleaning.
VtcInfo plannedVtc(const ImportPlan &plan);
VtcInfo uncleanedVtc(const ImportPlan &plan);

} // namespace corvane
