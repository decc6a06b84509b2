// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/file_lock.h"
#include "host/files/file_system.h"
#include "tests/host/support/host_files.h"

#include <QProcess>
#include <filesystem>
#include <gmock/gmock.h>
#include <thread>

namespace corvane
{
namespace
{

class Lock : public testing::Test
{
protected:
    QString path() const { return m_folder.path("a.lock"); }
    QStringList entries() const { return m_folder.entries(); }

    /// Leaves a lock as another process would.
    void leave(const LockHolder &holder, std::chrono::minutes ago = std::chrono::minutes(0))
    {
        putBytes(path(), holder.text());
        const std::filesystem::path file = nativePath(path());
        std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) - ago);
    }

    static LockHolder elsewhere(const QString &job = {}, int restart = 0)
    {
        LockHolder holder{thisProcess(), job, restart, 1};
        holder.process.host = "other.12345678";
        return holder;
    }
    /// A process of this machine that is gone.
    static LockHolder gone()
    {
        LockHolder holder{thisProcess(), {}, 0, 1};
        holder.process.start += 1;
        return holder;
    }

private:
    TemporaryFolder m_folder;
};

TEST_F(Lock, IsHeldByOneAndGivenBack)
{
    {
        FileLock first(path());
        ASSERT_TRUE(first.take());
        EXPECT_FALSE(first.wasBroken());
        FileLock second(path());
        EXPECT_FALSE(second.take());
        EXPECT_THAT(
            second.holder().toStdString(),
            testing::StartsWith("process " + std::to_string(thisProcess().number) + " on "));
        EXPECT_TRUE(holderOf(path()));
    }
    EXPECT_FALSE(holderOf(path()));
    EXPECT_TRUE(FileLock(path()).take());
    EXPECT_EQ(entries(), QStringList());
}

TEST_F(Lock, OfAProcessThatIsGoneIsBroken)
{
    leave(gone());
    EXPECT_FALSE(holderOf(path()));
    FileLock lock(path());
    EXPECT_TRUE(lock.take());
    EXPECT_TRUE(lock.wasBroken());
    EXPECT_EQ(entries(), QStringList{QStringLiteral("a.lock")});
    EXPECT_EQ(LockHolder::of(bytesOf(path()))->process.start, thisProcess().start);
}

TEST_F(Lock, OfAnotherMachineIsBrokenAfterTenMinutesOfSilence)
{
    leave(elsewhere(), std::chrono::minutes(9));
    EXPECT_FALSE(FileLock(path()).take());
    EXPECT_TRUE(holderOf(path()));
    leave(elsewhere(), std::chrono::minutes(11));
    EXPECT_FALSE(holderOf(path()));
    EXPECT_TRUE(FileLock(path()).take());
}

TEST_F(Lock, OfAJobThatHasEndedIsBroken)
{
    leave(elsewhere(QStringLiteral("17")));
    EXPECT_FALSE(FileLock(path()).take([](const LockHolder &) { return false; }));
    QString asked;
    EXPECT_TRUE(FileLock(path()).take([&](const LockHolder &holder) {
        asked = holder.job;
        return true;
    }));
    EXPECT_EQ(asked, QStringLiteral("17"));
}

TEST_F(Lock, OfTheSameJobBeforeItsRestartIsBroken)
{
    leave(elsewhere(QStringLiteral("17"), 1));
    EXPECT_FALSE(FileLock(path(), QStringLiteral("17"), 1).take());
    EXPECT_FALSE(FileLock(path(), QStringLiteral("18"), 2).take());
    EXPECT_TRUE(FileLock(path(), QStringLiteral("17"), 2).take());
}

TEST_F(Lock, HalfATextIsHeldForAWhile)
{
    leave(elsewhere());
    putBytes(path(), "{\"form");
    EXPECT_FALSE(FileLock(path()).take());
    const std::filesystem::path file = nativePath(path());
    std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) -
                                               std::chrono::minutes(11));
    EXPECT_TRUE(FileLock(path()).take());
}

TEST_F(Lock, OneOfManyBreaksAStaleOne)
{
    constexpr int rounds = 50;
    for (int round = 0; round < rounds; ++round) {
        leave(gone());
        std::atomic<int> taken{0};
        std::atomic<int> ready{0};
        std::vector<std::thread> threads;
        std::vector<std::unique_ptr<FileLock>> locks(4);
        for (auto &lock : locks)
            threads.emplace_back([&] {
                lock = std::make_unique<FileLock>(path());
                ++ready;
                while (ready < 4) {
                }
                taken += lock->take() ? 1 : 0;
            });
        for (std::thread &thread : threads)
            thread.join();
        EXPECT_LE(taken, 1);
        locks.clear();
        QFile::remove(path());
    }
}

TEST_F(Lock, OfAnotherWhoBrokeItIsNotRemoved)
{
    const QByteArray others = elsewhere().text();
    {
        FileLock lock(path());
        ASSERT_TRUE(lock.take());
        putBytes(path(), others);
    }
    EXPECT_EQ(bytesOf(path()), others);
}

TEST_F(Lock, IsTouchedAsLongAsItIsHeld)
{
    FileLock lock(path());
    ASSERT_TRUE(lock.take());
    const std::filesystem::path file = nativePath(path());
    const auto now = std::filesystem::last_write_time(file);
    std::filesystem::last_write_time(file, now - std::chrono::minutes(9));
    touchHiddenPaths();
    EXPECT_GE(std::filesystem::last_write_time(file), now);
}

TEST_F(Lock, InAFolderThatIsNotThereIsAnError)
{
    EXPECT_THAT(errorOf([&] { FileLock(path() + QStringLiteral("/none/b.lock")).take(); }),
                testing::HasSubstr("expected a folder in which a file can be made"));
}

} // namespace
} // namespace corvane
