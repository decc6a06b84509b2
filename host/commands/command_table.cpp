// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/command_table.h"

#include "host/commands/commands.h"

namespace corvane
{

const std::vector<Command> &commands()
{
    static const std::vector<Command> all{
#ifdef CORVANE_IMPORT
        exampleCommand(),    importCommand(),
#endif
        compareCommand(),    computeCommand(), graphCommand(),   distanceCommand(), groupCommand(),
#ifdef CORVANE_IMPORT
        connectomeCommand(), cohortCommand(),  exploreCommand(), figureCommand(),   tourCommand(),
#endif
    };
    return all;
}

const Command &commandWithoutName()
{
    static const Command workbench = workbenchCommand();
    return workbench;
}

} // namespace corvane
