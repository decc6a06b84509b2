// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/import_name.h"

#include "host/files/file_kind.h"
#include "host/files/text_check.h"

namespace corvane
{

QString defaultImportName(const QString &functional)
{
    return nameWithoutEnding(functional);
}

bool isImportName(const QString &name)
{
    return !name.isEmpty() && !name.contains(QLatin1Char('/')) && !nameFault(name);
}

} // namespace corvane
