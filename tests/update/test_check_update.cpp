// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/qt_printers.h"
#include "tests/update/web_server.h"
#include "update/check_update.h"
#include "update/update_manifest.h"

#include <QCoreApplication>
#include <QMetaMethod>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

namespace
{

constexpr int patience = 20'000; // milliseconds, for what takes a few

/// Hands the replies of a network access manager to a CheckUpdate and records its signals.
class CheckUpdateTest : public testing::Test
{
protected:
    /// Requests an address and waits until the reply has been interpreted.
    void fetch(const QUrl &url, bool follow = false)
    {
        QNetworkRequest request(url);
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             follow ? QNetworkRequest::NoLessSafeRedirectPolicy
                                    : QNetworkRequest::ManualRedirectPolicy);
        QSignalSpy finished(&manager, &QNetworkAccessManager::finished);
        QObject::connect(&manager, &QNetworkAccessManager::finished, &check,
                         &CheckUpdate::requestFinished, Qt::UniqueConnection);
        reply.reset(manager.get(request));
        ASSERT_TRUE(!finished.isEmpty() || finished.wait(patience));
    }

    void expectVersion(const QVersionNumber &expected)
    {
        EXPECT_EQ(reply->error(), QNetworkReply::NoError);
        ASSERT_EQ(version.size(), 1);
        EXPECT_EQ(version[0][0].value<QVersionNumber>(), expected);
        EXPECT_EQ(target.size(), 0);
        EXPECT_EQ(failed.size(), 0);
        version.clear();
    }

    void expectFailure()
    {
        EXPECT_NE(reply->error(), QNetworkReply::NoError);
        EXPECT_EQ(version.size(), 0);
        EXPECT_EQ(target.size(), 0);
        EXPECT_EQ(failed.size(), 1);
        failed.clear();
    }

    QNetworkAccessManager manager;
    CheckUpdate check;
    QSignalSpy version{&check, &CheckUpdate::manifestVersion};
    QSignalSpy target{&check, &CheckUpdate::manifestTargetCVVersion};
    QSignalSpy failed{&check, &CheckUpdate::failedToFetchManifest};
    std::unique_ptr<QNetworkReply> reply; // the check does not delete it
};

const char *const manifest =
    R"({"name": "Tessera Analysis", "version": "1.2.3", "target_cv_version": "2.8.4"})";

// ---- the text of a manifest

TEST(UpdateManifest, is_read_from_its_three_keys)
{
    const UpdateManifest read = readUpdateManifest(manifest);
    EXPECT_EQ(read.name, "Tessera Analysis");
    EXPECT_EQ(read.version, QVersionNumber(1, 2, 3));
    EXPECT_EQ(read.targetVersion, QVersionNumber(2, 8, 4));
}

TEST(UpdateManifest, reads_what_is_missing_or_wrong_as_null)
{
    for (const char *json :
         {"", "{}", "[]", "null", "{\"version\": ", "{\"version\": 2}", "{\"version\": [\"1.2\"]}",
          "{\"version\": \"\"}", "{\"version\": \"new\"}", "{\"Version\": \"1.2\"}",
          "[{\"version\": \"1.2\"}]", "<html></html>", "\xff\xfe"}) {
        const UpdateManifest read = readUpdateManifest(json);
        EXPECT_TRUE(read.version.isNull()) << json;
        EXPECT_TRUE(read.targetVersion.isNull()) << json;
        EXPECT_TRUE(read.name.isEmpty()) << json;
    }
}

TEST(UpdateManifest, takes_any_version_that_is_a_version)
{
    const auto version = [](const char *text) {
        return readUpdateManifest(QByteArray(R"({"version": "%"})").replace("%", text)).version;
    };
    EXPECT_EQ(version("7"), QVersionNumber(7));
    EXPECT_EQ(version("0.0.0"), QVersionNumber(0, 0, 0));
    EXPECT_EQ(version("1.2.3.4.5"), QVersionNumber({1, 2, 3, 4, 5}));
    EXPECT_EQ(version("1.2-beta"), QVersionNumber(1, 2));
}

// ---- replies of a web server

class FromWebServer : public CheckUpdateTest
{
protected:
    void SetUp() override { ASSERT_EQ(server.problem().toStdString(), ""); }

    void serveManifest(const QByteArray &json)
    {
        server.serve(QStringLiteral("manifest.json"), json);
        ASSERT_EQ(server.problem().toStdString(), "");
    }

    WebServer server;
};

TEST_F(FromWebServer, a_manifest_gives_its_version)
{
    serveManifest(manifest);
    fetch(server.url("manifest.json"));
    expectVersion(QVersionNumber(1, 2, 3));
    EXPECT_EQ(reply->bytesAvailable(), 0);
}

TEST_F(FromWebServer, further_keys_are_ignored)
{
    serveManifest(R"({"notes": {"version": "9"}, "version": "0.10", "files": [1, 2], "size": 3})");
    fetch(server.url("manifest.json"));
    expectVersion(QVersionNumber(0, 10));
}

TEST_F(FromWebServer, each_reply_counts_by_itself)
{
    serveManifest(manifest);
    fetch(server.url("manifest.json"));
    expectVersion(QVersionNumber(1, 2, 3));
    fetch(server.url("status/503"));
    expectFailure();
    serveManifest(R"({"version": "2.0"})");
    fetch(server.url("manifest.json"));
    expectVersion(QVersionNumber(2, 0));
}

TEST_F(FromWebServer, a_compressed_manifest_is_read)
{
    serveManifest(manifest);
    fetch(server.url("packed/manifest.json"));
    expectVersion(QVersionNumber(1, 2, 3));
}

TEST_F(FromWebServer, a_long_manifest_is_read)
{
    serveManifest("{\"notes\": \"" + QByteArray(3'000'000, 'x') + "\", \"version\": \"1.5\"}");
    fetch(server.url("manifest.json"));
    expectVersion(QVersionNumber(1, 5));
}

TEST_F(FromWebServer, a_redirection_counts_when_it_is_followed)
{
    serveManifest(manifest);
    fetch(server.url("moved"), true);
    expectVersion(QVersionNumber(1, 2, 3));
    // Not followed it is a reply without error whose page is no manifest.
    fetch(server.url("moved"), false);
    expectVersion(QVersionNumber());
}

TEST_F(FromWebServer, error_statuses_are_failures)
{
    for (const char *path : {"missing.json", "status/400", "status/401", "status/403", "status/410",
                             "status/500", "status/503"}) {
        SCOPED_TRACE(path);
        fetch(server.url(path));
        expectFailure();
    }
}

TEST_F(FromWebServer, an_empty_reply_has_a_null_version)
{
    serveManifest("");
    fetch(server.url("manifest.json"));
    expectVersion(QVersionNumber());
    fetch(server.url("status/204"));
    expectVersion(QVersionNumber());
}

TEST_F(FromWebServer, a_reply_that_was_aborted_is_a_failure)
{
    serveManifest(manifest);
    QObject::connect(&manager, &QNetworkAccessManager::finished, &check,
                     &CheckUpdate::requestFinished, Qt::UniqueConnection);
    QSignalSpy finished(&manager, &QNetworkAccessManager::finished);
    reply.reset(manager.get(QNetworkRequest(server.url("manifest.json"))));
    reply->abort();
    ASSERT_TRUE(!finished.isEmpty() || finished.wait(patience));
    expectFailure();
}

// ---- replies that no proper server sends

/// Answers each connection with fixed bytes, once the request has come, and closes it.
class RawServer
{
public:
    explicit RawServer(QByteArray answer) : m_answer(std::move(answer))
    {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            QTcpSocket *socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                m_request += socket->readAll();
                if (!m_request.contains("\r\n\r\n"))
                    return;
                m_request.clear();
                socket->write(m_answer);
                socket->disconnectFromHost();
            });
        });
    }

    bool listen() { return m_server.listen(QHostAddress::LocalHost); }
    QUrl url() const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(m_server.serverPort()));
    }

private:
    QTcpServer m_server;
    QByteArray m_answer;
    QByteArray m_request;
};

QByteArray answer(const QByteArray &body, int length)
{
    return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
           QByteArray::number(length) + "\r\nConnection: close\r\n\r\n" + body;
}

using FromRawServer = CheckUpdateTest;

TEST_F(FromRawServer, bodies_without_a_version_have_a_null_version)
{
    for (const QByteArray &body : {QByteArray(), QByteArray("{\"version\": \"1.2"),
                                   QByteArray("{\"name\": \"Tessera Analysis\"}"),
                                   QByteArray("\0\0\0", 3), QByteArray("[1, 2]")}) {
        SCOPED_TRACE(body.constData());
        RawServer server(answer(body, body.size()));
        ASSERT_TRUE(server.listen());
        fetch(server.url());
        expectVersion(QVersionNumber());
    }
}

TEST_F(FromRawServer, a_connection_that_is_cut_is_a_failure)
{
    for (const QByteArray &bytes : {answer(manifest, 1000), QByteArray("HTTP/1.1 200 OK\r\nConte"),
                                    QByteArray("no HTTP at all\r\n\r\n"), QByteArray()}) {
        SCOPED_TRACE(bytes.constData());
        RawServer server(bytes);
        ASSERT_TRUE(server.listen());
        fetch(server.url());
        expectFailure();
    }
}

TEST_F(FromRawServer, a_closed_port_is_a_failure)
{
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
    const QUrl url(QStringLiteral("http://127.0.0.1:%1/").arg(closed.serverPort()));
    closed.close();
    fetch(url);
    expectFailure();
}

// ---- the class

TEST_F(CheckUpdateTest, replies_and_versions_travel_through_queued_connections)
{
    RawServer server(answer(manifest, int(qstrlen(manifest))));
    ASSERT_TRUE(server.listen());
    CheckUpdate relay;
    ASSERT_TRUE(QObject::connect(&manager, SIGNAL(finished(QNetworkReply *)), &check,
                                 SLOT(requestFinished(QNetworkReply *)), Qt::QueuedConnection));
    ASSERT_TRUE(QObject::connect(&check, SIGNAL(manifestVersion(QVersionNumber)), &relay,
                                 SIGNAL(manifestVersion(QVersionNumber)), Qt::QueuedConnection));
    QSignalSpy relayed(&relay, &CheckUpdate::manifestVersion);
    reply.reset(manager.get(QNetworkRequest(server.url())));
    ASSERT_TRUE(relayed.wait(patience));
    EXPECT_EQ(relayed[0][0].value<QVersionNumber>(), QVersionNumber(1, 2, 3));
    expectVersion(QVersionNumber(1, 2, 3));
}

TEST_F(CheckUpdateTest, declares_its_signals_and_its_slot_in_order)
{
    const QMetaObject &meta = CheckUpdate::staticMetaObject;
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        signatures += QString::fromLatin1(meta.method(i).methodSignature());
    EXPECT_EQ(
        signatures,
        QStringList({"manifestVersion(QVersionNumber)", "manifestTargetCVVersion(QVersionNumber)",
                     "failedToFetchManifest()", "requestFinished(QNetworkReply*)"}));
    EXPECT_EQ(meta.method(meta.methodOffset() + 3).methodType(), QMetaMethod::Slot);
    EXPECT_EQ(sizeof(CheckUpdate), sizeof(QObject)); // no state
}

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
