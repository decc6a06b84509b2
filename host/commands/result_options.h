// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/read_result.h"

#include <QCommandLineParser>

namespace corvane
{

/// What the commands on a finished result have in common: the argument RESULT, and options that say
/// which of its runs is meant and where more is known of its nodes.
void addResultOptions(QCommandLineParser &parser);

/// The name of the argument, for parseArguments().
QString resultArgument();

ResultRequest resultRequest(const QCommandLineParser &parser);

} // namespace corvane
