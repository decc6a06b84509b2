// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dataset/plugin_settings.h"

#include <QDebug>

/// Writes one verbose line of the given parts, exactly as they are. Nothing while verbose logging
/// is off; a line whose parts cost something to make is better guarded by the caller too.
template <typename... Parts>
void verboseLog(const Parts &...parts)
{
    if (PluginSettings::instance()->verboseLogging)
        (qDebug().noquote().nospace() << ... << parts);
}
