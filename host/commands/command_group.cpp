// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/commands/group_options.h"

namespace corvane
{

namespace
{

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Tests a group at every edge of its matrices, networks of edges above a threshold, "
        "distances between matrices, how well edges repeat, and how much they follow motion."));
    parser.addOptions({
        {QStringLiteral("table"),
         QStringLiteral("A row for each participant: participant_id, matrix (its path, relative to "
                        "the table) and the columns of the formula, with tabs between them."),
         QStringLiteral("file")},
        {QStringLiteral("out"), QStringLiteral("The folder for the tables."),
         QStringLiteral("folder")},
    });
    parser.addOptions(groupOptions());
    if (!parseArguments(parser, arguments, {}, {QStringLiteral("contrast")}))
        return Done;

    const QString table = requiredValue(parser, QStringLiteral("table"));
    GroupRequest request = groupRequest(parser);
    request.table = table;
    runGroup(request, parser, requiredValue(parser, QStringLiteral("out")), arguments.front());
    return Done;
}

} // namespace

Command groupCommand()
{
    return {"group",
            R"(Corvane group --table T.tsv [--test glm,nbs,distance,icc,fingerprint,qcfc,tangent]
                  [--formula "group + age"] [--contrast NAME=SUM ...]
                  [--threshold 3.1,...] [--sides each|both|greater|less] [--permutations N]
                  [--seed N] [--permutation-file F] [--blocks COLUMN] [--paired]
                  [--session COLUMN] [--centroids F] [--fisher-z auto|yes|no]
                  [--min-node-subjects 0.9] [--threads N] [--plots]
                  [--page] --out DIR)",
            "Tests a group's matrices: edges, networks, distances, reliability, motion.", run,
            makePlotsApplication};
}

} // namespace corvane
