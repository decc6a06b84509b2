// SPDX-License-Identifier: GPL-3.0-or-later
#include "update/check_update.h"

#include "update/update_manifest.h"

CheckUpdate::CheckUpdate(QObject *parent) : QObject(parent)
{
    // Both travel through queued connections too.
    qRegisterMetaType<QVersionNumber>();
    qRegisterMetaType<QNetworkReply *>();
}

void CheckUpdate::requestFinished(QNetworkReply *reply)
{
    if (reply->error() != QNetworkReply::NoError) {
        emit failedToFetchManifest();
        return;
    }
    emit manifestVersion(readUpdateManifest(reply->readAll()).version);
}
