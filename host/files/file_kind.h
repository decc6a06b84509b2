// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <initializer_list>

/// @file
/// What a file is, by the ending of its name in any case of letters.

namespace corvane
{

enum class FileKind {
    Vmr,
    Vtc,
    Voi,
    Prt,
    Nifti, ///< also packed
    Nrrd,
    Table, ///< text with tabs or blanks between its columns
    Other
};

/// The kind of a file, FileKind::Other for an ending that is none of ours.
FileKind fileKind(const QString &path);

/// The name of a file of that kind: `name` with the kind's ending.
QString fileName(const QString &name, FileKind kind);

/// The file's name without its folder and without the ending that tells its kind.
QString nameWithoutEnding(const QString &path);

/// The endings of all kinds, for messages: ".vmr, .vtc, ... and .txt".
QString knownEndings();

/// A filter for file dialogs: "Time courses (*.vtc)".
QString fileFilter(const QString &description, std::initializer_list<FileKind> kinds);

} // namespace corvane
