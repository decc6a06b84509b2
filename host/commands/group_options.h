// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/group/group_request.h"

#include <QCommandLineParser>

/// @file
/// What commands that test a group have in common, wherever its matrices are from.

namespace corvane
{

/// All options but those that say where the matrices are and where the results go.
QList<QCommandLineOption> groupOptions();

/// What these options ask for, without a table or a study. Throws UsageError.
GroupRequest groupRequest(const QCommandLineParser &parser);

/// Does all tests and writes their files, with pictures and a page if these are asked for; tells
/// what the user should know. `writer` is the command (OutputFolder). Throws InputError,
/// statistics::Error.
void runGroup(const GroupRequest &request, const QCommandLineParser &parser, const QString &folder,
              const QString &writer);

} // namespace corvane
