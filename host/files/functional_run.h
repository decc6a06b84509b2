// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/nifti_header.h"

#include <optional>

/// @file
/// What every reader of a functional run asks of its header.

namespace corvane
{

/// The header of a 4-D run, whose volumes and voxels are few enough to be counted. What a user
/// should know of its orientation is appended to `notes`. Throws InputError.
NiftiHeader readRunHeader(const QString &path, QStringList &notes);

/// The repetition time of a run in seconds: the one that the user gave, else the header's. Throws
/// InputError when there is none; what is doubtful is said in `notes`.
double runRepetitionTime(const QString &path, const NiftiHeader &header,
                         const std::optional<double> &given, QStringList &notes);

} // namespace corvane
