// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// @file
/// One function for each subcommand, in the file of its name.

namespace corvane
{

struct Command;

Command cohortCommand();
Command compareCommand();
Command computeCommand();
Command connectomeCommand();
Command distanceCommand();
Command exampleCommand();
Command exploreCommand();
Command figureCommand();
Command graphCommand();
Command groupCommand();
Command importCommand();
Command tourCommand();
Command workbenchCommand();

} // namespace corvane
