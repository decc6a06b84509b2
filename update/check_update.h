// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QNetworkReply>
#include <QObject>
#include <QVersionNumber>

/// Interprets the reply to a request for an update manifest. Holds no state; the requester makes
/// it, connects its `QNetworkAccessManager::finished` to `requestFinished` and deletes the reply.
class CheckUpdate : public QObject
{
    Q_OBJECT

public:
    explicit CheckUpdate(QObject *parent = nullptr);

signals:
    /// The newest version of the plugin; null when the manifest names none.
    void manifestVersion(QVersionNumber ver);
    /// The host version that the newest version is made for. Not emitted so far.
    void manifestTargetCVVersion(QVersionNumber ver);
    /// The reply carries a network error.
    void failedToFetchManifest();

public slots:
    void requestFinished(QNetworkReply *reply);
};
