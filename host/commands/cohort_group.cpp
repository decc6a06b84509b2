// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/cohort_group.h"

#include "host/commands/cohort_arguments.h"
#include "host/commands/commands.h"
#include "host/commands/group_options.h"
#include "host/extract/matrices.h"
#include "host/files/input_error.h"

#include <QDir>
#include <QFileInfo>

namespace corvane
{

namespace
{

/// The one label that options of labels give; empty for none.
QString oneLabel(const QStringList &labels, const char *option)
{
    if (labels.size() > 1)
        throw UsageError(QStringLiteral("--%1: found %2, expected one label")
                             .arg(QLatin1String(option), labels.join(QLatin1Char(' '))));
    return labels.value(0);
}

/// How files of a measure are named.
QString statOf(const QString &measure)
{
    QStringList names;
    for (const RelationshipFacts &facts : relationshipFacts) {
        if (measure == QLatin1String(facts.option))
            return QLatin1String(facts.stat);
        names += QLatin1String(facts.option);
    }
    throw UsageError(QStringLiteral("--measure: found %1, expected one of: %2")
                         .arg(quoted(measure), names.join(QStringLiteral(", "))));
}

StudySelection selectionOf(const QCommandLineParser &parser, const QString &dataset,
                           const QString &out, bool repeats)
{
    const RunFilter filter = runFilter(parser);
    StudySelection selection;
    selection.out = out;
    const QString people = dataset + QStringLiteral("/participants.tsv");
    if (QFileInfo::exists(people))
        selection.participants = people;
    selection.atlas = parser.value(QStringLiteral("atlas-name"));
    selection.space = oneLabel(filter.spaces, "space");
    selection.task = oneLabel(filter.tasks, "task-id");
    selection.session = oneLabel(filter.sessions, "session-id");
    selection.allSessions = repeats;
    selection.measure = statOf(parser.value(QStringLiteral("measure")));
    return selection;
}

GroupRequest requestOf(const QCommandLineParser &parser, const QString &dataset, const QString &out)
{
    GroupRequest request = groupRequest(parser);
    request.study = selectionOf(parser, dataset, out, request.asksForSessions() || request.paired);
    return request;
}

} // namespace

bool choosesRowsOfGroup(const QString &option)
{
    static const QStringList options{QStringLiteral("session-id"), QStringLiteral("session-label"),
                                     QStringLiteral("task-id"),    QStringLiteral("task-label"),
                                     QStringLiteral("space"),      QStringLiteral("atlas-name"),
                                     QStringLiteral("measure")};
    return options.contains(option);
}

void checkGroupOfStudy(const QCommandLineParser &parser, const QString &dataset, const QString &out)
{
    requestOf(parser, dataset, out);
}

void runGroupOfStudy(const QCommandLineParser &parser, const QString &dataset, const QString &out)
{
    const GroupRequest request = requestOf(parser, dataset, out);
    const QString given = parser.value(QStringLiteral("group-out"));
    runGroup(request, parser, given.isEmpty() ? out + QStringLiteral("/group") : given,
             QStringLiteral("group"));
}

} // namespace corvane
