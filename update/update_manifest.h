// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QVersionNumber>

/// What an update manifest says: the newest version of the plugin and the version of the host that
/// it is made for.
struct UpdateManifest {
    QString name;
    QVersionNumber version;
    QVersionNumber targetVersion; ///< of the host
};

/// Reads a manifest, a JSON object with the strings "name", "version" and "target_cv_version".
/// Whatever is missing, of another type or not JSON at all reads as an empty text and a null
/// version.
UpdateManifest readUpdateManifest(const QByteArray &json);
