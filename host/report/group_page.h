// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/group/group_results.h"

namespace corvane
{

/// The HTML page of a group: who was left out, how much edges follow motion with and without
/// cleaning, what each test found with its pictures, and a text of methods with references that
/// says exactly what was done. Needs no other file, and a QGuiApplication.
QByteArray groupPage(const GroupRequest &request, const GroupData &data,
                     const GroupResults &results);

} // namespace corvane
