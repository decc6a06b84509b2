// SPDX-License-Identifier: GPL-3.0-or-later
//
// What stands beside a user's files while a process works on them, and what one that is gone has
// left there.
#include "host/files/disk.h"
#include "host/files/hidden_name.h"
#include "host/files/hidden_path.h"
#include "host/files/output_folder.h"
#include "host/files/scratch_folder.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/left_behind.h"

#include <QFileInfo>

#include <csignal>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvane
{

namespace
{

using std::chrono::minutes;
using std::chrono::seconds;

QString hiddenName(const ProcessIdentity &owner, quint64 number = 0)
{
    return HiddenName{owner, number}.text();
}

QString nameOf(int length, const char *ending)
{
    return QString(length - static_cast<int>(qstrlen(ending)), QLatin1Char('n')) +
           QLatin1String(ending);
}

} // namespace

TEST(ProcessIdentity, TellsAProcessFromOneThatIsGone)
{
    const ProcessIdentity own = thisProcess();
    EXPECT_EQ(own.number, getpid());
    EXPECT_EQ(stateOf(own), ProcessState::Runs);
    EXPECT_EQ(stateOf(goneProcess()), ProcessState::IsGone);

    ProcessIdentity before = own; // had the same number
    --before.start;
    EXPECT_EQ(stateOf(before), ProcessState::IsGone);
    before = own; // before the machine was started
    before.boot = "00000000";
    EXPECT_EQ(stateOf(before), ProcessState::IsGone);
    EXPECT_EQ(stateOf(processElsewhere()), ProcessState::IsElsewhere);
}

TEST(ProcessIdentity, TakesAProcessThatHasEndedForGone)
{
    int wait[2];
    ASSERT_EQ(pipe(wait), 0);
    const pid_t child = fork();
    if (child == 0) {
        char byte = 0;
        (void)!read(wait[0], &byte, 1);
        _exit(0);
    }
    ProcessIdentity identity = thisProcess();
    identity.number = child;
    identity.start = startOf(child);
    EXPECT_EQ(stateOf(identity), ProcessState::Runs);
    ASSERT_EQ(write(wait[1], "", 1), 1);
    siginfo_t info{};
    // It has ended, but nobody has asked for its status.
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(stateOf(identity), ProcessState::IsGone);
    waitpid(child, nullptr, 0);
    EXPECT_EQ(stateOf(identity), ProcessState::IsGone);
    close(wait[0]);
    close(wait[1]);
}

TEST(HiddenName, NamesItsProcess)
{
    const HiddenName name{{"node_7.3f2a91bc", "7c3d2e11", 4711, 123456789012}, 3};
    EXPECT_EQ(name.text().toStdString(), ".corvane-node_7.3f2a91bc-7c3d2e11-4711-123456789012-3");
    const std::optional<HiddenName> read = HiddenName::of(name.text());
    ASSERT_TRUE(read);
    EXPECT_EQ(read->owner.host, name.owner.host);
    EXPECT_EQ(read->owner.boot, name.owner.boot);
    EXPECT_EQ(read->owner.number, name.owner.number);
    EXPECT_EQ(read->owner.start, name.owner.start);
    EXPECT_EQ(read->number, name.number);
    EXPECT_TRUE(HiddenName::of(hiddenName(thisProcess())));
    for (const char *other :
         {"", ".corvane-", ".corvane-notes", ".corvane-a-b-1-2", ".corvane-a-b-1-2-3-4",
          ".corvane-a-b-x-2-3", "x.corvane-a-b-1-2-3", ".corvane-a-b-1-2-3\n"})
        EXPECT_FALSE(HiddenName::of(QString::fromLatin1(other))) << other;
}

TEST(HiddenName, IsLeftBehindByAProcessThatIsGoneOrSilent)
{
    const auto isLeft = [](const ProcessIdentity &owner, seconds silence) {
        return HiddenName{owner, 0}.isLeftBehind(silence);
    };
    EXPECT_TRUE(isLeft(goneProcess(), seconds(0)));
    EXPECT_FALSE(isLeft(thisProcess(), minutes(600)));
    EXPECT_FALSE(isLeft(processElsewhere(), minutes(10)));
    EXPECT_TRUE(isLeft(processElsewhere(), minutes(10) + seconds(1)));
}

TEST(HiddenName, IsNotShownToUsers)
{
    const QString name = hiddenName(thisProcess());
    EXPECT_EQ(shownPath(QStringLiteral("/a/b.vmr")).toStdString(), "/a/b.vmr");
    EXPECT_EQ(shownPath(QStringLiteral("a/") + name + QStringLiteral("/b.vmr")).toStdString(),
              "a/b.vmr");
    EXPECT_EQ(
        shownPath(QStringLiteral("/a/") + name + QLatin1Char('/') + name + QStringLiteral("/b"))
            .toStdString(),
        "/a/b");
    EXPECT_EQ(shownPath(QStringLiteral("/.corvane-notes/b")).toStdString(), "/.corvane-notes/b");
    const InputError error(QStringLiteral("out/") + name + QStringLiteral("/a.vtc"),
                           QStringLiteral("writing"), QStringLiteral("x"), QStringLiteral("y"));
    EXPECT_STREQ(error.what(), "out/a.vtc: writing: found x, expected y");
}

TEST(HiddenPath, GoesWithItsObjectUnlessItWasRenamed)
{
    const TemporaryFolder folder;
    {
        const HiddenPath file(folder.path());
        const HiddenPath other(folder.path());
        EXPECT_NE(file.path(), other.path());
        putBytes(file.path(), "x");
        ASSERT_TRUE(QDir().mkpath(other.path() + QStringLiteral("/a/b")));
        EXPECT_EQ(folder.entries().size(), 2);
    }
    EXPECT_TRUE(folder.entries().isEmpty());
    {
        HiddenPath file(folder.path());
        putBytes(file.path(), "x");
        EXPECT_TRUE(file.renameTo(folder.path("none/kept")));
        EXPECT_FALSE(file.renameTo(folder.path("kept")));
    }
    EXPECT_EQ(folder.entries(), QStringList{QStringLiteral("kept")});
}

TEST(HiddenPath, IsTouchedForOtherMachines)
{
    const TemporaryFolder folder;
    const HiddenPath own(folder.path());
    ASSERT_TRUE(QDir().mkpath(own.path()));
    setAge(own.path(), minutes(20));
    touchHiddenPaths();
    EXPECT_LT(ageOf(own.path()), minutes(1));
}

TEST(OutputFolder, RemovesWhatKilledProcessesLeft)
{
    const TemporaryFolder folder;
    const auto left = [&](const ProcessIdentity &owner, quint64 number, minutes age) {
        const QString name = hiddenName(owner, number);
        EXPECT_TRUE(QDir(folder.path()).mkpath(name + QStringLiteral("/deep")));
        putBytes(folder.path(name) + QStringLiteral("/deep/file"), "x");
        setAge(folder.path(name), age);
        return name;
    };
    left(goneProcess(), 0, minutes(0));
    left(processElsewhere(), 0, minutes(11));
    putBytes(folder.path(hiddenName(goneProcess(), 7)), "a file, not a folder");
    QStringList stay{left(thisProcess(), 1 << 30, minutes(60)),
                     left(processElsewhere(), 1, minutes(9)), QStringLiteral(".corvane-notes"),
                     QStringLiteral("mine.txt")};
    putBytes(folder.path(stay[2]), "mine");
    putBytes(folder.path(stay[3]), "mine");
    {
        const OutputFolder output(folder.path(), {});
    }
    QStringList found = folder.entries();
    found.sort();
    stay.sort();
    EXPECT_EQ(found, stay);
}

TEST(OutputFolder, LeavesNoFolderWhenNothingCanBeWritten)
{
    const TemporaryFolder folder;
    putBytes(folder.path("file"), "x");
    EXPECT_EQ(errorOf([&] { OutputFolder(folder.path("file"), {}); }),
              folder.path("file").toStdString() +
                  ": output folder: found a file, expected a folder that can be written to");
    EXPECT_EQ(errorOf([&] { OutputFolder(folder.path("file/below"), {}); }),
              folder.path("file/below").toStdString() +
                  ": output folder: found Not a directory, expected a folder that can be written "
                  "to");
    // The second of two new folders has a name that is too long.
    const QString deep = folder.path("new/") + nameOf(256, "");
    EXPECT_EQ(errorOf([&] { OutputFolder output(deep, {}); }),
              deep.toStdString() +
                  ": output folder: found File name too long, expected a folder that can be "
                  "written to");
    {
        const OutputFolder output(folder.path("one/two/three"), {});
        EXPECT_TRUE(QFileInfo(folder.path("one/two/three")).isDir());
    }
    EXPECT_EQ(folder.entries(), QStringList{QStringLiteral("file")});
}

TEST(OutputFolder, LeavesNoFolderWhenItsHiddenOneCannotBeMade)
{
    // The folder's own path is as long as the system takes, and has no room for another name.
    const TemporaryFolder folder;
    QString longest = folder.path();
    while (longest.size() < 4000 - 200)
        longest += QLatin1Char('/') + nameOf(200, "");
    longest += QLatin1Char('/') + nameOf(4090 - longest.size() - 1, "");
    EXPECT_THAT(errorOf([&] { OutputFolder output(longest, {}); }),
                testing::HasSubstr("found File name too long"));
    EXPECT_TRUE(folder.entries().isEmpty());
}

TEST(OutputFile, TakesTheLongestName)
{
    const TemporaryFolder folder;
    const QString longest = folder.path(nameOf(255, ".vmr"));
    writeVmr(longest, zeroVmr());
    EXPECT_EQ(readVmr(longest).type, Vmr::UChar);
    const QString longer = folder.path(nameOf(256, ".vmr"));
    EXPECT_EQ(errorOf([&] { writeVmr(longer, zeroVmr()); }),
              longer.toStdString() + ": writing: found File name too long, expected a place where "
                                     "a file can be written");
    EXPECT_EQ(folder.entries().size(), 1);
}

TEST(ScratchFolder, IsPrivateAndGoesAway)
{
    const TemporaryFolder temporary;
    const QByteArray before = qgetenv("TMPDIR");
    qputenv("TMPDIR", temporary.path().toUtf8());
    const QString left = hiddenName(goneProcess());
    ASSERT_TRUE(QDir(temporary.path()).mkdir(left));
    {
        const ScratchFolder folder;
        EXPECT_EQ(QFileInfo(folder.path()).path(), temporary.path());
        EXPECT_EQ(temporary.entries().size(), 1);
        putBytes(folder.filePath(QStringLiteral("a")), "x");
        struct stat status {
        };
        ASSERT_EQ(stat(folder.path().toUtf8().constData(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777U, 0700U);
    }
    EXPECT_TRUE(temporary.entries().isEmpty());
    before.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before);
}

} // namespace corvane
