// SPDX-License-Identifier: GPL-3.0-or-later
//
// Files that another program shortens while they are mapped.
#include "host/files/mapped_file.h"
#include "tests/host/support/host_files.h"

#include <QFileInfo>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace corvane
{

namespace
{

constexpr qint64 length = 1 << 20;

class MappedFileTest : public testing::Test
{
protected:
    MappedFileTest() { putBytes(path, QByteArray(length, 'x')); }

    void shorten(qint64 left) const { ASSERT_TRUE(QFile::resize(path, left)); }

    const TemporaryFolder folder;
    const QString path = folder.path("large");
};

qint64 count(const MappedFile &file, uchar byte)
{
    return std::count(file.data(), file.data() + file.size(), byte);
}

std::string tooShort(const QString &path, qint64 left, qint64 expected)
{
    return QStringLiteral("%1: reading: found %2 bytes: it became shorter while it was open, "
                          "expected %3 bytes")
        .arg(path)
        .arg(left)
        .arg(expected)
        .toStdString();
}

/// Does what a process without any guard dies of: reads a mapping behind the end of its file.
[[noreturn]] void readBehindTheEnd(const QString &path)
{
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    const int file = open(path.toUtf8().constData(), O_RDWR | O_CLOEXEC);
    const auto *const bytes =
        static_cast<const volatile char *>(mmap(nullptr, 8192, PROT_READ, MAP_SHARED, file, 0));
    if (ftruncate(file, 0) != 0)
        _exit(2);
    _exit(bytes[4096]);
}

[[noreturn]] void exitWith3(int)
{
    _exit(3);
}

} // namespace

TEST_F(MappedFileTest, GivesItsBytes)
{
    const MappedFile file(path);
    EXPECT_EQ(file.size(), length);
    EXPECT_EQ(file.head(2), "xx");
    EXPECT_EQ(file.head(2 * length).size(), length);
    EXPECT_EQ(count(file, 'x'), length);
    EXPECT_TRUE(file.isIntact());
    EXPECT_EQ(errorOf([&] { file.requireIntact(); }), "no error");

    putBytes(folder.path("none"), "");
    const MappedFile none(folder.path("none"));
    EXPECT_EQ(none.size(), 0);
    EXPECT_EQ(none.data(), nullptr);
    EXPECT_TRUE(none.head(5).isEmpty());
    EXPECT_TRUE(none.isIntact());
}

TEST_F(MappedFileTest, ReadsZerosWhereTheFileHasBecomeShorterAndSaysSo)
{
    // To nothing, to a part of a page, to whole pages, and within the last page.
    for (const qint64 left : {qint64(0), qint64(5000), qint64(8192), length - 1}) {
        putBytes(path, QByteArray(length, 'x'));
        const MappedFile file(path);
        shorten(left);
        EXPECT_EQ(count(file, 'x'), left);
        EXPECT_EQ(count(file, 0), length - left);
        EXPECT_FALSE(file.isIntact());
        EXPECT_EQ(errorOf([&] { file.requireIntact(); }), tooShort(path, left, length));
    }
}

TEST_F(MappedFileTest, RemembersWhatWasMissingWhenTheFileHasItsLengthAgain)
{
    const MappedFile file(path);
    shorten(0);
    EXPECT_EQ(count(file, 0), length);
    shorten(length);
    EXPECT_FALSE(file.isIntact());
    EXPECT_EQ(errorOf([&] { file.requireIntact(); }),
              path.toStdString() + ": reading: found bytes that were gone when they were read, "
                                   "expected 1048576 bytes");
}

TEST_F(MappedFileTest, IsReadInSeveralThreads)
{
    const MappedFile file(path);
    shorten(4096);
    qint64 found[4] = {};
    std::vector<std::thread> threads;
    for (qint64 &zeros : found)
        threads.emplace_back([&] { zeros = count(file, 0); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_THAT(found, testing::Each(length - 4096));
    EXPECT_FALSE(file.isIntact());
}

TEST_F(MappedFileTest, DoesNotMindOtherFiles)
{
    const QString other = folder.path("other");
    putBytes(other, QByteArray(length, 'y'));
    const MappedFile whole(other);
    for (int round = 0; round < 1100; ++round) { // more often than there are guards
        QFile::remove(path); // some file systems write a file at once that replaces its content
        putBytes(path, QByteArray(8192, 'x'));
        const MappedFile file(path);
        ASSERT_TRUE(file.isIntact());
        shorten(10);
        ASSERT_EQ(count(file, 0), 8182);
        ASSERT_FALSE(file.isIntact());
    }
    EXPECT_EQ(count(whole, 'y'), length);
    EXPECT_TRUE(whole.isIntact());
}

TEST_F(MappedFileTest, LeavesOtherMemoryToTheSystem)
{
    EXPECT_EXIT(
        {
            const MappedFile file(path);
            readBehindTheEnd(folder.path("large"));
        },
        testing::KilledBySignal(SIGBUS), "");
    EXPECT_EXIT(
        {
            const MappedFile file(path);
            kill(getpid(), SIGBUS);
        },
        testing::KilledBySignal(SIGBUS), "");
}

using MappedReaders = MappedFileTest;

TEST_F(MappedReaders, OfVolumesAndRunsSayThatTheFileBecameShorter)
{
    writeVmr(folder.path("a.vmr"), zeroVmr());
    putBytes(folder.path("a.vtc"), smallVtcBytes());
    const Vmr vmr = readVmr(folder.path("a.vmr"));
    const VtcFile vtc(folder.path("a.vtc"));
    const qint64 vmrLength = QFileInfo(folder.path("a.vmr")).size();
    const qint64 vtcLength = QFileInfo(folder.path("a.vtc")).size();
    EXPECT_TRUE(verifyVtcChecksum(vtc));
    ASSERT_TRUE(QFile::resize(folder.path("a.vmr"), 100));
    ASSERT_TRUE(QFile::resize(folder.path("a.vtc"), 100));
    EXPECT_EQ(static_cast<const uchar *>(vmr.voxels.get())[vmr.byteCount() - 1], 0);
    EXPECT_EQ(errorOf([&] { vmr.file->requireIntact(); }),
              tooShort(folder.path("a.vmr"), 100, vmrLength));
    EXPECT_EQ(errorOf([&] { verifyVtcChecksum(vtc); }),
              tooShort(folder.path("a.vtc"), 100, vtcLength));
}

/// Each in a process of its own: a handler is installed once.
TEST(PageGuardDeathTest, PassesOnToTheHandlerThatWasThereBefore)
{
    const TemporaryFolder folder;
    putBytes(folder.path("a"), QByteArray(8192, 'x'));
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            std::signal(SIGBUS, exitWith3);
            putBytes(folder.path("b"), QByteArray(8192, 'x'));
            const MappedFile file(folder.path("b"));
            readBehindTheEnd(folder.path("b"));
        },
        testing::ExitedWithCode(3), "");
}

} // namespace corvane
