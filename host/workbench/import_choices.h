// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/import/import_plan.h"

/// @file
/// What an import of one run has in common with the next one, remembered between sessions.

namespace corvane
{

struct ImportChoices {
    VoiGrid voiGrid = VoiGrid::Functional;
    QString strategy;       ///< of the cleaning; empty for none
    double fdThreshold = 0; ///< mm; 0 for the strategy's own
    /// Those of no single subject whose files are there.
    std::vector<VoiSource> voiSources;
    QString folder; ///< in which the folders of subjects lie
};

ImportChoices rememberedChoices();
void rememberChoices(const ImportChoices &choices);

/// Where the folders of subjects lie: where the last import put its own, at first in the user's
/// documents.
QString folderOfSubjects();

/// Where the files of an import may go: a folder of the subject's name, else of the run's, among
/// those of subjects.
QString proposedFolder(const ImportRequest &request);

} // namespace corvane
