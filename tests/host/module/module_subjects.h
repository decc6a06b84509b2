// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// @file
/// Subjects for the module: a small one, the example, and real recordings.

namespace corvane
{

class TemporaryFolder;

/// The files of one subject. Without a protocol of its own it has the one that its VTC names.
struct SubjectFiles {
    QString vmr;
    QString vtc;
    QString voi;
    QString prt;
};

/// 60 volumes of 4 x 4 x 4 samples, six VOIs of two voxels each, and a protocol of blocks and a
/// trigger, which the run names.
SubjectFiles writeSmallSubject(const TemporaryFolder &folder);

/// The example dataset.
SubjectFiles writeExampleSubject(const TemporaryFolder &folder);

/// Whether the folder of real recordings is there.
bool haveRecordings();

enum class Events { LeftOut, Imported };

/// A whole-brain run, "run001" to "run003", imported by the program, and eight VOIs of a few
/// hundred voxels. Without its events it has no protocol.
SubjectFiles importRecording(const TemporaryFolder &folder, const QString &run, Events events);

} // namespace corvane
