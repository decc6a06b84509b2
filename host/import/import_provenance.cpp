// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/import_provenance.h"

#include "host/derivatives/bids_names.h"
#include "host/files/input_error.h"
#include "host/import/import_plan.h"

namespace corvane
{

namespace
{

/// The pipelines' words for the space of the participant's own anatomy, whose images mostly name
/// none.
bool isOwnSpace(const QString &space)
{
    for (const char *name : {"T1w", "T2w", "anat", "individual"})
        if (space == QLatin1String(name))
            return true;
    return false;
}

/// Names of files may hold what no key can.
QString usable(const QString &label)
{
    return provenanceFault(label) ? QString() : label;
}

QString subjectIn(const QString &path)
{
    const QString label = entityOf(path, QStringLiteral("sub"));
    return label.isEmpty() ? QString() : usable(QStringLiteral("sub-") + label);
}

/// Templates and their atlases name their space in "tpl-".
QString spaceIn(const QString &path)
{
    const QString space = entityOf(path, QStringLiteral("space"));
    return usable(space.isEmpty() ? entityOf(path, QStringLiteral("tpl")) : space);
}

QString firstKnown(const QString &first, const QString &second, const QString &third)
{
    return !first.isEmpty() ? first : !second.isEmpty() ? second : third;
}

/// An anatomy of a participant that names no space lies in that participant's own.
bool liesElsewhere(const QString &anatomy, const QString &space)
{
    return spaceIn(anatomy).isEmpty() && !subjectIn(anatomy).isEmpty() && !isOwnSpace(space);
}

} // namespace

Provenance provenanceOf(const ImportRequest &request)
{
    return {firstKnown(request.provenance.subject, subjectIn(request.functional),
                       subjectIn(request.anatomy)),
            firstKnown(request.provenance.space, spaceIn(request.functional),
                       spaceIn(request.anatomy))};
}

QStringList provenanceNotes(const ImportRequest &request)
{
    const Provenance whole = provenanceOf(request);
    QStringList files{request.anatomy, request.functional};
    for (const VoiSource &source : request.voiSources)
        files += source.file;
    QStringList notes;
    const auto note = [&](const QString &path, const QString &found, const QString &expected) {
        notes += QStringLiteral("%1: the name says %2, the import is of %3")
                     .arg(printable(path, 4096), printable(found), printable(expected));
    };
    for (const QString &path : files) {
        const QString subject = subjectIn(path);
        const QString space = spaceIn(path);
        if (!subject.isEmpty() && !whole.subject.isEmpty() && subject != whole.subject)
            note(path, subject, whole.subject);
        if (!space.isEmpty() && !whole.space.isEmpty() && space != whole.space &&
            !(isOwnSpace(space) && isOwnSpace(whole.space)))
            note(path, QStringLiteral("space ") + space, QStringLiteral("space ") + whole.space);
    }
    if (!whole.space.isEmpty() && liesElsewhere(request.anatomy, whole.space))
        notes += QStringLiteral("%1: the name says no space, the import is of space %2")
                     .arg(printable(request.anatomy, 4096), printable(whole.space));
    return notes;
}

} // namespace corvane
