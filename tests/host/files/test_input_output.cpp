// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/graph_table.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"
#include "host/files/output_folder.h"
#include "host/files/text_check.h"
#include "host/files/tsv_table.h"
#include "tests/host/support/host_files.h"

#include <QFileInfo>
#include <csignal>
#include <cstdio>
#include <functional>
#include <gmock/gmock.h>
#include <grp.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace corvane
{

namespace
{

/// Does something in a process of its own, which ends with 1 and the error's line on standard error
/// when it is refused, else with 0. Without return, for EXPECT_EXIT.
[[noreturn]] void report(const std::function<void()> &action)
{
    const std::string said = errorOf(action);
    std::fputs(said.c_str(), stderr);
    _exit(said == "no error" ? 0 : 1);
}

/// As a user who owns nothing. Tests may run as root, who may read everything.
[[noreturn]] void reportAsNobody(const std::function<void()> &action)
{
    constexpr unsigned nobody = 65534;
    if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setresgid(nobody, nobody, nobody) != 0 ||
                           setresuid(nobody, nobody, nobody) != 0))
        _exit(2);
    report(action);
}

/// Where no file may grow beyond a megabyte, as on a disk that is full.
[[noreturn]] void reportOnAFullDisk(const std::function<void()> &action)
{
    constexpr rlim_t longest = 1 << 20;
    const rlimit limit{longest, longest};
    if (std::signal(SIGXFSZ, SIG_IGN) == SIG_ERR || setrlimit(RLIMIT_FSIZE, &limit) != 0)
        _exit(2);
    report(action);
}

void allowEveryone(const QString &folder)
{
    ASSERT_EQ(chmod(folder.toUtf8().constData(), 0777), 0);
}

struct Reader {
    const char *name;
    std::function<void(const QString &path)> read;
};

std::vector<Reader> readers()
{
    return {{"a.vmr", [](const QString &path) { readVmr(path); }},
            {"a.vtc", [](const QString &path) { VtcFile file(path); }},
            {"a.voi", [](const QString &path) { readVoiFile(path); }},
            {"a.prt", [](const QString &path) { readPrtFile(path); }}};
}

struct Writer {
    const char *name;
    std::function<void(const QString &path)> write;
};

std::vector<Writer> writers()
{
    return {{"a.vmr", [](const QString &path) { writeVmr(path, zeroVmr()); }},
            {"a.voi", [](const QString &path) { writeVoiFile(path, smallVoiSet()); }},
            {"a.prt", [](const QString &path) { writePrtFile(path, smallPrt()); }}};
}

/// More than a megabyte of each format.
std::vector<Writer> largeWriters()
{
    return {{"a.vmr", [](const QString &path) { writeVmr(path, zeroVmr()); }},
            {"a.voi",
             [](const QString &path) {
                 VoiSet set = smallVoiSet();
                 set.vois[0].voxels.resize(100000);
                 writeVoiFile(path, set);
             }},
            {"a.prt",
             [](const QString &path) {
                 Prt prt = smallPrt();
                 prt.conditions[0].intervals.resize(200000, {1, 2});
                 writePrtFile(path, prt);
             }},
            // The last bytes are still in a buffer when the file is finished.
            {"pieces", [](const QString &path) {
                 OutputFile file(path);
                 for (int piece = 0; piece <= 1 << 20; piece += 1000)
                     file.write(QByteArray(1000, 'x'));
                 file.commit();
             }}};
}

} // namespace

TEST(Readers, SayThatAFileIsMissing)
{
    const TemporaryFolder folder;
    for (const Reader &reader : readers()) {
        const QString path = folder.path(reader.name);
        EXPECT_EQ(errorOf([&] { reader.read(path); }),
                  path.toStdString() +
                      ": opening: found No such file or directory, expected a readable file");
    }
}

TEST(Readers, RefuseFoldersPipesDevicesAndEmptyPaths)
{
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo(folder.path("pipe").toUtf8().constData(), 0600), 0);
    for (const Reader &reader : readers()) {
        EXPECT_EQ(errorOf([&] { reader.read(folder.path()); }),
                  folder.path().toStdString() +
                      ": opening: found a folder, expected a readable file");
        EXPECT_EQ(errorOf([&] { reader.read(folder.path("pipe")); }),
                  folder.path("pipe").toStdString() +
                      ": opening: found something that is no plain file, expected a readable file");
        EXPECT_EQ(errorOf([&] { reader.read(QStringLiteral("/dev/zero")); }),
                  "/dev/zero: opening: found something that is no plain file, expected a readable "
                  "file");
        EXPECT_EQ(errorOf([&] { reader.read(QString()); }),
                  "(no file): opening: found an empty path, expected a readable file");
    }
}

TEST(Readers, RefuseTextsThatAreTooLarge)
{
    const TemporaryFolder folder;
    const QString path = folder.path("large");
    putBytes(path, "");
    ASSERT_TRUE(QFile::resize(path, largestText + 1));
    const std::string says =
        path.toStdString() + ": content: found 1073741825 bytes, expected at most ";
    EXPECT_EQ(errorOf([&] { readVoiFile(path); }), says + "1073741824");
    EXPECT_EQ(errorOf([&] { readPrtFile(path); }), says + "1073741824");
    EXPECT_EQ(errorOf([&] { readGraphTable(path); }), says + "1073741824");
    EXPECT_EQ(errorOf([&] { TsvTable table(path); }), says + "268435456");
}

TEST(Readers, SayThatAFileMayNotBeRead)
{
    const TemporaryFolder folder;
    allowEveryone(folder.path());
    for (const Reader &reader : readers()) {
        const QString path = folder.path(reader.name);
        putBytes(path, "anything");
        ASSERT_EQ(chmod(path.toUtf8().constData(), 0), 0);
        EXPECT_EXIT(reportAsNobody([&] { reader.read(path); }), testing::ExitedWithCode(1),
                    testing::HasSubstr(path.toStdString() + ": opening: found Permission denied, "
                                                            "expected a readable file"));
    }
}

TEST(Readers, FollowLinksAndTakeEveryPath)
{
    const TemporaryFolder folder;
    const QString target = folder.path("\xe6\xb5\xb7 \xc3\xa4%1\nb.prt");
    writePrtFile(target, smallPrt());
    ASSERT_TRUE(QFile::link(target, folder.path("link.prt")));
    EXPECT_TRUE(readPrtFile(folder.path("link.prt")) == smallPrt());
    EXPECT_TRUE(readPrtFile(target) == smallPrt());
    // The path is one line in an error, and its "%1" stays what it is.
    EXPECT_EQ(errorOf([&] { readVoiFile(target); }),
              folder.path().toStdString() +
                  "/\xe6\xb5\xb7 \xc3\xa4%1\\nb.prt: line 1, column 2: found \"# Corvane protocol, "
                  "vers...\", expected JSON (illegal value)");
}

TEST(Writers, RefuseATargetThatIsAFolderOrBelowAFile)
{
    const TemporaryFolder folder;
    putBytes(folder.path("file"), "kept");
    for (const Writer &writer : writers()) {
        EXPECT_EQ(errorOf([&] { writer.write(folder.path()); }),
                  folder.path().toStdString() +
                      ": writing: found a folder, expected a place where a file can be written");
        const QString below = folder.path("file/") + QString::fromLatin1(writer.name);
        EXPECT_EQ(errorOf([&] { writer.write(below); }),
                  below.toStdString() +
                      ": writing: found Not a directory, expected a place where a file can be "
                      "written");
        EXPECT_NE(errorOf([&] { writer.write(folder.path("none/a.vmr")); }), "no error");
        EXPECT_NE(errorOf([&] { writer.write(QString()); }), "no error");
    }
    EXPECT_EQ(folder.entries(), QStringList{QStringLiteral("file")});
    EXPECT_EQ(bytesOf(folder.path("file")), "kept");
}

TEST(Writers, SayThatAFolderMayNotBeWritten)
{
    const TemporaryFolder folder;
    const QByteArray path = folder.path().toUtf8();
    ASSERT_EQ(chmod(path.constData(), 0555), 0);
    for (const Writer &writer : writers()) {
        EXPECT_EXIT(reportAsNobody([&] { writer.write(folder.path(writer.name)); }),
                    testing::ExitedWithCode(1),
                    testing::HasSubstr(": writing: found Permission denied, expected a place where "
                                       "a file can be written"));
    }
    EXPECT_TRUE(folder.entries().isEmpty());
    ASSERT_EQ(chmod(path.constData(), 0755), 0); // so that it can be removed
}

/// In a folder like /tmp only its owner may replace a file: found before the first of the set is.
TEST(Writers, SayThatOneFileOfASetIsAnothersAndReplaceNone)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make files of two users";
    const TemporaryFolder folder;
    ASSERT_EQ(chmod(folder.path().toUtf8().constData(), 01777), 0);
    putBytes(folder.path("b"), "root's");
    EXPECT_EXIT(reportAsNobody([&] {
                    OutputFolder output(folder.path(), QStringLiteral("test"));
                    writeFile(output.path(QStringLiteral("a")), "new");
                    writeFile(output.path(QStringLiteral("b")), "new");
                    (void)output.commit();
                }),
                testing::ExitedWithCode(1),
                testing::HasSubstr("b: writing: found Operation not permitted, expected a file "
                                   "that can be replaced"));
    EXPECT_EQ(folder.entries(), QStringList{QStringLiteral("b")});
    EXPECT_EQ(bytesOf(folder.path("b")), "root's");
}

TEST(Writers, LeaveNothingOnAFullDisk)
{
    const TemporaryFolder folder;
    for (const Writer &writer : largeWriters()) {
        EXPECT_EXIT(reportOnAFullDisk([&] { writer.write(folder.path(writer.name)); }),
                    testing::ExitedWithCode(1), testing::HasSubstr("found File too large"));
        EXPECT_EQ(folder.entries(), QStringList()) << writer.name;
    }
}

TEST(Writers, LeaveTheOlderFileOnAFullDisk)
{
    const TemporaryFolder folder;
    for (const Writer &writer : largeWriters()) {
        const QString path = folder.path(writer.name);
        putBytes(path, "older");
        EXPECT_EXIT(reportOnAFullDisk([&] { writer.write(path); }), testing::ExitedWithCode(1),
                    testing::HasSubstr(path.toStdString()));
        EXPECT_EQ(bytesOf(path), "older");
    }
    EXPECT_EQ(folder.entries().size(), 4);
}

TEST(Writers, ReplaceAnOlderFileAsAWhole)
{
    const TemporaryFolder folder;
    for (const Writer &writer : writers()) {
        const QString path = folder.path(writer.name);
        putBytes(path, "older");
        writer.write(path);
        EXPECT_NE(bytesOf(path), "older");
    }
    EXPECT_EQ(folder.entries().size(), 3);
}

TEST(OutputFile, IsThereOnlyAfterItsCommit)
{
    const TemporaryFolder folder;
    {
        OutputFile file(folder.path("dropped"));
        file.write("abc");
        EXPECT_FALSE(QFileInfo::exists(folder.path("dropped")));
    }
    EXPECT_TRUE(folder.entries().isEmpty());
    OutputFile file(folder.path("kept"));
    file.write("abc");
    file.write("def", 2);
    file.commit();
    EXPECT_EQ(bytesOf(folder.path("kept")), "abcde");
}

TEST(InputFile, GivesItsBytes)
{
    const TemporaryFolder folder;
    putBytes(folder.path("some"), "abc");
    const InputFile some(folder.path("some"));
    EXPECT_EQ(some.size(), 3);
    EXPECT_EQ(some.head(2), "ab");
    EXPECT_EQ(some.head(99), "abc");
    EXPECT_EQ(some.all(3), "abc");
    EXPECT_EQ(errorOf([&] { some.all(2); }),
              folder.path("some").toStdString() + ": content: found 3 bytes, expected at most 2");
    putBytes(folder.path("none"), "");
    const InputFile none(folder.path("none"));
    EXPECT_EQ(none.size(), 0);
    EXPECT_TRUE(none.head(5).isEmpty());
}

TEST(InputFile, SaysThatItsBytesAreGone)
{
    const TemporaryFolder folder;
    putBytes(folder.path("some"), QByteArray(9000, 'x'));
    const InputFile some(folder.path("some"));
    ASSERT_TRUE(QFile::resize(folder.path("some"), 10));
    EXPECT_EQ(some.head(10), QByteArray(10, 'x'));
    EXPECT_EQ(errorOf([&] { some.head(9000); }),
              folder.path("some").toStdString() +
                  ": reading: found 10 bytes: it became shorter while it was open, expected 9000 "
                  "bytes");
}

TEST(Printable, KeepsEveryTextInOneLine)
{
    const auto text = [](const QString &raw, int longest = 80) {
        return printable(raw, longest).toStdString();
    };
    EXPECT_EQ(text(QString::fromUtf8("gr\xc3\xb6\xc3\x9f"
                                     "er \xf0\x9f\xa7\xa0")),
              "gr\xc3\xb6\xc3\x9f"
              "er \xf0\x9f\xa7\xa0");
    EXPECT_EQ(text(QStringLiteral("a\nb\r\tc\x1b[31m\x7f")), "a\\nb\\r\\tc\\x1b[31m\\x7f");
    EXPECT_EQ(text(QString(QChar(0x2028)) + QChar(0x85)), "\\x2028\\x85");
    EXPECT_EQ(text(QString(QChar(0xdc00)) + QChar(0xd800)), "\\xdc00\\xd800");
    EXPECT_EQ(text(QStringLiteral("abcdef"), 3), "abc...");
    EXPECT_EQ(text(QStringLiteral("abc"), 3), "abc");
    // Never between the halves of a character.
    EXPECT_EQ(text(QString::fromUtf8("ab\xf0\x9f\xa7\xa0"
                                     "c"),
                   3),
              "ab\xf0\x9f\xa7\xa0...");
}

TEST(Printable, ShowsBytesThatAreNoText)
{
    const auto text = [](const QByteArray &raw, int longest = 80) {
        return printable(raw, longest).toStdString();
    };
    EXPECT_EQ(text("\xc3\xa4\xff\xc3"
                   "b\xe2\x82"),
              "\xc3\xa4\\xff\\xc3b\\xe2\\x82");
    EXPECT_EQ(text(QByteArray("a\0b", 3)), "a\\x00b");
    EXPECT_EQ(text("\xf0\x9f\xa7\xa0"), "\xf0\x9f\xa7\xa0");
    EXPECT_EQ(text(QByteArray(100, 'x'), 5), "xxxxx...");
    EXPECT_EQ(quoted(QByteArray("a\n")).toStdString(), "\"a\\n\"");
}

TEST(InputError, IsOneLineWhateverThePathHolds)
{
    const InputError error(QStringLiteral("a%2\nb"), QStringLiteral("%3"), QStringLiteral("%4"),
                           QStringLiteral("%1"));
    EXPECT_STREQ(error.what(), "a%2\\nb: %3: found %4, expected %1");
}

TEST(TextCheck, TakesWholeNumbersLiterally)
{
    const auto number = [](const char *text) { return wholeNumber(QString::fromUtf8(text)); };
    EXPECT_EQ(number("0"), 0);
    EXPECT_EQ(number("-12"), -12);
    EXPECT_EQ(number("9223372036854775807"), 9223372036854775807);
    for (const char *text : {"", "-", "+1", " 1", "1 ", "1.0", "1e3", "0x10", "--1", "1-",
                             "9223372036854775808", "\xd9\xa1"})
        EXPECT_FALSE(number(text)) << text;
}

TEST(TextCheck, TakesFiniteNumbersOnly)
{
    const auto number = [](const char *text) { return finiteNumber(QString::fromUtf8(text)); };
    EXPECT_EQ(number("0.72"), 0.72);
    EXPECT_EQ(number("-1e-3"), -1e-3);
    for (const char *text : {"", "nan", "inf", "-inf", "1e999", "1,5", "1 ", " 1", "0x1p3", "x"})
        EXPECT_FALSE(number(text)) << text;
}

TEST(TextCheck, WritesNumbersForPeople)
{
    const auto text = [](double number, int decimals) {
        return readableNumber(number, decimals).toStdString();
    };
    EXPECT_EQ(text(0, 1), "0.0");
    EXPECT_EQ(text(-12.34, 1), "-12.3");
    EXPECT_EQ(text(250, 0), "250");
    EXPECT_EQ(text(9999999, 1), "9999999.0");
    EXPECT_EQ(text(1e7, 1), "1e7");
    EXPECT_EQ(text(-123456789, 0), "-1.23e8");
    EXPECT_EQ(text(11500000173045858521581921832960.0, 1), "1.15e31");
    EXPECT_EQ(text(1e300, 1), "1e300");
    EXPECT_EQ(text(std::numeric_limits<double>::quiet_NaN(), 1), "nan");
    EXPECT_EQ(text(-std::numeric_limits<double>::infinity(), 1), "-inf");
}

TEST(TextCheck, KnowsUtf8)
{
    EXPECT_EQ(fromStrictUtf8("gr\xc3\xbc\xc3\x9f"
                             "e"),
              QString::fromUtf8("gr\xc3\xbc\xc3\x9f"
                                "e"));
    EXPECT_EQ(fromStrictUtf8(""), QString());
    for (const char *bytes :
         {"\xff", "\xc3", "\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "a\xe2\x82", "\x80"})
        EXPECT_FALSE(fromStrictUtf8(bytes)) << bytes;
}

} // namespace corvane
