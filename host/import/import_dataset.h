// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/prt_file.h"
#include "host/files/vmr_file.h"
#include "host/import/atlas.h"
#include "host/import/import_report.h"

#include <functional>
#include <optional>
#include <vector>

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

/// Called with the volumes that are done and their number; false stops the import.
using ImportWatch = std::function<bool(qint64 done, qint64 total)>;

/// An import was stopped by its watch.
class ImportStopped : public std::exception
{
public:
    const char *what() const noexcept override { return "the import was stopped"; }
};

/// What an import makes, but for the time course, and of what.
struct ImportPreview {
    Vmr anatomy;
    FunctionalGrid grid;
    int volumes = 0;
    double repetitionTime = 0; ///< seconds
    VoiSet vois;
    std::vector<LabelCount> labelCounts; ///< one for each VOI
    Prt protocol;
    QStringList notes; ///< what the user should look at, one line each
};

/// Looks at what importDataset would do and writes nothing: `name` and `folder` are not used. The
/// samples of the run are not read. Throws InputError.
ImportPreview previewImport(const ImportRequest &request);

/// Writes NAME.vmr, NAME.vtc and, where there is something to make them of, NAME.voi and NAME.prt;
/// the .vtc names the .prt. All of them appear at the end, or none. Throws InputError
/// and ImportStopped.
ImportReport importDataset(const ImportRequest &request, const ImportWatch &watch = {});

} // namespace corvane
