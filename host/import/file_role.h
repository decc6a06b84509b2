// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// @file
/// What a file is to an import: by its name, else by what it holds.

namespace corvane
{

enum class FileRole {
    Anatomy,
    Run,       ///< an image of several volumes
    Atlas,     ///< an image of labels
    Mask,      ///< an image of one label
    Labels,    ///< table with the names of labels
    Spheres,   ///< table of places
    Events,    ///< table of events
    Confounds, ///< table of what a pipeline tells of each volume
    None       ///< nothing that can be imported
};

/// Reads no more than it needs to: of a table the first line, of an image the header, and the
/// voxels only of one whose name does not tell. Throws InputError for a file that cannot be read.
FileRole roleOf(const QString &path);

/// Whether an image has more than one volume, by its header. False for a file that cannot be read.
bool isRun(const QString &path);

} // namespace corvane
