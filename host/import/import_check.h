// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/import/import_plan.h"

#include <memory>

/// @file
/// An import whose files are looked at one by one, so that a bad one keeps no other from being
/// shown.

namespace corvane
{

/// What is found of one field.
struct FieldCheck {
    QString found; ///< what the file holds, in a few words; empty where there is nothing to tell
    QString
        fault; ///< why it cannot be used, in one line without the file's name; empty when it can
};

struct ImportCheck {
    FieldCheck anatomy;
    FieldCheck functional;
    FieldCheck events;
    FieldCheck confounds;
    FieldCheck folder;
    FieldCheck name;
    std::vector<FieldCheck> voiSources; ///< one for each of the request's

    /// What faults no field has, in one line.
    QString other;

    bool hasFaults() const;
};

struct CheckedImport {
    ImportCheck check;
    /// Of all that can be used; null when the run or the anatomy cannot.
    std::shared_ptr<const ImportPlan> plan;
};

/// Looks at all fields and plans the import without those that cannot be used. Throws WorkStopped.
CheckedImport checkImport(const ImportRequest &request, const ProgressWatch &watch = {});

} // namespace corvane
