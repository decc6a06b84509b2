// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/provenance.h"

#include "host/files/text_check.h"

namespace corvane
{

std::optional<QString> provenanceFault(const QString &text)
{
    if (text.size() > Provenance::longest)
        return QStringLiteral("%1 characters").arg(text.size());
    return nameFault(text);
}

QString provenanceRule()
{
    return QStringLiteral("at most %1 characters, none of them a control character")
        .arg(Provenance::longest);
}

} // namespace corvane
