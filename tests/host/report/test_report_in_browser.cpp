// SPDX-License-Identifier: GPL-3.0-or-later
// The pages in a real browser, narrow and wide.
#include "host/report/run_page.h"
#include "host/report/study_page.h"
#include "tests/host/report/example_run.h"

#include <QGuiApplication>
#include <QHostAddress>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <gmock/gmock.h>
#include <memory>

namespace corvane
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Holds the page in a frame of the width that is asked for, since windows have a least width, and
/// tells what the browser made of it.
QByteArray frameOf(int width)
{
    return QByteArray(R"js(<!DOCTYPE html><html><body style="margin: 0">
<iframe src="page.html" style="border: 0; width: WIDTHpx; height: 900px"></iframe>
<script>
addEventListener("load", function () {
  var page = frames[0];
  var pictures = Array.from(page.document.images);
  var told = document.documentElement.dataset;
  told.width = page.innerWidth;
  told.overflow = page.document.documentElement.scrollWidth - page.innerWidth;
  told.pictures = pictures.length;
  told.shown = pictures.filter(function (p) { return p.naturalWidth > 0 && p.width > 100; }).length;
  told.loads = page.performance.getEntriesByType("resource").filter(function (load) {
    return !load.name.startsWith("data:"); }).length;
});
</script></body></html>)js")
        .replace("WIDTH", QByteArray::number(width));
}

/// What a page did.
struct Visit {
    int width = 0;    ///< of the window's inside
    int overflow = 0; ///< pixels by which the page is wider than that
    int pictures = 0;
    int shown = 0;        ///< pictures that could be decoded and have a place
    int loads = 0;        ///< files that the page asked for
    QStringList console;  ///< lines that it or the browser wrote there
    QStringList requests; ///< that left the browser for the page
    QByteArray errors;    ///< all that the browser wrote
};

/// Stands in for the network: refuses all requests and notes them.
class RefusingProxy
{
public:
    RefusingProxy()
    {
        EXPECT_TRUE(m_server.listen(QHostAddress::LocalHost));
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            QTcpSocket *socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                m_requests += QString::fromLatin1(socket->readLine()).trimmed();
                socket->disconnectFromHost();
            });
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        });
    }

    int port() const { return m_server.serverPort(); }
    /// Without what the browser asks its maker for, whatever page it shows.
    QStringList requests() const
    {
        const QRegularExpression own(
            QStringLiteral("^(CONNECT |(GET|POST|HEAD) "
                           "https?://)([a-z0-9.-]+\\.)?(google|googleapis|gvt1)\\.com[:/]"));
        QStringList others;
        for (const QString &request : m_requests)
            if (!own.match(request).hasMatch())
                others += request;
        return others;
    }

private:
    QTcpServer m_server;
    QStringList m_requests;
};

QString browser()
{
    return QStandardPaths::findExecutable(QStringLiteral("chromium"));
}

int told(const QByteArray &document, const char *name)
{
    const QRegularExpression pattern(
        QStringLiteral("<html[^>]* data-%1=\"(-?[0-9]+)\"").arg(QLatin1String(name)));
    const QRegularExpressionMatch match = pattern.match(QString::fromUtf8(document));
    EXPECT_TRUE(match.hasMatch()) << name;
    return match.captured(1).toInt();
}

Visit visit(const QByteArray &page, int width)
{
    const TemporaryFolder folder;
    putBytes(folder.path("page.html"), page);
    putBytes(folder.path("frame.html"), frameOf(width));
    const RefusingProxy proxy;
    QProcess process;
    QByteArray document;
    Visit made;
    QObject::connect(&process, &QProcess::readyReadStandardOutput, &process,
                     [&] { document += process.readAllStandardOutput(); });
    QObject::connect(&process, &QProcess::readyReadStandardError, &process,
                     [&] { made.errors += process.readAllStandardError(); });
    QEventLoop loop;
    QObject::connect(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &loop,
                     &QEventLoop::quit);
    process.start(browser(),
                  {QStringLiteral("--headless"), QStringLiteral("--no-sandbox"),
                   QStringLiteral("--disable-gpu"), QStringLiteral("--hide-scrollbars"),
                   QStringLiteral("--disable-dev-shm-usage"), QStringLiteral("--no-first-run"),
                   QStringLiteral("--disable-background-networking"),
                   QStringLiteral("--disable-component-update"),
                   QStringLiteral("--user-data-dir=") + folder.path("profile"),
                   QStringLiteral("--proxy-server=127.0.0.1:%1").arg(proxy.port()),
                   QStringLiteral("--proxy-bypass-list=<-loopback>"),
                   QStringLiteral("--enable-logging=stderr"),
                   QStringLiteral("--allow-file-access-from-files"),
                   QStringLiteral("--window-size=1800,1000"), QStringLiteral("--dump-dom"),
                   QStringLiteral("file://") + folder.path("frame.html")});
    EXPECT_TRUE(process.waitForStarted());
    if (process.state() != QProcess::NotRunning)
        loop.exec();
    document += process.readAllStandardOutput();
    made.errors += process.readAllStandardError();
    EXPECT_EQ(process.exitCode(), 0) << made.errors.constData();
    made.width = told(document, "width");
    made.overflow = told(document, "overflow");
    made.pictures = told(document, "pictures");
    made.shown = told(document, "shown");
    made.loads = told(document, "loads");
    for (const QByteArray &line : made.errors.split('\n'))
        if (line.contains(":CONSOLE"))
            made.console += QString::fromUtf8(line);
    made.requests = proxy.requests();
    return made;
}

std::vector<std::string> texts(const QStringList &lines)
{
    std::vector<std::string> result;
    for (const QString &line : lines)
        result.push_back(line.toStdString());
    return result;
}

class InBrowser : public testing::TestWithParam<int>
{
protected:
    void SetUp() override
    {
        if (!browser().isEmpty())
            return;
        const char *missing = "Chromium is not installed: ./test --browser installs it";
        if (qEnvironmentVariableIsSet("TESSERA_REQUIRE_BROWSER"))
            FAIL() << missing;
        GTEST_SKIP() << missing;
    }
    static void expectGood(const QByteArray &page, int pictures)
    {
        const Visit made = visit(page, GetParam());
        EXPECT_EQ(made.width, GetParam());
        EXPECT_LE(made.overflow, 0);
        EXPECT_EQ(made.pictures, pictures);
        EXPECT_EQ(made.shown, pictures);
        EXPECT_EQ(made.loads, 0);
        EXPECT_THAT(texts(made.console), IsEmpty());
        EXPECT_THAT(texts(made.requests), IsEmpty());
    }
};

QByteArray pageOf(int nodes, int volumes)
{
    const ExampleRun run(nodes, volumes);
    return runPage(run.request(), namesOf(run.request()), makeConnectome(run.request()));
}

TEST_P(InBrowser, ARunIsWhole)
{
    expectGood(pageOf(16, 60), 7);
}

TEST_P(InBrowser, ALargeRunIsWhole)
{
    expectGood(pageOf(400, 300), 7);
}

TEST_P(InBrowser, ASubjectAndAStudyAreWhole)
{
    ReportedRun run;
    run.name = QStringLiteral("ses-baseline_task-") + QString(80, QLatin1Char('x'));
    run.atlas = QStringLiteral("Rows");
    run.status = QStringLiteral("excluded");
    run.reason = QStringLiteral("/a/very/long/path/") + QString(300, QLatin1Char('y'));
    run.ledger = {{QStringLiteral("MeanFDBefore"), 0.2}, {QStringLiteral("Kept"), 100}};
    StudySummary study;
    study.rows.assign(30, {QStringLiteral("sub-01"), QStringLiteral("sub-01.html"), run});
    study.settings = {{QStringLiteral("--clean"), QString(300, QLatin1Char('z'))}};
    expectGood(subjectPage(QStringLiteral("sub-01"), {run, run}), 0);
    expectGood(studyPage(study), 2);
}

/// The checks themselves: a page with every fault, and each is seen.
TEST_P(InBrowser, FaultsAreSeen)
{
    const Visit made =
        visit("<!DOCTYPE html><html><body><main><div style='width: 3000px'>wide</div>"
              "<img src='data:image/png;base64,AAAA' width='300' height='300'>"
              "<img src='http://example.invalid/picture.png' width='300' height='300'>"
              "<script>nothingIsCalledThis();</script></main></body></html>",
              GetParam());
    EXPECT_GT(made.overflow, 1000);
    EXPECT_EQ(made.pictures, 2);
    EXPECT_EQ(made.shown, 0);
    EXPECT_EQ(made.loads, 1);
    EXPECT_THAT(texts(made.console), testing::Contains(HasSubstr("nothingIsCalledThis")));
    EXPECT_THAT(texts(made.requests), ElementsAre(HasSubstr("example.invalid/picture.png")));
}

INSTANTIATE_TEST_SUITE_P(Widths, InBrowser, testing::Values(400, 1600));

} // namespace
} // namespace corvane
