// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/study/row_record.h"

namespace corvane
{

/// The files that a row is made of, by their roles.
struct RowInput {
    QString role;
    QString path;
};
std::vector<RowInput> inputsOf(const ConnectomeRequest &request);

/// Sets the file of a role.
void setInput(ConnectomeRequest &request, const QString &role, const QString &path);

/// Why a row is to be made, in a few words: "new", "changed: bold", "settings changed",
/// "failed before". Empty when its record says that nothing has changed since and its outputs are
/// there. `settings` is the sum of those asked for now.
QString whyToMake(const StudyRow &row, const std::optional<RowRecord> &record,
                  const StudySettings &settings, const QString &settingsNow);

} // namespace corvane
