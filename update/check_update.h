// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QNetworkReply>
#include <QObject>
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
