// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/derivatives/run_files.h"

#include <memory>

/// @file
/// The images of runs in a participant's folder.

namespace corvane
{

struct RunImage {
    BidsName name;
    QString folder;                            ///< below the dataset: "sub-01/func"
    std::shared_ptr<const ListedFolder> files; ///< all that lie beside it
};

/// Endings of images that can be read.
const QStringList &imageEndings();

/// "sub-01"
QString participantFolder(const QString &participant);

/// Whether the dataset has a folder of the participant.
bool hasParticipant(const QString &dataset, const QString &participant);

/// The participant's runs: NIfTI with desc-preproc, the suffix bold and a space, no single echoes.
/// Sorted by folder, then by name.
std::vector<RunImage> runImages(const QString &dataset, const QString &participant);

} // namespace corvane
