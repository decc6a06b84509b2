// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/update/web_server.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

namespace
{

/// A port that is free at this moment.
quint16 freePort()
{
    QTcpServer probe;
    return probe.listen(QHostAddress::LocalHost) ? probe.serverPort() : quint16(0);
}

bool write(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size();
}

} // namespace

WebServer::WebServer()
{
    const QString program = QStandardPaths::findExecutable(QStringLiteral("nginx")).isEmpty()
                                ? QStringLiteral("/usr/sbin/nginx")
                                : QStringLiteral("nginx");
    m_server.setProgram(program);
    m_server.setArguments({QStringLiteral("-p"), m_folder.path(), QStringLiteral("-e"),
                           QStringLiteral("error.log"), QStringLiteral("-c"),
                           m_folder.filePath(QStringLiteral("nginx.conf"))});
    QDir(m_folder.path()).mkdir(QStringLiteral("files"));
    // Another process may take the port first: once more with another one.
    for (int attempt = 0; attempt < 5; ++attempt) {
        if (start()) {
            m_problem.clear();
            return;
        }
    }
}

WebServer::~WebServer()
{
    if (m_server.state() == QProcess::NotRunning)
        return;
    m_server.terminate();
    if (!m_server.waitForFinished(10'000))
        m_server.kill();
    m_server.waitForFinished(10'000);
}

bool WebServer::start()
{
    m_port = freePort();
    if (!write(m_folder.filePath(QStringLiteral("nginx.conf")), configuration())) {
        m_problem = QStringLiteral("cannot write %1").arg(m_folder.path());
        return false;
    }
    m_server.start();
    if (!m_server.waitForStarted(10'000)) {
        m_problem = QStringLiteral("%1 (package nginx-light) does not start: %2")
                        .arg(m_server.program(), m_server.errorString());
        return false;
    }
    if (waitUntilItAnswers())
        return true;
    m_server.kill();
    m_server.waitForFinished(10'000);
    m_problem = QStringLiteral("the web server does not answer: %1").arg(log());
    return false;
}

bool WebServer::waitUntilItAnswers()
{
    const QDeadlineTimer deadline(10'000);
    while (!deadline.hasExpired() && m_server.state() == QProcess::Running) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, m_port);
        // A refused connection ends the wait at once; the server's own end does so, too.
        if (socket.waitForConnected(1'000))
            return true;
        m_server.waitForFinished(20);
    }
    return false;
}

QByteArray WebServer::configuration() const
{
    // One process in the foreground that keeps all its files in its own folder.
    return QByteArray(R"(
daemon off;
master_process off;
pid nginx.pid;
events {}
http {
    access_log off;
    client_body_temp_path body;
    proxy_temp_path proxy;
    fastcgi_temp_path fastcgi;
    uwsgi_temp_path uwsgi;
    scgi_temp_path scgi;
    server {
        listen 127.0.0.1:PORT;
        root files;
        default_type application/json;
        location /packed/ {
            alias files/;
            gzip on;
            gzip_min_length 1;
            gzip_types application/json;
        }
        location /moved { return 302 /manifest.json; }
        location ~ ^/status/400 { return 400; }
        location ~ ^/status/401 { return 401; }
        location ~ ^/status/403 { return 403; }
        location ~ ^/status/410 { return 410; }
        location ~ ^/status/500 { return 500; }
        location ~ ^/status/503 { return 503; }
        location ~ ^/status/204 { return 204; }
    }
}
)")
        .replace("PORT", QByteArray::number(m_port));
}

QString WebServer::log() const
{
    QFile file(m_folder.filePath(QStringLiteral("error.log")));
    return file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.readAll())
                                          : QStringLiteral("no log");
}

void WebServer::serve(const QString &name, const QByteArray &contents)
{
    const QString path = m_folder.filePath(QStringLiteral("files/") + name);
    if (!write(path, contents))
        m_problem = QStringLiteral("cannot write %1").arg(path);
}

QUrl WebServer::url(const QString &path) const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1/%2").arg(m_port).arg(path));
}
