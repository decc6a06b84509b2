// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/functional_run.h"

#include "host/files/input_error.h"
#include "host/files/limits.h"
#include "host/files/nifti_stream.h"
#include "host/files/text_check.h"

namespace corvane
{

namespace
{

QString decimal(double number)
{
    return QString::fromLatin1(shortestDecimal(number));
}

QString noteOn(const QString &path, const QString &text)
{
    return QStringLiteral("%1: %2").arg(printable(path, 4096), text);
}

} // namespace

NiftiHeader readRunHeader(const QString &path, QStringList &notes)
{
    NiftiHeader header = NiftiStream(path).header();
    const QString place = QStringLiteral("header, dim");
    if (header.dimensions != 4)
        throw InputError(path, place,
                         header.dimensions < 4
                             ? QStringLiteral("one volume")
                             : QStringLiteral("%1 dimensions").arg(header.dimensions),
                         QStringLiteral("4 dimensions, two or more volumes"));
    requireAtMost(header.dim[3], largestCount, QStringLiteral("volumes"), path, place);
    requireAtMost(header.voxelsPerVolume(), largestCount, QStringLiteral("voxels"), path, place);
    notes += orientationNotes(header, path);
    return header;
}

double runRepetitionTime(const QString &path, const NiftiHeader &header,
                         const std::optional<double> &given, QStringList &notes)
{
    const double stored = repetitionTimeSeconds(header);
    if (given) {
        if (stored > 0 && stored != *given)
            notes +=
                noteOn(path, QStringLiteral("the repetition time is %1 s as given, not %2 s as "
                                            "in the header")
                                 .arg(decimal(*given), decimal(stored)));
        return *given;
    }
    if (stored == 0)
        throw InputError(path, QStringLiteral("header, pixdim[4]"),
                         QStringLiteral("repetition time %1%2")
                             .arg(header.repetitionTime)
                             .arg(header.timeUnit == TimeUnit::NoTime
                                      ? QStringLiteral(" in a unit that is not one of time")
                                      : QString()),
                         QStringLiteral("a time above 0, or --tr SECONDS"));
    if (header.timeUnit == TimeUnit::Unknown)
        notes += noteOn(path, QStringLiteral("the header gives the repetition time without a unit: "
                                             "it is taken for %1 s")
                                  .arg(decimal(stored)));
    if (stored < 0.05 || stored > 60)
        notes += noteOn(path, QStringLiteral("the repetition time of %1 s is unusual; --tr SECONDS "
                                             "gives another")
                                  .arg(decimal(stored)));
    return stored;
}

} // namespace corvane
