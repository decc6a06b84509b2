// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/local_engine.h"
#include "tests/host/support/host_files.h"

#include <QCoreApplication>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::Each;
using testing::ElementsAre;

/// Shells in place of the program: each task runs a script with its name as $1, in a folder where
/// it can meet the others.
class LocalEngine : public testing::Test
{
protected:
    LocalEngine()
    {
        m_work.program = QStringLiteral("/bin/sh");
        m_work.crashed = [](const QString &, const QString &) { return false; };
    }

    void setScript(const char *script)
    {
        const QString text =
            QStringLiteral("cd '%1'\n").arg(m_folder.path()) + QLatin1String(script);
        m_work.arguments = [text](const QString &participant, bool isAgain) {
            return QStringList{QStringLiteral("-c"), text, QStringLiteral("sh"), participant,
                               isAgain ? QStringLiteral("again") : QStringLiteral("first")};
        };
    }
    void addTask(const char *name, qint64 memory)
    {
        m_work.tasks.push_back({QLatin1String(name), [memory] { return memory; }});
    }
    QList<QByteArray> log() const
    {
        QList<QByteArray> lines = bytesOf(m_folder.path("log")).split('\n');
        lines.removeLast();
        return lines;
    }

    LocalWork m_work;

private:
    int m_argc = 1;
    char m_name[5] = "test";
    char *m_argv[2] = {m_name, nullptr};
    QCoreApplication m_application{m_argc, m_argv};
    TemporaryFolder m_folder;
};

/// Writes how many are at work, this one with them.
constexpr auto countTheOthers = "mkdir at-$1; ls -d at-* | wc -l >> log; rmdir at-$1";

/// Ends only when another one is there at the same time.
constexpr auto meetOne =
    "touch met-$1; while [ $(ls met-* | wc -l) -lt 2 ]; do :; done; echo met >> log";

TEST_F(LocalEngine, RunsAsManyAtOnceAsAreAskedFor)
{
    m_work.processes = 2;
    setScript(meetOne);
    addTask("a", 1);
    addTask("b", 1);
    runLocally(m_work);
    EXPECT_THAT(log(), ElementsAre("met", "met"));
}

TEST_F(LocalEngine, RunsOneAfterTheOtherWhenMoreDoNotFit)
{
    m_work.processes = 4;
    m_work.memory = 150;
    setScript(countTheOthers);
    for (const char *name : {"a", "b", "c", "d"})
        addTask(name, 100);
    runLocally(m_work);
    EXPECT_EQ(log().size(), 4);
    EXPECT_THAT(log(), Each(QByteArray("1")));
}

TEST_F(LocalEngine, RunsOneThatDoesNotFitAtAllAlone)
{
    m_work.processes = 2;
    m_work.memory = 10;
    setScript(countTheOthers);
    addTask("a", 100);
    addTask("b", 100);
    runLocally(m_work);
    EXPECT_THAT(log(), ElementsAre("1", "1"));
}

TEST_F(LocalEngine, StartsOnceMoreWhereACrashLeftSomething)
{
    setScript("echo $1 $2 >> log; [ $1$2 = afirst ] && kill -9 $$; exit 0");
    addTask("a", 1);
    addTask("b", 1);
    QStringList told;
    m_work.crashed = [&](const QString &participant, const QString &how) {
        told += participant + QStringLiteral(": ") + how;
        return true;
    };
    runLocally(m_work);
    EXPECT_EQ(told, QStringList{QStringLiteral("a: signal 9")});
    EXPECT_THAT(log(), ElementsAre("a first", "a again", "b first"));
}

TEST_F(LocalEngine, AProgramThatIsNotThereIsAnError)
{
    m_work.program = QStringLiteral("/nowhere/at/all");
    setScript("");
    addTask("a", 1);
    EXPECT_THAT(errorOf([&] { runLocally(m_work); }),
                testing::StartsWith("/nowhere/at/all: starting: found "));
}

} // namespace
} // namespace corvane
