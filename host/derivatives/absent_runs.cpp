// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/derivatives/absent_runs.h"

#include <algorithm>

namespace corvane
{

namespace
{

/// An entity whose labels can be asked for.
struct AskedEntity {
    const char *name;
    QStringList RunFilter::*asked;
    QString StudyRun::*label;
};

constexpr AskedEntity askedEntities[] = {{"ses", &RunFilter::sessions, &StudyRun::session},
                                         {"task", &RunFilter::tasks, &StudyRun::task},
                                         {"space", &RunFilter::spaces, &StudyRun::space}};

bool hasLabel(const std::vector<RunImage> &images, const QString &entity, const QString &label)
{
    return std::any_of(images.begin(), images.end(),
                       [&](const RunImage &image) { return image.name.label(entity) == label; });
}

/// "task-nback, task-rest": the labels that images have.
QString labelsOf(const std::vector<RunImage> &images, const QString &entity)
{
    QStringList found;
    for (const RunImage &image : images) {
        const QString label = image.name.label(entity);
        if (!label.isEmpty())
            found += entity + QLatin1Char('-') + label;
    }
    found.removeDuplicates();
    found.sort();
    return enumerated(found);
}

QString prefixesOf(const std::vector<RunImage> &images)
{
    QStringList found;
    for (const RunImage &image : images)
        found += runPrefix(image.name.file);
    return enumerated(found);
}

QString absentLabel(const std::vector<RunImage> &images, const QString &entity,
                    const QString &label)
{
    return QStringLiteral("no run of %1-%2; found: %3")
        .arg(entity, label, labelsOf(images, entity));
}

} // namespace

QString enumerated(const QStringList &names)
{
    constexpr int shown = 5;
    if (names.isEmpty())
        return QStringLiteral("none");
    const QString text = QStringList(names.mid(0, shown)).join(QStringLiteral(", "));
    return names.size() <= shown ? text
                                 : text + QStringLiteral(" and %1 more").arg(names.size() - shown);
}

bool isAskedFor(const BidsName &name, const RunFilter &filter, const FilterFile &file)
{
    for (const AskedEntity &entity : askedEntities) {
        const QStringList &asked = filter.*entity.asked;
        if (!asked.isEmpty() && !asked.contains(name.label(QLatin1String(entity.name))))
            return false;
    }
    return file.accepts(name);
}

StudyRun absentRow(const QString &participant, const QString &reason)
{
    StudyRun row;
    row.participant = participant;
    row.reason = reason;
    return row;
}

StudyRun absentParticipant(const QString &participant, const std::vector<RunImage> &images,
                           const RunFilter &filter)
{
    if (images.empty())
        return absentRow(participant, QStringLiteral("no desc-preproc_bold image with a space"));
    for (const AskedEntity &entity : askedEntities) {
        const QStringList &asked = filter.*entity.asked;
        const QString name = QLatin1String(entity.name);
        const bool isThere =
            asked.isEmpty() || std::any_of(asked.begin(), asked.end(), [&](const QString &label) {
                return hasLabel(images, name, label);
            });
        if (isThere)
            continue;
        const QStringList labels = asked;
        StudyRun row =
            absentRow(participant, absentLabel(images, name, labels.join(QLatin1Char('|'))));
        if (labels.size() == 1)
            row.*entity.label = labels.front();
        return row;
    }
    return absentRow(
        participant,
        QStringLiteral("no run fits all that is asked for; found: %1").arg(prefixesOf(images)));
}

std::vector<StudyRun> absentLabels(const QString &participant, const std::vector<RunImage> &images,
                                   const std::vector<RunImage> &matching, const RunFilter &filter)
{
    std::vector<StudyRun> rows;
    for (const AskedEntity &entity : askedEntities) {
        const QString name = QLatin1String(entity.name);
        for (const QString &label : filter.*entity.asked) {
            if (hasLabel(matching, name, label))
                continue;
            StudyRun row = absentRow(
                participant,
                hasLabel(images, name, label)
                    ? QStringLiteral("no run of %1-%2 fits all that is asked for; found: %3")
                          .arg(name, label, prefixesOf(images))
                    : absentLabel(images, name, label));
            row.*entity.label = label;
            rows.push_back(row);
        }
    }
    return rows;
}

} // namespace corvane
