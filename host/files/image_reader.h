// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/image3d.h"

#include <QString>
#include <QStringList>

namespace corvane
{

/// Reads a 3-D image: NIfTI-1, NIfTI-2 or NRRD, each also packed with gzip. What should be known of
/// its orientation is appended to `notes`. Throws InputError, also for an image of more or fewer
/// axes.
Image3d<float> readImage(const QString &path, QStringList &notes);

/// Likewise for labels: whole numbers of 32 bits, to a thousandth, since scaled samples are not
/// exact. Not a number counts as 0, which is said. Throws InputError for any other value.
Image3d<qint32> readLabels(const QString &path, QStringList &notes);

} // namespace corvane
