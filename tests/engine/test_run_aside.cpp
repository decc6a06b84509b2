// SPDX-License-Identifier: GPL-3.0-or-later
//
// Work beside the caller's thread, and on it where the system starts no other.
#include "engine/compute_error.h"
#include "engine/run_aside.h"
#include "tests/support/no_further_thread.h"

#include <QThread>
#include <QThreadPool>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace
{

QThread *here()
{
    return QThread::currentThread();
}

TEST(RunAside, IsOnAThreadOfThePool)
{
    QThreadPool pool;
    QThread *const caller = here();
    EXPECT_NE(runAside(&pool, here).result(), caller);
}

TEST(RunAside, WithoutAFurtherThreadTheCallerDoesTheWork)
{
    const NoFurtherThread refused;
    QThreadPool pool;
    const QFuture<QThread *> where = runAside(&pool, here);
    EXPECT_TRUE(where.isFinished());
    EXPECT_EQ(where.result(), here());

    bool isDone = false;
    EXPECT_TRUE(runAside(&pool, [&isDone] { isDone = true; }).isFinished());
    EXPECT_TRUE(isDone);
    EXPECT_EQ(pool.activeThreadCount(), 0);
}

TEST(RunAside, WithoutAFurtherThreadTheFutureThrowsWhatTheWorkDoes)
{
    const NoFurtherThread refused;
    QThreadPool pool;
    QFuture<int> future = runAside(&pool, []() -> int { throw ComputeError("no matrix"); });
    try {
        future.waitForFinished();
        FAIL() << "nothing was thrown";
    } catch (const ComputeError &error) {
        EXPECT_STREQ(error.what(), "no matrix");
    }
    QFuture<void> other = runAside(&pool, [] { throw std::runtime_error("of no kind of Qt's"); });
    EXPECT_THROW(other.waitForFinished(), QUnhandledException);
}

TEST(RunAside, OwnsWhatTheWorkOwns)
{
    const NoFurtherThread refused;
    QThreadPool pool;
    const auto shared = std::make_shared<int>(7);
    EXPECT_EQ(runAside(&pool, [shared] { return *shared; }).result(), 7);
    EXPECT_EQ(shared.use_count(), 1);
}

} // namespace
