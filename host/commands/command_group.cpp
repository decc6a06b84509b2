// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/counted.h"
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/commands/option_values.h"
#include "host/files/input_error.h"
#include "host/files/output_folder.h"
#include "host/files/text_check.h"
#include "host/group/group_files.h"

#include <QCommandLineParser>

#include <algorithm>
#include <cstdio>

namespace corvane
{

namespace
{

std::vector<double> thresholds(const QString &text)
{
    std::vector<double> numbers;
    if (text.isEmpty())
        return numbers;
    for (const QString &part : text.split(QLatin1Char(','))) {
        const std::optional<double> number = finiteNumber(part.trimmed());
        if (!number || *number < 0)
            throw UsageError(QStringLiteral("--threshold: found \"%1\", expected values of t or F "
                                            "from 0 with commas between them")
                                 .arg(text));
        numbers.push_back(*number);
    }
    return numbers;
}

double shareValue(const QCommandLineParser &parser, const char *option)
{
    const double share = *numberValue(parser, option, 0);
    if (share > 1)
        throw UsageError(QStringLiteral("--%1: found %2, expected a share from 0 to 1")
                             .arg(QLatin1String(option))
                             .arg(share));
    return share;
}

GroupRequest requestOf(const QCommandLineParser &parser)
{
    GroupRequest request;
    request.table = requiredValue(parser, QStringLiteral("table"));
    request.formula = requiredValue(parser, QStringLiteral("formula"));
    requiredValue(parser, QStringLiteral("contrast"));
    request.contrasts = parser.values(QStringLiteral("contrast"));
    request.sides = chosenValue(parser, QStringLiteral("sides"), sidesNames);
    request.thresholds = thresholds(parser.value(QStringLiteral("threshold")));
    request.permutations = *wholeValue(parser, "permutations", 1);
    request.seed = static_cast<std::uint64_t>(*wholeValue(parser, "seed", 0));
    request.permutationFile = parser.value(QStringLiteral("permutation-file"));
    request.blocks = parser.value(QStringLiteral("blocks"));
    request.paired = parser.isSet(QStringLiteral("paired"));
    request.fisherZ = chosenValue(parser, QStringLiteral("fisher-z"), fisherZNames);
    request.minNodeSubjects = shareValue(parser, "min-node-subjects");
    request.threads = static_cast<int>(std::min<qint64>(*wholeValue(parser, "threads", 0), 1024));
    return request;
}

void addOptions(QCommandLineParser &parser)
{
    const auto file = QStringLiteral("file");
    const auto number = QStringLiteral("number");
    parser.addOptions({
        {QStringLiteral("table"),
         QStringLiteral("A row for each participant: participant_id, matrix (its path, relative to "
                        "the table) and the columns of the formula, with tabs between them."),
         file},
        {QStringLiteral("formula"), QStringLiteral("The model, such as \"group + center(age)\"."),
         QStringLiteral("formula")},
        {QStringLiteral("contrast"),
         QStringLiteral("The question, such as \"patients=group[Patient]\"; may be given more than "
                        "once."),
         QStringLiteral("name=sum")},
        {QStringLiteral("threshold"),
         QStringLiteral("Of t or F, for networks; several with commas between them."), number},
        {QStringLiteral("sides"), QStringLiteral("Which effects count."),
         valueNames(sidesNames).join(QLatin1Char('|')), QLatin1String(sidesNames[0].name)},
        {QStringLiteral("permutations"), QStringLiteral("How many."), number,
         QStringLiteral("5000")},
        {QStringLiteral("seed"), QStringLiteral("Of the permutations."), number,
         QStringLiteral("1")},
        {QStringLiteral("permutation-file"),
         QStringLiteral("Permutations instead of drawn ones: in each line, for each row of the "
                        "design, whose data it gets, from 0."),
         file},
        {QStringLiteral("blocks"), QStringLiteral("Permute within equal values of this column."),
         QStringLiteral("column")},
        {QStringLiteral("paired"), QStringLiteral("Two rows for each participant.")},
        {QStringLiteral("fisher-z"), QStringLiteral("Whether correlations become Fisher's z."),
         valueNames(fisherZNames).join(QLatin1Char('|')), QLatin1String(fisherZNames[0].name)},
        {QStringLiteral("min-node-subjects"),
         QStringLiteral("The share of participants that must have a node."), number,
         QStringLiteral("0.9")},
        {QStringLiteral("threads"),
         QStringLiteral("0: one for each processor. They do not change the result."), number,
         QStringLiteral("0")},
        {QStringLiteral("out"), QStringLiteral("The folder for the tables."),
         QStringLiteral("folder")},
    });
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Tests a group at every edge of its matrices, and networks of edges above a threshold."));
    addOptions(parser);
    if (!parseArguments(parser, arguments, {}, {QStringLiteral("contrast")}))
        return Done;

    const GroupRequest request = requestOf(parser);
    const QString folder = requiredValue(parser, QStringLiteral("out"));
    const GroupData data = readGroupData(request);
    for (const QString &line : data.left)
        std::fprintf(stderr, "%s\n", line.toUtf8().constData());
    TerminalProgress progress(QStringLiteral("permuting"));
    std::vector<ContrastResult> results;
    for (const QString &contrast : request.contrasts)
        results.push_back(testContrast(data, request, contrast, progress.watch()));
    for (const ContrastResult &result : results)
        for (const QString &line : result.notes)
            std::fprintf(stderr, "%s\n", line.toUtf8().constData());
    OutputFolder files(folder, arguments.front());
    writeGroupFiles(files, request, data, results);
    for (const QString &line : files.commit())
        std::fprintf(stderr, "%s\n", line.toUtf8().constData());
    std::printf("%s: %s, %s, %s\n", folder.toUtf8().constData(),
                counted(qint64(data.participants.size()), "row").toUtf8().constData(),
                counted(qint64(data.nodes.size()), "node").toUtf8().constData(),
                counted(qint64(results.size()), "contrast").toUtf8().constData());
    return Done;
}

} // namespace

Command groupCommand()
{
    return {"group",
            R"(Corvane group --table T.tsv --formula "group + age" --contrast NAME=SUM
                  [--threshold 3.1,...] [--sides each|both|greater|less] [--permutations N]
                  [--seed N] [--permutation-file F] [--blocks COLUMN] [--paired]
                  [--fisher-z auto|yes|no] [--min-node-subjects 0.9] [--threads N] --out DIR)",
            "Tests a group at every edge of its matrices.", run};
}

} // namespace corvane
