// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/stall_watch.h"
#include "tests/host/support/interrupted_program.h"

#include <QCoreApplication>
#include <QSemaphore>
#include <QTemporaryDir>
#include <gmock/gmock.h>

namespace corvane
{

TEST(StallWatch, TellsOnceOfEachStall)
{
    QSemaphore told;
    StallWatch watch(std::chrono::milliseconds(40), [&told](const char *) { told.release(); });
    told.acquire(); // this thread answers no events until it is told
    // Nothing has been answered since: it is not told again.
    EXPECT_FALSE(told.tryAcquire(1, 200));
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    told.acquire();
}

TEST(StallWatch, KeepsQuietWhileEventsAreAnswered)
{
    QSemaphore told;
    {
        StallWatch watch(std::chrono::hours(1), [&told](const char *) { told.release(); });
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(told.available(), 0);
}

/// A plugin that never comes back: the program says so, and still ends when it is asked to.
TEST(BlockingPlugin, IsToldOfAndCanBeEnded)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        QProcess process;
        process.start(QStringLiteral(CORVANE_PROGRAM),
                      {"--plugins", QStringLiteral(BLOCKING_FOLDER), "--start", "Blocking"});
        ASSERT_TRUE(process.waitForStarted());
        process.setReadChannel(QProcess::StandardError);
        QByteArray errors;
        while (!errors.contains("have not answered") && process.waitForReadyRead(120000))
            errors += process.readAllStandardError();
        EXPECT_THAT(errors.toStdString(), testing::HasSubstr("Ctrl-C here"));
        kill(static_cast<pid_t>(process.processId()), signal);
        ASSERT_TRUE(process.waitForFinished(120000));
        EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
        EXPECT_EQ(process.exitCode(), signal);
    }
}

} // namespace corvane
