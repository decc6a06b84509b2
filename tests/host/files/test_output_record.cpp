// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a command wrote into a folder goes when it writes there again, and nothing else.
#include "host/files/output_folder.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/left_behind.h"
#include "tests/host/support/notes.h"
#include "tests/support/other_user.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane
{

namespace
{

class OutputRecord : public testing::Test
{
protected:
    /// Writes files of those names as a command does; gives what is said.
    QString write(const char *writer, const QStringList &names) const
    {
        OutputFolder output(folder.path(), QString::fromLatin1(writer));
        for (const QString &name : names)
            writeFile(output.path(name), name.toUtf8());
        return output.commit().join(QLatin1Char('\n'));
    }
    std::string names() const { return folder.entries().join(QLatin1Char(' ')).toStdString(); }
    QString recordPath() const { return folder.path(outputRecordName); }

    const TemporaryFolder folder;
};

} // namespace

TEST_F(OutputRecord, RemovesWhatTheSameCommandDoesNotWriteAgain)
{
    EXPECT_EQ(write("compute", {"a", "b", "c"}), QString());
    putBytes(folder.path("mine"), "mine");
    EXPECT_EQ(write("compute", {"b", "d"}), QString());
    EXPECT_EQ(names(), "b d mine");
    EXPECT_EQ(write("compute", {"a"}), QString());
    EXPECT_EQ(names(), "a mine");
}

TEST_F(OutputRecord, LeavesWhatOthersWrote)
{
    write("import a", {"a.vmr", "a.prt"});
    write("import b", {"b.vmr", "b.prt"});
    write("compute", {"matrix.csv"});
    write("import b", {"b.vmr"});
    EXPECT_EQ(names(), "a.prt a.vmr b.vmr matrix.csv");
    write("import a", {"a.vmr"});
    EXPECT_EQ(names(), "a.vmr b.vmr matrix.csv");
}

TEST_F(OutputRecord, AFileIsOfTheCommandThatWroteItLast)
{
    write("compute", {"features.csv", "matrix.csv"});
    write("graph", {"features.csv"});
    write("compute", {"matrix.csv"});
    EXPECT_EQ(names(), "features.csv matrix.csv");
    write("graph", {"mst.csv"});
    EXPECT_EQ(names(), "matrix.csv mst.csv");
}

TEST_F(OutputRecord, LeavesFilesThatSomebodyChangedAndSaysSo)
{
    write("compute", {"longer", "later", "linked", "folder", "removed", "same"});
    putBytes(folder.path("longer"), "longer than before");
    setAge(folder.path("later"), std::chrono::hours(-1));
    putBytes(folder.path("mine"), "mine");
    for (const char *name : {"linked", "folder", "removed"})
        ASSERT_TRUE(QFile::remove(folder.path(name)));
    ASSERT_TRUE(QFile::link(folder.path("mine"), folder.path("linked")));
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("folder")));
    const auto kept = [&](const char *name) {
        return folder.path(name) + QStringLiteral(": an earlier run wrote it and this one did not; "
                                                  "it stays, since it was changed meanwhile");
    };
    EXPECT_EQ(write("compute", {"new"}).toStdString(),
              joined({kept("folder"), kept("later"), kept("linked"), kept("longer")}));
    EXPECT_EQ(names(), "folder later linked longer mine new");
    EXPECT_EQ(bytesOf(folder.path("mine")), "mine");
    // They are the user's now.
    EXPECT_EQ(write("compute", {"new"}), QString());
    EXPECT_EQ(names(), "folder later linked longer mine new");
}

TEST_F(OutputRecord, SaysWhatStaysOfASetOfWhichAnotherCommandReplacedAFile)
{
    write("compute", {"connectivity.csv", "features.csv", "mst.csv", "summary.json"});
    const std::string start = folder.path().toStdString() +
                              ": some files of \"compute\" were replaced, others stay beside the "
                              "new ones: ";
    EXPECT_EQ(write("graph", {"features.csv"}).toStdString(),
              start + "connectivity.csv, mst.csv, summary.json");
    // Once.
    EXPECT_EQ(write("graph", {"features.csv"}), QString());
    EXPECT_EQ(write("import sub", {"sub.vmr"}), QString());
    write("compute", {"a", "b", "c", "d", "e", "features.csv"});
    EXPECT_EQ(write("graph", {"features.csv"}).toStdString(), start + "a, b, c and 2 more");
}

TEST_F(OutputRecord, SaysOfADamagedOneThatNothingGoes)
{
    putBytes(folder.path("mine"), "mine");
    const std::string stays = "; files of earlier runs stay where this one did not replace them";
    const std::string start = recordPath().toStdString() + ": ";
    const std::string other =
        "content: found something else, expected a record of version 1" + stays;
    const auto entry = [&](const std::string &name) {
        return "file 1: found \"" + name +
               "\", expected the name of a file in this folder, with its writer, length and time" +
               stays;
    };
    const QByteArray head = R"({"format": "Corvane outputs", "version": 1, "files": [)";
    const struct {
        QByteArray bytes;
        std::string says;
    } rows[] = {
        {"", other},
        {"{", other},
        {"[1]", other},
        {R"({"format": "another", "version": 1, "files": []})", other},
        {R"({"format": "Corvane outputs", "version": 2, "files": []})", other},
        {head + "1]}", entry("")},
        {head + R"({"file": "a"}]})", entry("a")},
        {head + R"({"file": "a", "writer": "compute", "bytes": 1}]})", entry("a")},
        {head + R"({"file": "a", "writer": "compute", "bytes": 4e27, "time":)"
                R"( "2026-01-01T00:00:00.000Z"}]})",
         entry("a")},
        {head + R"({"file": "a", "writer": "compute", "bytes": 1.5, "time":)"
                R"( "2026-01-01T00:00:00.000Z"}]})",
         entry("a")},
        {head + R"({"file": "a", "bytes": 1, "time": "2026-01-01T00:00:00.000Z"}]})", entry("a")},
    };
    for (const auto &row : rows) {
        write("compute", {"a"});
        putBytes(recordPath(), row.bytes);
        EXPECT_EQ(write("compute", {"b"}).toStdString(), start + row.says);
        EXPECT_EQ(names(), "a b mine") << row.bytes.toStdString();
        // From now on there is a good one.
        EXPECT_EQ(write("compute", {"c"}), QString());
        EXPECT_EQ(names(), "a c mine");
        ASSERT_TRUE(QFile::remove(folder.path("a")));
    }
}

TEST_F(OutputRecord, NeverReachesBeyondItsFolder)
{
    const QString below = folder.path("below");
    ASSERT_TRUE(QDir().mkpath(below));
    putBytes(folder.path("outside"), "12345");
    putBytes(below + QStringLiteral("/outside"), "12345");
    const QByteArray time = QFileInfo(folder.path("outside"))
                                .lastModified()
                                .toUTC()
                                .toString(Qt::ISODateWithMs)
                                .toUtf8();
    const QString record = below + QLatin1Char('/') + QLatin1String(outputRecordName);
    for (const QByteArray &name :
         {QByteArray("../outside"), folder.path("outside").toUtf8(), QByteArray("../below/outside"),
          QByteArray("./outside"), QByteArray(".."), QByteArray("."),
          QByteArray(outputRecordName)}) {
        putBytes(record, R"({"format": "Corvane outputs", "version": 1, "files": [{"file": ")" +
                             name + R"(", "writer": "compute", "bytes": 5, "time": ")" + time +
                             "\"}]}");
        OutputFolder output(below, QStringLiteral("compute"));
        EXPECT_THAT(joined(output.commit()),
                    testing::HasSubstr("expected the name of a file in this folder"))
            << name.constData();
        EXPECT_EQ(bytesOf(folder.path("outside")), "12345");
        EXPECT_EQ(bytesOf(below + QStringLiteral("/outside")), "12345");
    }
}

/// In a folder like /tmp only its owner may remove or replace a file.
TEST_F(OutputRecord, SaysWhatItMayNotRemoveOrWrite)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make files of two users";
    write("compute", {"a"});
    ASSERT_EQ(chmod(folder.path().toUtf8().constData(), 01777), 0);
    const OtherUser user;
    EXPECT_EQ(write("compute", {"b"}).toStdString(),
              folder.path("a").toStdString() +
                  ": an earlier run wrote it and this one did not; it stays, since it cannot be "
                  "removed: Operation not permitted\n" +
                  recordPath().toStdString() +
                  ": finishing: found Operation not permitted, expected a file that can be "
                  "completed; the next run will leave the files of this one where they are");
    EXPECT_EQ(names(), "a b");
}

TEST_F(OutputRecord, TakesNamesThatNeedCare)
{
    const QStringList all{"a b", "a\\b",    "a\"b",
                          "%1",  ".hidden", QString::fromUtf8("\xe6\xb8\xac")};
    write("compute", all);
    EXPECT_EQ(folder.entries().size(), all.size());
    EXPECT_EQ(write("compute", {}), QString());
    EXPECT_EQ(names(), "");
}

TEST_F(OutputRecord, IsAsItIsDocumented)
{
    write("import a", {"a.vmr"});
    write("compute", {"matrix.csv"});
    const QJsonObject record = QJsonDocument::fromJson(bytesOf(recordPath())).object();
    EXPECT_EQ(record["format"].toString(), QStringLiteral("Corvane outputs"));
    EXPECT_EQ(record["version"].toInt(), 1);
    const QJsonArray files = record["files"].toArray();
    ASSERT_EQ(files.size(), 2);
    const QJsonObject matrix = files[1].toObject();
    EXPECT_EQ(matrix.keys(), (QStringList{"bytes", "file", "time", "writer"}));
    EXPECT_EQ(matrix["file"].toString(), QStringLiteral("matrix.csv"));
    EXPECT_EQ(matrix["writer"].toString(), QStringLiteral("compute"));
    EXPECT_EQ(matrix["bytes"].toInt(), 10);
    const QDateTime time = QDateTime::fromString(matrix["time"].toString(), Qt::ISODateWithMs);
    EXPECT_EQ(time, QFileInfo(folder.path("matrix.csv")).lastModified());
}

} // namespace corvane
