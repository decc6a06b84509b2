// SPDX-License-Identifier: GPL-3.0-or-later
#include "update/check_update.h"

#include <QJsonDocument>
#include <QJsonObject>

// Both travel through signals and slots, between threads too.
static_assert(QMetaTypeId2<QVersionNumber>::Defined);
static_assert(QMetaTypeId2<QNetworkReply *>::Defined);

UpdateManifest readUpdateManifest(const QByteArray &json)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const auto text = [&object](const char *key) {
        return object.value(QLatin1String(key)).toString();
    };
    return {text("name"), QVersionNumber::fromString(text("version")),
            QVersionNumber::fromString(text("target_cv_version"))};
}

void CheckUpdate::requestFinished(QNetworkReply *reply)
{
    if (reply->error() != QNetworkReply::NoError) {
        emit failedToFetchManifest();
        return;
    }
    emit manifestVersion(readUpdateManifest(reply->readAll()).version);
}
