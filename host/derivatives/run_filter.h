// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/derivatives/bids_names.h"

#include <optional>
#include <utility>
#include <vector>

/// @file
/// Which runs of a dataset are asked for.

namespace corvane
{

/// Labels without their prefix; an empty list asks for all.
struct RunFilter {
    QStringList participants;
    QStringList sessions;
    QStringList tasks;
    QStringList spaces;
    QString filterFile;          ///< a BIDS filter file; empty for none
    bool confoundsNeeded = true; ///< whether a run without a table of confounds is of no use
};

/// What the entry "bold" of a BIDS filter file asks for: JSON such as
///
///     {"bold": {"task": ["rest"], "run": 1, "echo": null, "acquisition": "*"}}
///
/// A value is a label, a number (which is also met by one with zeros in front), null for a name
/// without the entity, "*" for any label, or a list of which one must be met. Entities have their
/// long or their short names; datatype, suffix and extension may stand there too.
class FilterFile
{
public:
    /// Asks for everything.
    FilterFile() = default;
    /// Throws InputError.
    explicit FilterFile(const QString &path);

    bool accepts(const BidsName &run) const;

private:
    struct Condition {
        QString entity;                          ///< as it stands in names: "acq"
        std::vector<std::optional<QString>> any; ///< labels, of which none means none
    };

    std::vector<Condition> m_conditions;
};

} // namespace corvane
