// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program from outside: exit status, what goes where, and errors as one line. The subcommands
// of the test program (test_commands.cpp) fail in every way there is.
#include "host/session/host_version.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/interrupted_program.h"

#include <QProcess>
#include <QRegularExpression>
#include <gmock/gmock.h>
#include <set>

namespace corvane
{

namespace
{

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
};

Outcome
runProgram(const QString &program, const QStringList &arguments,
           const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
}

Outcome corvane(const QStringList &arguments)
{
    return runProgram(QStringLiteral(CORVANE_PROGRAM), arguments);
}

/// The program in a folder, with arguments as the shell understands them.
Outcome inShell(const QString &folder, const QString &words)
{
    return runProgram(QStringLiteral("/bin/bash"),
                      {QStringLiteral("-c"), QStringLiteral("cd \"$2\" && exec \"$1\" ") + words,
                       QStringLiteral("bash"), QStringLiteral(CORVANE_PROGRAM), folder});
}

/// The program with the commands of the tests.
Outcome testCommand(const QStringList &arguments)
{
    return runProgram(QStringLiteral(TEST_COMMANDS_PROGRAM), arguments);
}

void expectOneLine(const std::string &text)
{
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(text.find('\n'), text.size() - 1) << text;
}

} // namespace

TEST(CommandLine, WithoutWindowsAndWithoutACommandTellsTheUsage)
{
    const Outcome run = testCommand({});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, StartsWith("Usage:\n"));
}

TEST(CommandLine, SaysInOneLineThatThereIsNoDisplay)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(variable));
    for (const QStringList &arguments :
         {QStringList(), QStringList(QStringLiteral("head.nii.gz")),
          QStringList({QStringLiteral("--plugins"), QStringLiteral("/nowhere")})}) {
        const Outcome run = runProgram(QStringLiteral(CORVANE_PROGRAM), arguments, environment);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, StartsWith("Corvane: there is no display"));
        expectOneLine(run.err);
    }
}

TEST(CommandLine, RefusesUnknownOptionsOfTheWorkbench)
{
    const Outcome run = corvane({QStringLiteral("head.vmr"), QStringLiteral("--frobnicate")});
    EXPECT_EQ(run.status, 2);
    // Windows may have something of their own to say before.
    EXPECT_THAT(run.err, EndsWith("Corvane: Unknown option 'frobnicate'.\n"));
}

TEST(CommandLine, HelpIsNoError)
{
    for (const char *option : {"--help", "-h"}) {
        const Outcome run = corvane({QString::fromLatin1(option)});
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err, "");
        EXPECT_THAT(run.out, StartsWith("Usage:\n"));
        EXPECT_THAT(run.out, HasSubstr("Exit status: 0 done, 1 the input is bad, 2 wrong usage."));
    }
}

TEST(CommandLine, TellsItsVersion)
{
    const Outcome run = corvane({QStringLiteral("--version")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "Corvane " + std::to_string(hostVersion[0]) + "." +
                           std::to_string(hostVersion[1]) + "." + std::to_string(hostVersion[2]) +
                           " (Tessera " TESSERA_VERSION ")\n");
}

TEST(CommandLine, RefusesWhatIsNoCommand)
{
    for (const char *command : {"frobnicate", "--frobnicate", "", "a\nb"}) {
        const Outcome run = corvane({QString::fromLatin1(command)});
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, StartsWith("Corvane: unknown command \""));
        expectOneLine(run.err);
    }
}

TEST(CommandLine, HelpsWithACommand)
{
    const Outcome run = testCommand({QStringLiteral("graph"), QStringLiteral("--help")});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, StartsWith("Usage:\n  Corvane graph MATRIX.csv --out DIR\n\n"));
    EXPECT_THAT(run.out, HasSubstr("--out <DIR>"));
    EXPECT_THAT(run.out, testing::Not(HasSubstr("--help-all")));
    EXPECT_EQ(run.err, "");
}

TEST(CommandLine, RefusesWrongUsageOfACommand)
{
    const QString graph = QStringLiteral("graph");
    const QString out = QStringLiteral("--out");
    const struct {
        QStringList arguments;
        std::string says;
    } rows[] = {
        {{graph}, "Corvane graph: MATRIX.csv is missing\n"},
        {{graph, QStringLiteral("m"), QStringLiteral("n")},
         "Corvane graph: unexpected argument \"n\"\n"},
        {{graph, QStringLiteral("m")}, "Corvane graph: --out is missing\n"},
        {{graph, QStringLiteral("m"), out, QString()}, "Corvane graph: --out is missing\n"},
        {{graph, QStringLiteral("m"), out, QStringLiteral("a"), out, QStringLiteral("b")},
         "Corvane graph: --out is given twice\n"},
        {{graph, QStringLiteral("m"), QStringLiteral("--what")},
         "Corvane graph: Unknown option 'what'.\n"},
        {{graph, QStringLiteral("m"), out}, "Corvane graph: Missing value after '--out'.\n"},
    };
    for (const auto &row : rows) {
        const Outcome run = testCommand(row.arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, row.says);
    }
    const Outcome good = testCommand({graph, QStringLiteral("m"), out, QStringLiteral("a")});
    EXPECT_EQ(good.status, 0);
    EXPECT_EQ(good.out, "m to a\n");
}

/// It would become the name of another file.
TEST(CommandLine, RefusesArgumentsThatAreNotUtf8AndWritesNothing)
{
    const TemporaryFolder folder;
    putBytes(folder.path("m.csv"), "0,1\n1,0\n");
    for (const char *words :
         {"graph m.csv --out $'out\\xff'", "graph m.csv --out out $'--mst\\xff'", "$'m\\xff.vmr'",
          "graph m.csv --out $'\\xed\\xa0\\x80'"}) {
        const Outcome run = inShell(folder.path(), QString::fromLatin1(words));
        EXPECT_EQ(run.status, 2) << words;
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err,
                    testing::ContainsRegex("^Corvane: argument [0-9]: found \".*\\\\x.*\", "
                                           "expected UTF-8\n$"));
        EXPECT_EQ(folder.entries(), QStringList{QStringLiteral("m.csv")});
    }
    EXPECT_EQ(inShell(folder.path(), QStringLiteral("graph m.csv --out $'\\xc3\\xa4'")).status, 0);
    EXPECT_TRUE(QFile::exists(folder.path("\xc3\xa4/features.csv")));
}

/// Folders that are missing are made below it, not below one whose name is like it.
TEST(CommandLine, WritesBelowACurrentFolderWhoseNameIsNotUtf8)
{
    const TemporaryFolder folder;
    putBytes(folder.path("m.csv"), "0,1\n1,0\n");
    const Outcome run =
        runProgram(QStringLiteral("/bin/bash"),
                   {QStringLiteral("-c"),
                    QStringLiteral("cd \"$2\" && mkdir $'\\xff' && cd $'\\xff' && \"$1\" "
                                   "graph ../m.csv --out a/b && ls a/b && cd .. && "
                                   "rm -r $'\\xff'"),
                    QStringLiteral("bash"), QStringLiteral(CORVANE_PROGRAM), folder.path()});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "a/b: 2 nodes\nfeatures.csv\n");
    EXPECT_EQ(folder.entries(), QStringList{QStringLiteral("m.csv")});
}

TEST(CommandLine, RefusesAFolderWithoutAName)
{
    const Outcome run = corvane({QStringLiteral("example"), QString()});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err,
              "Corvane: (no folder): output folder: found an empty path, expected a folder "
              "that can be written to\n");
}

/// Of two values only one would count.
TEST(CommandLine, RefusesAnOptionThatIsGivenTwice)
{
    const struct {
        const char *command; ///< empty for the workbench
        QStringList withValue;
        QStringList flags;
    } rows[] = {
        {"import",
         {"anatomy", "functional", "events", "resolution", "tr", "voi-grid", "name", "out"},
         {}},
        {"compute",
         {"anatomy", "vtc", "voi", "prt", "seeds", "measure", "values", "out"},
         {"use-protocol", "no-mst", "plots"}},
        {"graph", {"out"}, {"mst"}},
        {"tour", {"plugins", "out"}, {}},
        {"", {"plugins", "start"}, {}},
    };
    for (const auto &row : rows) {
        const QString command = QString::fromLatin1(row.command);
        const std::string sayer =
            command.isEmpty() ? "Corvane: " : "Corvane " + command.toStdString() + ": ";
        for (const QString &option : row.withValue + row.flags) {
            const QString given = QStringLiteral("--") + option;
            const bool hasValue = row.withValue.contains(option);
            QStringList once{given};
            if (hasValue)
                once += QStringLiteral("1");
            const QStringList start = command.isEmpty() ? QStringList() : QStringList(command);
            const Outcome run = corvane(start + once + once);
            EXPECT_EQ(run.status, 2) << option.toStdString();
            EXPECT_EQ(run.out, "");
            EXPECT_THAT(run.err, EndsWith(sayer + given.toStdString() + " is given twice\n"));
        }
    }
}

TEST(CommandLine, EndsWithOneLineWhateverIsThrown)
{
    const struct {
        const char *way;
        std::string says;
    } rows[] = {
        {"input error", "Corvane: a%1\\nb.vtc: line 3: found \"x\", expected \"y\"\n"},
        {"bad_alloc", "Corvane: there is not enough memory for this\n"},
        {"bad_alloc where nothing may be thrown", "Corvane: there is not enough memory for this\n"},
        {"no thread", "Corvane: the system gives no further thread for this\n"},
        {"lines", "Corvane: first\\nsecond\n"},
        {"number", "Corvane: an error that does not say what it is\n"},
        {"long", "Corvane: " + std::string(8192, 'x') + "...\n"},
    };
    for (const auto &row : rows) {
        const Outcome run = testCommand({QStringLiteral("example"), QString::fromLatin1(row.way)});
        EXPECT_EQ(run.status, 1) << row.way;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, row.says);
    }
}

TEST(CommandLine, TakesPathsAsUtf8InEveryLocale)
{
    const TemporaryFolder folder;
    const QString path = folder.path("L\xc3\xa4ufe \xe6\xb5\xb7.prt");
    writePrtFile(path, smallPrt());
    for (const char *locale : {"C", "POSIX", "C.UTF-8", "none.ISO-8859-1"}) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LC_ALL"), QString::fromLatin1(locale));
        const Outcome run = runProgram(QStringLiteral(TEST_COMMANDS_PROGRAM),
                                       {QStringLiteral("compute"), path}, environment);
        EXPECT_EQ(run.status, 0) << locale << run.err;
        EXPECT_EQ(run.out, "Bl\xc3\xb6"
                           "cke\n");

        const Outcome missing =
            runProgram(QStringLiteral(TEST_COMMANDS_PROGRAM),
                       {QStringLiteral("compute"), path + QStringLiteral("\xe4")}, environment);
        EXPECT_EQ(missing.status, 1);
        EXPECT_THAT(missing.err, StartsWith("Corvane: " + path.toStdString()));
        EXPECT_THAT(missing.err, HasSubstr("found No such file or directory"));
        expectOneLine(missing.err);
    }
}

TEST(CommandLine, SaysThatTheDiskIsFull)
{
    const TemporaryFolder folder;
    // The signal that a file beyond its limit raises must not end the program.
    const Outcome run = runProgram(
        QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"), QStringLiteral("ulimit -f 8; exec \"$@\""), QStringLiteral("sh"),
         QStringLiteral(TEST_COMMANDS_PROGRAM), QStringLiteral("import"), folder.path("a.vmr")});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, StartsWith("Corvane: " + folder.path("a.vmr").toStdString() +
                                    ": writing: found File too large, expected room for "));
    expectOneLine(run.err);
    EXPECT_TRUE(folder.entries().isEmpty());
}

TEST(CommandLine, ShowsNoProgressWithoutATerminal)
{
    const TemporaryFolder folder;
    const Outcome run = testCommand({QStringLiteral("import"), folder.path("a.vmr")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(folder.entries(), QStringList{QStringLiteral("a.vmr")});
}

TEST(CommandLine, ShowsProgressOnATerminal)
{
    const TemporaryFolder folder;
    const QString command = QStringLiteral("'%1' import '%2'")
                                .arg(QStringLiteral(TEST_COMMANDS_PROGRAM), folder.path("a.vmr"));
    // script gives the program a terminal and passes on what it writes there.
    const Outcome run = runProgram(QStringLiteral("script"),
                                   {QStringLiteral("-qec"), command, QStringLiteral("/dev/null")});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, HasSubstr("\r\x1b[Kwriting 50 %"));
    EXPECT_TRUE(QString::fromStdString(run.out).endsWith(QStringLiteral("\r\x1b[K"))) << run.out;
}

/// A signal as soon as hundreds of files are in work in a folder.
Interruption atWorkIn(const QString &folder, int signal, int files = 500)
{
    return {signal, [=] { return isInWork(folder, QString::number(files)); }};
}

InterruptedRun interruptedAtWork(const QString &folder, int signal, const QStringList &more = {})
{
    return runInterrupted(QStringLiteral(TEST_COMMANDS_PROGRAM),
                          QStringList{QStringLiteral("tour"), folder} + more,
                          {atWorkIn(folder, signal)});
}

TEST(Signals, ClearAwayWhatIsInWorkAndEndTheProgramByThemselves)
{
    const TemporaryFolder folder;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        for (const QStringList &more : {QStringList(), QStringList(QStringLiteral("thread")),
                                        QStringList(QStringLiteral("late"))}) {
            const InterruptedRun run = interruptedAtWork(folder.path("new/deep"), signal, more);
            EXPECT_EQ(run.signal, signal);
            EXPECT_EQ(run.output, "");
            // What goes wrong because it is cleared away is no error of the input.
            EXPECT_EQ(run.errors, "");
            EXPECT_TRUE(folder.entries().isEmpty()) << signal;
        }
    }
    putBytes(folder.path("mine"), "mine");
    EXPECT_EQ(interruptedAtWork(folder.path(), SIGTERM).signal, SIGTERM);
    EXPECT_EQ(folder.entries(), QStringList{QStringLiteral("mine")});
}

TEST(Signals, LeaveNothingForTheNextCommandToTake)
{
    const TemporaryFolder folder;
    EXPECT_EQ(interruptedAtWork(folder.path(), SIGKILL).signal, SIGKILL);
    EXPECT_EQ(hiddenIn(folder.path()).size(), 1);
    putBytes(folder.path("m.csv"), "0,1\n1,0\n");
    const Outcome run = corvane(
        {QStringLiteral("graph"), folder.path("m.csv"), QStringLiteral("--out"), folder.path()});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(folder.entries(),
              (QStringList{QStringLiteral("features.csv"), QStringLiteral("m.csv")}));
}

TEST(Signals, StayIgnoredWhereTheyWere)
{
    const TemporaryFolder folder;
    const InterruptedRun run = runInterrupted(
        QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"), QStringLiteral("trap '' HUP; exec \"$@\""), QStringLiteral("sh"),
         QStringLiteral(TEST_COMMANDS_PROGRAM), QStringLiteral("tour"), folder.path()},
        {atWorkIn(folder.path(), SIGHUP), atWorkIn(folder.path(), SIGTERM, 3000)});
    EXPECT_EQ(run.signal, SIGTERM);
}

TEST(Exports, AreExactlyTheFunctionsForPlugins)
{
    std::set<std::string> wanted;
#define HOST_CALL(result, name, arguments) wanted.insert(#name);
#define HOST_NAME(name)
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
    EXPECT_EQ(wanted.size(), 21U);

    const Outcome run =
        runProgram(QStringLiteral(NM_PROGRAM),
                   {QStringLiteral("-D"), QStringLiteral("--extern-only"),
                    QStringLiteral("--defined-only"), QStringLiteral(CORVANE_PROGRAM)});
    ASSERT_EQ(run.status, 0) << run.err;
    std::set<std::string> exported;
    for (const QString &line :
         QString::fromStdString(run.out).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QStringList words = line.simplified().split(QLatin1Char(' '));
        EXPECT_EQ(words.value(1), QStringLiteral("T")) << line.toStdString();
        exported.insert(words.last().toStdString());
    }
    EXPECT_EQ(exported, wanted);
}

} // namespace corvane
