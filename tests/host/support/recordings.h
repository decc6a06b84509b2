// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/reference_folder.h"

#include <QString>

namespace corvane
{

/// A file of the folder of real recordings, which may be missing.
inline QString recording(const char *name)
{
    return QString::fromUtf8(referenceFolder()) + QStringLiteral("/recordings/") +
           QString::fromUtf8(name);
}

} // namespace corvane
