// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/file_role.h"

#include "host/derivatives/bids_names.h"
#include "host/files/file_kind.h"
#include "host/files/image_reader.h"
#include "host/files/input_error.h"
#include "host/files/nifti_stream.h"
#include "host/files/text_lines.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <cmath>
#include <set>

namespace corvane
{

namespace
{

// ---- tables

bool hasAll(const QStringList &columns, std::initializer_list<const char *> names)
{
    for (const char *name : names)
        if (!columns.contains(QLatin1String(name)))
            return false;
    return true;
}

QStringList columnsOf(const QString &path)
{
    for (const TextLine &line : readTextLines(path)) {
        if (isComment(line.text))
            continue;
        QStringList columns;
        for (const QString &cell : line.text.split(QLatin1Char('\t')))
            columns += cell.trimmed().remove(QLatin1Char('"'));
        return columns;
    }
    return {};
}

/// Lines of an index, a name, and four numbers, without names of columns.
bool isColourTable(const QString &path)
{
    static const QRegularExpression line(QStringLiteral("^\\s*-?\\d+\\s+\\S.*(\\s+\\d+){4}\\s*$"));
    for (const TextLine &text : readTextLines(path))
        if (!isComment(text.text))
            return line.match(text.text).hasMatch();
    return false;
}

FileRole roleOfTable(const QString &path)
{
    const QStringList columns = columnsOf(path);
    if (hasAll(columns, {"onset", "duration"}))
        return FileRole::Events;
    if (hasAll(columns, {"x", "y", "z"}))
        return FileRole::Spheres;
    if (hasAll(columns, {"index", "name"}) || hasAll(columns, {"index", "label"}))
        return FileRole::Labels;
    const QString ending = QFileInfo(path).suffix().toLower();
    if (entityOf(path, QStringLiteral("desc")) == QLatin1String("confounds") ||
        columns.contains(QStringLiteral("trans_x")) ||
        columns.contains(QStringLiteral("framewise_displacement")) ||
        ending == QLatin1String("par") || ending == QLatin1String("1d"))
        return FileRole::Confounds;
    return isColourTable(path) ? FileRole::Labels : FileRole::None;
}

// ---- images

/// What the name says; none where it says nothing.
FileRole roleOfName(const QString &path)
{
    const QString suffix = bidsName(path).suffix;
    for (const char *anatomy : {"T1w", "T2w", "PDw", "FLAIR", "T2starw", "inplaneT2"})
        if (suffix == QLatin1String(anatomy))
            return FileRole::Anatomy;
    // Whole words of the name alone: "mask" is in "unmasked", too.
    const QStringList words = nameWithoutEnding(path).toLower().split(
        QRegularExpression(QStringLiteral("[^a-z0-9]+")), Qt::SkipEmptyParts);
    for (const char *mask : {"mask", "roi"})
        if (words.contains(QLatin1String(mask)))
            return FileRole::Mask;
    for (const char *atlas :
         {"dseg", "atlas", "labels", "parc", "parcellation", "aparcaseg", "aseg"})
        if (words.contains(QLatin1String(atlas)))
            return FileRole::Atlas;
    return FileRole::None;
}

/// Labels are whole numbers and lie in patches on a background, where neighbours are alike; in an
/// anatomy they are not.
FileRole roleOfVoxels(const QString &path)
{
    QStringList notes;
    const Image3d<float> image = readImage(path, notes);
    std::set<float> values;
    qint64 filled = 0;
    qint64 alike = 0;
    const std::size_t pairs = image.voxels.size() - 1;
    for (std::size_t n = 0; n < pairs; ++n) {
        const float value = image.voxels[n];
        if (value != std::floor(value)) // not a number neither
            return FileRole::Anatomy;
        if (value == 0)
            continue;
        if (values.size() < 2)
            values.insert(value);
        ++filled;
        alike += value == image.voxels[n + 1];
    }
    const bool hasBackground = filled < static_cast<qint64>(pairs);
    if (filled == 0 || !hasBackground || 2 * alike < filled)
        return FileRole::Anatomy;
    return values.size() < 2 ? FileRole::Mask : FileRole::Atlas;
}

FileRole roleOfImage(const QString &path)
{
    if (isRun(path))
        return FileRole::Run;
    const FileRole named = roleOfName(path);
    return named == FileRole::None ? roleOfVoxels(path) : named;
}

} // namespace

bool isRun(const QString &path)
{
    if (fileKind(path) != FileKind::Nifti)
        return false;
    try {
        return NiftiStream(path).header().dimensions > 3;
    } catch (const InputError &) {
        return false;
    }
}

FileRole roleOf(const QString &path)
{
    switch (fileKind(path)) {
    case FileKind::Nifti:
    case FileKind::Nrrd:
        return roleOfImage(path);
    case FileKind::Table:
        return roleOfTable(path);
    default:
        return FileRole::None;
    }
}

} // namespace corvane
