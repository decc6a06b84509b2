// SPDX-License-Identifier: GPL-3.0-or-later
//
// A set of files in its folder is the one or the other, wherever a command was ended.
#include "host/files/hidden_name.h"
#include "host/files/input_file.h"
#include "host/files/output_folder.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/left_behind.h"
#include "tests/host/support/notes.h"
#include "tests/host/support/program.h"
#include "tests/host/support/traced_program.h"

#include <QRegularExpression>

#include <gmock/gmock.h>
#include <map>

namespace corvane
{

namespace
{

using testing::HasSubstr;

/// The files of a folder by their names, but for hidden ones.
using Files = std::map<QString, QByteArray>;

Files filesOf(const QString &folder)
{
    Files files;
    for (const QString &name : QDir(folder).entryList(QDir::Files))
        files[name] = bytesOf(folder + QLatin1Char('/') + name);
    return files;
}

/// A folder in which one set of files replaces another.
class OutputSets : public testing::Test
{
protected:
    OutputSets()
    {
        putBytes(folder.path("old.csv"), "0,1\n1,0\n");
        putBytes(folder.path("new.csv"), "0,1,2\n1,0,3\n2,3,0\n");
        EXPECT_EQ(runCorvane(arguments("old.csv", true)).status, 0);
        oldSet = filesOf(out);
        EXPECT_EQ(runCorvane(arguments("new.csv", true)).status, 0);
        newSet = filesOf(out);
        EXPECT_EQ(oldSet.size(), 2U);
        EXPECT_EQ(newSet.size(), 2U);
    }

    QStringList arguments(const char *matrix, bool withTree) const
    {
        QStringList words{QStringLiteral("graph"), folder.path(matrix), QStringLiteral("--out"),
                          out};
        if (withTree)
            words += QStringLiteral("--mst");
        return words;
    }
    void putOldSet() const
    {
        EXPECT_TRUE(QDir(out).removeRecursively());
        EXPECT_EQ(runCorvane(arguments("old.csv", true)).status, 0);
    }

    /// Writes the new set over the old one until the watcher ends it.
    TracedRun replaceOldSet(const std::function<Fate(const SystemCall &call)> &watcher,
                            bool withTree = true) const
    {
        putOldSet();
        return runTraced(QStringLiteral(CORVANE_PROGRAM), arguments("new.csv", withTree),
                         [&](const SystemCall &call) {
                             const bool isHere = QString::fromStdString(call.path).startsWith(out);
                             return isHere ? watcher(call) : Fate::GoesOn;
                         });
    }

    /// The names of files that readers refuse.
    QStringList refused() const
    {
        QStringList names;
        for (const auto &[name, bytes] : filesOf(out)) {
            const std::string error =
                errorOf([&, path = out + QLatin1Char('/') + name] { InputFile file(path); });
            if (error == "no error")
                continue;
            names += name;
            EXPECT_EQ(error, (out + QLatin1Char('/') + name).toStdString() +
                                 ": opening: found a file of a set that is not complete: \"graph\" "
                                 "was ended on its way, expected a complete one: run that command "
                                 "once more");
        }
        return names;
    }

    /// What any other command does that writes to the folder, though nothing in the end.
    void visit() const { OutputFolder(out, QStringLiteral("visit")); }

    /// Ends the command before each of its steps, one run for each. `fresh` is the new set as it is
    /// without an old one.
    void killEverywhere(bool withTree, const Files &fresh) const
    {
        int refusals = 0;
        int finished = 0;
        for (int step = 0;; ++step) {
            int calls = 0;
            const TracedRun run = replaceOldSet(
                [&](const SystemCall &) { return calls++ == step ? Fate::IsKilled : Fate::GoesOn; },
                withTree);
            if (run.signal == 0) {
                EXPECT_EQ(run.status, 0) << run.errors;
                EXPECT_EQ(filesOf(out), fresh);
                EXPECT_GT(step, 10);
                break;
            }
            EXPECT_EQ(run.signal, SIGKILL);
            const Files found = filesOf(out);
            const QStringList names = refused();
            if (names.isEmpty()) {
                EXPECT_TRUE(found == oldSet || found == fresh) << step;
            } else {
                EXPECT_EQ(names.size(), static_cast<int>(fresh.size())) << step;
                ++refusals;
            }
            visit();
            const Files then = filesOf(out);
            EXPECT_TRUE(then == (names.isEmpty() ? found : fresh)) << step;
            EXPECT_TRUE(refused().isEmpty()) << step;
            EXPECT_EQ(joined(hidden()), "") << step;
            finished += then == fresh ? 1 : 0;
        }
        EXPECT_GT(refusals, 1);
        EXPECT_GT(finished, refusals);
    }

    QStringList hidden() const { return namesIn(out).filter(QRegularExpression("^\\.")); }

    const TemporaryFolder folder;
    const QString out = folder.path("out");
    Files oldSet;
    Files newSet;
};

/// A set that a process left on its way: one of its files moved up, one not.
void leaveOnItsWay(const QString &out, const ProcessIdentity &owner)
{
    const QString unfinished = out + QStringLiteral("/.corvane-unfinished/");
    ASSERT_TRUE(QDir().mkpath(unfinished));
    putBytes(unfinished + HiddenName{owner, 0}.text() + QStringLiteral(".json"),
             R"({"format": "Corvane set of files", "version": 1, "writer": "graph",
                 "files": ["features.csv", "mst.csv"]})");
    putBytes(out + QStringLiteral("/features.csv"), "new");
    putBytes(unfinished + QStringLiteral("mst.csv"), "new");
}

} // namespace

TEST_F(OutputSets, AreOldOrNewWhereverACommandIsKilled)
{
    killEverywhere(true, newSet);
}

TEST_F(OutputSets, AreOldOrNewAlsoWhenTheNewOneHasFewerFiles)
{
    Files fresh = newSet;
    fresh.erase(QStringLiteral("mst.csv"));
    killEverywhere(false, fresh);
}

TEST_F(OutputSets, AreLeftAloneWhenOneFileCannotBeReplaced)
{
    putOldSet();
    ASSERT_TRUE(QFile::remove(out + QStringLiteral("/mst.csv")));
    ASSERT_TRUE(QDir(out).mkdir(QStringLiteral("mst.csv")));
    const Files before = filesOf(out);
    const ProgramRun run = runCorvane(arguments("new.csv", true));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors.toStdString(),
              "Corvane: " + out.toStdString() +
                  "/mst.csv: writing: found a folder, expected a file that can be replaced\n");
    EXPECT_EQ(filesOf(out), before);
    EXPECT_TRUE(hidden().isEmpty());
}

TEST_F(OutputSets, AreRefusedWhenOneFileCouldNotBeReplacedAndFinishedWhenItCan)
{
    const QString obstacle = out + QStringLiteral("/mst.csv");
    int renames = 0;
    // Behind the check and the first of the files.
    const TracedRun run = replaceOldSet([&](const SystemCall &call) {
        const bool isMove =
            call.kind == SystemCall::Rename &&
            QString::fromStdString(call.path).contains(QStringLiteral("/.corvane-unfinished/"));
        if (isMove && ++renames == 2) {
            EXPECT_TRUE(QFile::remove(obstacle));
            EXPECT_TRUE(QDir().mkpath(obstacle));
        }
        return Fate::GoesOn;
    });
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "Corvane: " + obstacle.toStdString() +
                              ": writing: found Is a directory, expected a file that can be "
                              "replaced\n");
    EXPECT_EQ(refused(), QStringList{QStringLiteral("features.csv")});
    // The way out is in the message.
    EXPECT_THAT(errorOf([&] { visit(); }), HasSubstr("mst.csv: writing: found Is a directory"));
    ASSERT_TRUE(QDir().rmdir(obstacle));
    // Whatever writes there next tells of it.
    EXPECT_EQ(joined(OutputFolder(out, QStringLiteral("visit")).commit()),
              out.toStdString() + ": \"graph\" was ended before all its files were in their place; "
                                  "now they are");
    EXPECT_EQ(filesOf(out), newSet);
    EXPECT_TRUE(refused().isEmpty());
    EXPECT_TRUE(hidden().isEmpty());
}

TEST_F(OutputSets, OfAProcessThatIsStillAtThemAreNotTouched)
{
    putOldSet();
    leaveOnItsWay(out, processElsewhere());
    visit();
    EXPECT_EQ(refused(), (QStringList{QStringLiteral("features.csv"), QStringLiteral("mst.csv")}));
    EXPECT_EQ(hidden(), QStringList{QStringLiteral(".corvane-unfinished")});
    // It has been silent for too long.
    setAge(out + QStringLiteral("/.corvane-unfinished"), std::chrono::minutes(11));
    visit();
    EXPECT_TRUE(refused().isEmpty());
    EXPECT_EQ(filesOf(out),
              (Files{{QStringLiteral("features.csv"), "new"}, {QStringLiteral("mst.csv"), "new"}}));
    EXPECT_TRUE(hidden().isEmpty());
}

TEST_F(OutputSets, StayWhereTheyAreWithoutTheirList)
{
    putOldSet();
    const QString unfinished = out + QStringLiteral("/.corvane-unfinished");
    ASSERT_TRUE(QDir().mkpath(unfinished));
    putBytes(unfinished + QStringLiteral("/mst.csv"), "whose?");
    const ProgramRun run = runCorvane(arguments("new.csv", true));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors.toStdString(),
              "Corvane: " + unfinished.toStdString() +
                  ": writing: found files that no list names, expected none: move them away by "
                  "hand\n");
    EXPECT_EQ(filesOf(out), oldSet);
    EXPECT_EQ(bytesOf(unfinished + QStringLiteral("/mst.csv")), "whose?");
    EXPECT_EQ(hidden(), QStringList{QStringLiteral(".corvane-unfinished")});
}

TEST_F(OutputSets, AreFinishedByTheirOwnProcessToo)
{
    // A window goes on when a command of it failed.
    putOldSet();
    leaveOnItsWay(out, thisProcess());
    EXPECT_THAT(errorOf([&] { InputFile file(out + QStringLiteral("/mst.csv")); }),
                HasSubstr("a file of a set that \"graph\" is putting in its place"));
    visit();
    EXPECT_TRUE(refused().isEmpty());
    EXPECT_TRUE(hidden().isEmpty());
}

TEST_F(OutputSets, WaitForEachOther)
{
    // Many commands at once.
    constexpr int commands = 8;
    std::vector<std::unique_ptr<QProcess>> processes;
    for (int n = 0; n < commands; ++n) {
        processes.push_back(std::make_unique<QProcess>());
        processes.back()->start(QStringLiteral(CORVANE_PROGRAM),
                                arguments(n % 2 == 0 ? "old.csv" : "new.csv", true));
    }
    for (const auto &process : processes) {
        EXPECT_TRUE(process->waitForFinished(60000));
        EXPECT_EQ(process->exitCode(), 0) << process->readAllStandardError().toStdString();
    }
    const Files found = filesOf(out);
    EXPECT_TRUE(found == oldSet || found == newSet);
    EXPECT_TRUE(hidden().isEmpty());
}

} // namespace corvane
