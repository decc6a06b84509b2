// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/group_options.h"

#include "dataset/counted.h"
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/commands/option_values.h"
#include "host/files/input_error.h"
#include "host/files/output_file.h"
#include "host/files/output_folder.h"
#include "host/files/text_check.h"
#include "host/group/group_files.h"
#include "host/group/group_pictures.h"
#include "host/report/group_page.h"

#include <QCommandLineParser>

#include <algorithm>
#include <cstdio>
#include <set>

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

std::set<GroupTest> testsOf(const QCommandLineParser &parser)
{
    const auto option = QStringLiteral("test");
    std::set<GroupTest> tests;
    for (const QString &name : parser.value(option).split(QLatin1Char(',')))
        tests.insert(valueNamed(name.trimmed(), option, groupTestNames));
    return tests;
}

/// Throws UsageError for options that do not go with the tests.
void checkTests(const GroupRequest &request, const QCommandLineParser &parser)
{
    const bool hasModel = request.asksForModel();
    if (request.asks(GroupTest::Nbs))
        requiredValue(parser, QStringLiteral("threshold"));
    if (hasModel)
        for (const char *option : {"formula", "contrast"})
            requiredValue(parser, QLatin1String(option));
    for (const char *option : {"threshold", "paired"})
        if (!hasModel && parser.isSet(QLatin1String(option)))
            throw UsageError(QStringLiteral("--%1 goes with --test glm or nbs, neither of which is "
                                            "asked for")
                                 .arg(QLatin1String(option)));
    std::set<GroupTest> others = request.tests;
    for (const GroupTest test : {GroupTest::Glm, GroupTest::Nbs, GroupTest::Tangent})
        others.erase(test);
    if (request.paired && !others.empty())
        throw UsageError(QStringLiteral("--paired goes with --test glm and nbs alone"));
    if (request.tests == std::set<GroupTest>{GroupTest::Tangent})
        throw UsageError(QStringLiteral("--test tangent goes with another test, such as "
                                        "glm,tangent"));
    if (request.minNodeSubjects < request.neededNodes() &&
        parser.isSet(QStringLiteral("min-node-subjects")))
        throw UsageError(QStringLiteral("--min-node-subjects does not go with --test distance or "
                                        "tangent: nodes that anyone lacks leave"));
}

} // namespace

GroupRequest groupRequest(const QCommandLineParser &parser)
{
    GroupRequest request;
    request.tests = testsOf(parser);
    if (parser.isSet(QStringLiteral("formula")))
        request.formula = requiredValue(parser, QStringLiteral("formula"));
    request.contrasts = parser.values(QStringLiteral("contrast"));
    request.session = parser.value(QStringLiteral("session"));
    request.centroids = parser.value(QStringLiteral("centroids"));
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
    checkTests(request, parser);
    return request;
}

QList<QCommandLineOption> groupOptions()
{
    const auto file = QStringLiteral("file");
    const auto number = QStringLiteral("number");
    return {
        {QStringLiteral("test"), QStringLiteral("What is asked, several with commas between them."),
         valueNames(groupTestNames).join(QLatin1Char('|')), QLatin1String(groupTestNames[0].name)},
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
        {QStringLiteral("session"),
         QStringLiteral("The column of sessions; session_id or session if there is one."),
         QStringLiteral("column")},
        {QStringLiteral("centroids"),
         QStringLiteral("For qcfc, where nodes are: a table with name, x, y and z in mm."), file},
        {QStringLiteral("fisher-z"), QStringLiteral("Whether correlations become Fisher's z."),
         valueNames(fisherZNames).join(QLatin1Char('|')), QLatin1String(fisherZNames[0].name)},
        {QStringLiteral("min-node-subjects"),
         QStringLiteral("The share of participants that must have a node."), number,
         QStringLiteral("0.9")},
        {QStringLiteral("threads"),
         QStringLiteral("0: one for each processor. They do not change the result."), number,
         QStringLiteral("0")},
        {QStringLiteral("page"),
         QStringLiteral("Also write group.html, with pictures and a text of methods.")},
        {QStringLiteral("plots"), QStringLiteral("Also draw what was found.")},
    };
}

void runGroup(const GroupRequest &request, const QCommandLineParser &parser, const QString &folder,
              const QString &writer)
{
    TerminalSteps steps;
    const GroupData data = readGroupData(request, steps.watch());
    steps.end();
    for (const QString &line : data.left)
        std::fprintf(stderr, "%s\n", line.toUtf8().constData());
    const GroupResults results = testGroup(data, request, steps.watch());
    steps.end();
    for (const QString &line : results.notes)
        std::fprintf(stderr, "%s\n", line.toUtf8().constData());
    OutputFolder files(folder, writer);
    steps.begin(QStringLiteral("writing"));
    writeGroupFiles(files, request, data, results);
    if (parser.isSet(QStringLiteral("plots")))
        writeGroupPictures(files, data, results);
    if (parser.isSet(QStringLiteral("page")))
        writeFile(files.path(QStringLiteral("group.html")), groupPage(request, data, results));
    const QStringList kept = files.commit();
    steps.end();
    for (const QString &line : kept)
        std::fprintf(stderr, "%s\n", line.toUtf8().constData());
    std::printf("%s: %s, %s, %s\n", folder.toUtf8().constData(),
                counted(qint64(data.participants.size()), "row").toUtf8().constData(),
                counted(qint64(data.nodes.size()), "node").toUtf8().constData(),
                counted(qint64(request.tests.size()), "test").toUtf8().constData());
}

} // namespace corvane
