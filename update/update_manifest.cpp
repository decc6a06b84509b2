// SPDX-License-Identifier: GPL-3.0-or-later
#include "update/update_manifest.h"

#include <QJsonDocument>
#include <QJsonObject>

UpdateManifest readUpdateManifest(const QByteArray &json)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const auto text = [&object](const char *key) {
        return object.value(QLatin1String(key)).toString();
    };
    return {text("name"), QVersionNumber::fromString(text("version")),
            QVersionNumber::fromString(text("target_cv_version"))};
}
