// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/import_check.h"

#include "dataset/counted.h"
#include "host/files/events_table.h"
#include "host/files/file_kind.h"
#include "host/files/functional_run.h"
#include "host/files/image_grid.h"
#include "host/files/input_error.h"
#include "host/files/nifti_stream.h"
#include "host/files/tsv_table.h"
#include "host/import/import_name.h"
#include "host/import/sphere_table.h"

#include <QFileInfo>

#include <algorithm>

namespace corvane
{

namespace
{

// ---- one file

/// What is wrong without the name of the file, which stands in the field.
QString withoutFile(const QString &fault, const QString &path)
{
    const QString start = printable(path, 4096) + QStringLiteral(": ");
    return fault.startsWith(start) ? fault.mid(start.size()) : fault;
}

template <typename Look>
FieldCheck checked(const QString &path, Look look)
{
    FieldCheck check;
    if (path.isEmpty())
        return check;
    try {
        check.found = look(path);
    } catch (const WorkStopped &) {
        throw;
    } catch (const std::exception &error) {
        check.fault = withoutFile(QString::fromUtf8(error.what()), path);
    }
    return check;
}

QString sizeText(const NiftiHeader &header)
{
    return gridText({header.dim[0], header.dim[1], header.dim[2]}, header.toWorld);
}

QString imageText(const QString &path)
{
    if (fileKind(path) != FileKind::Nifti) {
        if (!QFileInfo(path).isFile())
            throw InputError(path, QStringLiteral("opening"), QStringLiteral("no such file"),
                             QStringLiteral("an image"));
        return {};
    }
    const NiftiHeader header = NiftiStream(path).header();
    if (header.dimensions > 3)
        throw InputError(path, QStringLiteral("header"),
                         QStringLiteral("%1 dimensions").arg(header.dimensions),
                         QStringLiteral("3, one volume"));
    return sizeText(header);
}

QString runText(const QString &path)
{
    QStringList notes;
    const NiftiHeader header = readRunHeader(path, notes);
    return QStringLiteral("%1, %2").arg(sizeText(header), counted(header.dim[3], "volume"));
}

QString eventsText(const QString &path)
{
    QStringList notes;
    const EventsTable table = readEvents(path, notes);
    return QStringLiteral("%1, %2").arg(counted(qint64(table.events.size()), "event"),
                                        counted(table.conditions.size(), "condition"));
}

QString confoundsText(const QString &path)
{
    const QString ending = QFileInfo(path).suffix().toLower();
    if (ending != QLatin1String("tsv")) {
        if (!QFileInfo(path).isFile())
            throw InputError(path, QStringLiteral("opening"), QStringLiteral("no such file"),
                             QStringLiteral("a table"));
        return {};
    }
    const TsvTable table(path);
    return QStringLiteral("%1, %2").arg(counted(table.columns().size(), "column"),
                                        counted(table.rowCount(), "row"));
}

QString sourceText(const VoiSource &source)
{
    QStringList notes;
    if (source.kind == VoiSource::Spheres)
        return counted(qint64(readSpheres(source.file, notes).size()), "sphere");
    const QString image = imageText(source.file);
    return source.labels.isEmpty() || source.kind != VoiSource::Atlas
               ? image
               : counted(qint64(readLabelTable(source.labels, notes).size()), "name");
}

FieldCheck checkedFolder(const QString &folder)
{
    FieldCheck check;
    QFileInfo place(folder);
    if (folder.isEmpty()) {
        check.fault = QStringLiteral("missing: a folder for the files");
        return check;
    }
    const bool isThere = place.exists();
    while (!place.exists() && place.filePath() != place.path())
        place = QFileInfo(place.path());
    if (!place.isDir())
        check.fault = QStringLiteral("%1 is no folder").arg(printable(place.filePath(), 4096));
    else if (!place.isWritable())
        check.fault =
            QStringLiteral("nothing can be written to %1").arg(printable(place.filePath(), 4096));
    else if (!isThere)
        check.found = QStringLiteral("will be made");
    return check;
}

FieldCheck checkedName(const QString &name)
{
    FieldCheck check;
    if (!isImportName(name))
        check.fault = name.isEmpty() ? QStringLiteral("missing: a name without ending")
                                     : QStringLiteral("cannot be the name of a file");
    return check;
}

ImportCheck checkedFields(const ImportRequest &request)
{
    ImportCheck check;
    check.anatomy = checked(request.anatomy, imageText);
    check.functional = checked(request.functional, runText);
    check.events = checked(request.events, eventsText);
    check.confounds = checked(request.confounds, confoundsText);
    for (const VoiSource &source : request.voiSources)
        check.voiSources.push_back(
            checked(source.file, [&](const QString &) { return sourceText(source); }));
    check.folder = checkedFolder(request.folder);
    check.name = checkedName(request.name);
    return check;
}

// ---- the whole

/// Without the fields that have faults.
ImportRequest usable(const ImportRequest &request, const ImportCheck &check)
{
    ImportRequest left = request;
    if (!check.events.fault.isEmpty())
        left.events.clear();
    if (!check.confounds.fault.isEmpty())
        left.cleaning.reset();
    left.voiSources.clear();
    for (std::size_t n = 0; n < request.voiSources.size(); ++n)
        if (check.voiSources[n].fault.isEmpty())
            left.voiSources.push_back(request.voiSources[n]);
    return left;
}

bool isOf(const QString &fault, const QString &path)
{
    return !path.isEmpty() && fault.startsWith(printable(path, 4096) + QStringLiteral(": "));
}

/// The field whose file a fault names; null without one.
struct Blamed {
    FieldCheck *field;
    QString path;
};

Blamed blamed(const QString &fault, const ImportRequest &request, ImportCheck &check)
{
    for (std::size_t n = 0; n < request.voiSources.size(); ++n)
        for (const QString &path : {request.voiSources[n].file, request.voiSources[n].labels})
            if (isOf(fault, path) && check.voiSources[n].fault.isEmpty())
                return {&check.voiSources[n], path};
    // By itself the table of events was read before; one file may serve as both.
    if (isOf(fault, request.confounds))
        return {&check.confounds, request.confounds};
    if (isOf(fault, request.events))
        return {&check.events, request.events};
    if (isOf(fault, request.anatomy))
        return {&check.anatomy, request.anatomy};
    if (isOf(fault, request.functional))
        return {&check.functional, request.functional};
    return {nullptr, {}};
}

/// Plans, and takes a field whose file cannot be used as its fault.
std::shared_ptr<const ImportPlan> planned(const ImportRequest &request, ImportCheck &check,
                                          const ProgressWatch &watch)
{
    const ImportRequest asked = usable(request, check);
    try {
        return std::make_shared<const ImportPlan>(planImport(asked, watch));
    } catch (const WorkStopped &) {
        throw;
    } catch (const std::exception &error) {
        const QString fault = QString::fromUtf8(error.what());
        Blamed blame = blamed(fault, request, check);
        // What a cleaning refuses has no file.
        if (blame.field == nullptr && asked.cleaning)
            blame.field = &check.confounds;
        if (blame.field != nullptr && blame.field->fault.isEmpty())
            blame.field->fault = withoutFile(fault, blame.path);
        else
            check.other = fault;
    }
    return nullptr;
}

bool canBePlanned(const ImportRequest &request, const ImportCheck &check)
{
    return !request.functional.isEmpty() && check.functional.fault.isEmpty() &&
           check.anatomy.fault.isEmpty() && check.other.isEmpty();
}

} // namespace

bool ImportCheck::hasFaults() const
{
    const FieldCheck *const fields[] = {&anatomy, &functional, &events, &confounds, &folder, &name};
    return !other.isEmpty() ||
           std::any_of(std::begin(fields), std::end(fields),
                       [](const FieldCheck *field) { return !field->fault.isEmpty(); }) ||
           std::any_of(voiSources.begin(), voiSources.end(),
                       [](const FieldCheck &field) { return !field.fault.isEmpty(); });
}

CheckedImport checkImport(const ImportRequest &request, const ProgressWatch &watch)
{
    CheckedImport result;
    result.check = checkedFields(request);
    while (result.plan == nullptr && canBePlanned(request, result.check))
        result.plan = planned(request, result.check, watch);
    return result;
}

} // namespace corvane
