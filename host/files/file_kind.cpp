// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/file_kind.h"

#include <QFileInfo>
#include <QStringList>
#include <algorithm>
#include <iterator>

namespace corvane
{

namespace
{

struct Ending {
    const char *text;
    FileKind kind;
};

constexpr Ending endings[] = {
    {".vmr", FileKind::Vmr},    {".vtc", FileKind::Vtc},   {".voi", FileKind::Voi},
    {".prt", FileKind::Prt},    {".nii", FileKind::Nifti}, {".nii.gz", FileKind::Nifti},
    {".nrrd", FileKind::Nrrd},  {".nhdr", FileKind::Nrrd}, {".tsv", FileKind::Table},
    {".ctab", FileKind::Table}, {".par", FileKind::Table}, {".1D", FileKind::Table},
    {".txt", FileKind::Table},
};

/// The ending by which the kind of a file is known, or the end of the table.
const Ending *endingOf(const QString &path)
{
    return std::find_if(std::begin(endings), std::end(endings), [&](const Ending &ending) {
        return path.endsWith(QLatin1String(ending.text), Qt::CaseInsensitive);
    });
}

} // namespace

FileKind fileKind(const QString &path)
{
    const Ending *const ending = endingOf(path);
    return ending != std::end(endings) ? ending->kind : FileKind::Other;
}

QString fileName(const QString &name, FileKind kind)
{
    const Ending *const ending =
        std::find_if(std::begin(endings), std::end(endings),
                     [kind](const Ending &entry) { return entry.kind == kind; });
    return ending != std::end(endings) ? name + QLatin1String(ending->text) : name;
}

QString nameWithoutEnding(const QString &path)
{
    QString name = QFileInfo(path).fileName();
    const Ending *const ending = endingOf(name);
    if (ending != std::end(endings))
        name.chop(static_cast<int>(qstrlen(ending->text)));
    return name;
}

QString knownEndings()
{
    QStringList texts;
    for (const Ending &ending : endings)
        texts += QLatin1String(ending.text);
    const QString last = texts.takeLast();
    return QStringLiteral("%1 and %2").arg(texts.join(QStringLiteral(", ")), last);
}

QString fileFilter(const QString &description, std::initializer_list<FileKind> kinds)
{
    QStringList patterns;
    for (const FileKind kind : kinds)
        for (const Ending &ending : endings)
            if (ending.kind == kind)
                patterns += QLatin1Char('*') + QLatin1String(ending.text);
    return QStringLiteral("%1 (%2)").arg(description, patterns.join(QLatin1Char(' ')));
}

} // namespace corvane
