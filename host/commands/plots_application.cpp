// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/commands.h"
#include "host/workbench/application.h"

namespace corvane
{

std::unique_ptr<QCoreApplication> makePlotsApplication(const QStringList &arguments, int &argc,
                                                       char **argv)
{
    if (!arguments.contains(QStringLiteral("--plots")) &&
        !arguments.contains(QStringLiteral("--page")))
        return makePlainApplication(arguments, argc, argv);
    argc = 1; // the arguments are those of a command, none is Qt's
    return makePictureApplication(argc, argv, false);
}

} // namespace corvane
