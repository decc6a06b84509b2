// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/result_options.h"

namespace corvane
{

QString resultArgument()
{
    return QStringLiteral("RESULT");
}

void addResultOptions(QCommandLineParser &parser)
{
    parser.addPositionalArgument(
        resultArgument(), QStringLiteral("A folder of connectome, compute or group, a "
                                         "participant's func folder of a study, or a matrix."));
    const auto file = QStringLiteral("file");
    parser.addOptions({
        {QStringLiteral("run"),
         QStringLiteral("Which run of the folder: what its files begin with, up to the atlas. The "
                        "first without."),
         QStringLiteral("name")},
        {QStringLiteral("labels"), QStringLiteral("A table of labels with networks and sides."),
         file},
        {QStringLiteral("centroids"), QStringLiteral("A table of nodes with x, y and z in mm."),
         file},
        {QStringLiteral("atlas"),
         QStringLiteral("An atlas, a mask or an anatomy, for the brain's outline."), file},
    });
}

ResultRequest resultRequest(const QCommandLineParser &parser)
{
    return {parser.positionalArguments().front(), parser.value(QStringLiteral("run")),
            parser.value(QStringLiteral("labels")), parser.value(QStringLiteral("centroids")),
            parser.value(QStringLiteral("atlas"))};
}

} // namespace corvane
