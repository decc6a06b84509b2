// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <QUrl>

/// A web server on the loopback address with a folder of its own for its files, its configuration
/// and its log. It runs as long as the object lives.
///
/// `/status/N` answers with the status N, `/moved` leads to `manifest.json`, `/packed/` serves the
/// same files compressed.
class WebServer
{
public:
    WebServer();
    ~WebServer();
    WebServer(const WebServer &) = delete;
    WebServer &operator=(const WebServer &) = delete;

    /// Why the server does not run; empty when it does.
    QString problem() const { return m_problem; }

    /// Puts a file into the served folder.
    void serve(const QString &name, const QByteArray &contents);
    QUrl url(const QString &path) const;

private:
    bool start();
    bool waitUntilItAnswers();
    QByteArray configuration() const;
    QString log() const;

    QTemporaryDir m_folder;
    QProcess m_server;
    quint16 m_port = 0;
    QString m_problem;
};
