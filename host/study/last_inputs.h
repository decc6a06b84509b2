// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

namespace corvane
{

/// What a study's rows were made of and how.
struct StudyInputs {
    QString dataset;
    QString atlas, labels; ///< absolute paths; labels are empty without
    QJsonObject options;   ///< those that say how matrices are made, with their values
};

/// Of the row that was computed last; unset without one.
std::optional<StudyInputs> lastInputs(const QString &out);

} // namespace corvane
