// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/message_handler.h"
#include "dataset/plugin_settings.h"
#include "tests/support/other_user.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

bool messageAtTheVeryEnd = false;

/// Runs when every static object is gone: what is registered first comes last.
__attribute__((constructor(101))) void registerLastMessage()
{
    std::atexit([] {
        if (messageAtTheVeryEnd)
            qInfo("the last");
    });
}

/// A home folder of its own, and the process's message handler back at the end.
class Settings : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(home.isValid());
        qputenv("HOME", QFile::encodeName(home.path()));
        before = qInstallMessageHandler(nullptr);
        qInstallMessageHandler(before);
    }
    void TearDown() override
    {
        qInstallMessageHandler(before);
        settings().verboseLogging = false;
        settings().dumpAll = false;
    }

    static PluginSettings &settings() { return *PluginSettings::instance(); }

    static QString iniPath(const QTemporaryDir &homeFolder)
    {
        return homeFolder.filePath("Documents/CVExtensions/Plugins_64/tessera_plugin.ini");
    }
    QString iniPath() const { return iniPath(home); }

    /// Writes the file into a home folder, which becomes the one of the process.
    static void writeIni(const QTemporaryDir &homeFolder, const QByteArray &text)
    {
        qputenv("HOME", QFile::encodeName(homeFolder.path()));
        ASSERT_TRUE(QDir().mkpath(QFileInfo(iniPath(homeFolder)).path()));
        QFile file(iniPath(homeFolder));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    void writeIni(const QByteArray &text) const { writeIni(home, text); }

    bool handlerIsInstalled() const
    {
        const QtMessageHandler now = qInstallMessageHandler(nullptr);
        qInstallMessageHandler(now);
        return now == writeMessageToLogFile;
    }

    QString wantedLog() const { return home.filePath("log_" + loadStamp + ".txt"); }
    QString wantedDump() const { return home.filePath("dump_" + loadStamp); }

    static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }

    QTemporaryDir home;
    QtMessageHandler before = nullptr;
};

TEST_F(Settings, WithoutFileEverythingIsOff)
{
    settings().read();
    const QString unset = QStandardPaths::displayName(QStandardPaths::TempLocation);
    EXPECT_FALSE(settings().verboseLogging);
    EXPECT_FALSE(settings().dumpAll);
    EXPECT_FALSE(settings().messageHandlerInstalled);
    EXPECT_EQ(settings().dumpFolder, unset);
    EXPECT_EQ(settings().logDir, unset);
    EXPECT_EQ(settings().dumpOutputDir, unset);
    EXPECT_FALSE(handlerIsInstalled());
}

TEST_F(Settings, FileWithoutKeysIsAllOff)
{
    writeIni("[other]\nkey=1\n");
    settings().read();
    EXPECT_FALSE(settings().verboseLogging);
    EXPECT_FALSE(settings().dumpAll);
    EXPECT_TRUE(settings().logDir.isEmpty());
    EXPECT_TRUE(settings().dumpOutputDir.isEmpty());
}

TEST_F(Settings, UnreadableFileIsAsNone)
{
    const OtherUser nobody; // root reads everything
    const QTemporaryDir ownHome;
    writeIni(ownHome,
             "[plugin]\nverbose_logging=true\nlog_dir=" + QFile::encodeName(ownHome.path()));
    ASSERT_TRUE(QFile::setPermissions(iniPath(ownHome), {}));
    settings().read();
    EXPECT_FALSE(settings().verboseLogging);
    EXPECT_EQ(settings().logDir, QStandardPaths::displayName(QStandardPaths::TempLocation));
}

TEST_F(Settings, FolderThatMayNotBeWrittenTurnsItsDiagnosticOff)
{
    const QString folder = home.path();
    ASSERT_TRUE(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner |
                                                  QFile::ReadOther | QFile::ExeOther));
    {
        const OtherUser nobody; // root writes everywhere
        const QTemporaryDir ownHome;
        writeIni(ownHome, "[plugin]\nverbose_logging=true\nlog_dir=" + QFile::encodeName(folder) +
                              "\n[nodalis]\ndump_all=true\ndump_output_dir=" +
                              QFile::encodeName(folder) + "\n");
        settings().read();
    }
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    EXPECT_EQ(settings().logDir, folder) << "the file was read";
    EXPECT_FALSE(settings().verboseLogging);
    EXPECT_FALSE(settings().dumpAll);
    EXPECT_FALSE(handlerIsInstalled());
    EXPECT_FALSE(QFileInfo::exists(wantedDump()));
}

/// As the user's guide tells; each wrong way leads to another folder, or to none.
TEST_F(Settings, PathsAreWrittenWithSlashesInQuotesAndLatin1)
{
    const std::pair<const char *, QString> paths[] = {
        {"/home/me/logs", "/home/me/logs"},
        {"C:/logs", "C:/logs"},
        {"C:/my logs", "C:/my logs"},
        {"\"C:/logs, old\"", "C:/logs, old"},
        {"C:/logs, old", ""},
        {"C:\\logs", "C:ogs"},
        {"C:\\new", "C:\new"},
        {"C:\\\\logs", "C:\\logs"},
        {"C:/Gr\xf6\xdf"
         "e",
         QString::fromUtf8("C:/Größe")},
        {"C:/Größe", QString::fromLatin1("C:/Größe")},
        {"\"C:/a;b\"", "C:/a;b"},
        {"C:/a;b", "C:/a"},
    };
    for (const auto &[written, read] : paths) {
        const QTemporaryDir ownHome; // a file written again within a second may not be read again
        writeIni(ownHome, QByteArray("[plugin]\nlog_dir=") + written +
                              "\n[nodalis]\ndump_output_dir=" + written + "\n");
        settings().read();
        EXPECT_EQ(settings().logDir.toStdString(), read.toStdString()) << written;
        EXPECT_EQ(settings().dumpOutputDir.toStdString(), read.toStdString()) << written;
    }
}

TEST_F(Settings, VerboseLoggingWithoutFolderIsOff)
{
    for (const char *folder : {"", "log_dir=\n", "log_dir=/no/such/folder\n"}) {
        writeIni(QByteArray("[plugin]\nverbose_logging=true\n") + folder);
        settings().read();
        EXPECT_FALSE(settings().verboseLogging) << folder;
        EXPECT_FALSE(handlerIsInstalled()) << folder;
    }
}

TEST_F(Settings, VerboseLoggingWritesTheLogFile)
{
    writeIni("[plugin]\nverbose_logging=true\nlog_dir=" + QFile::encodeName(home.path()) + "\n");
    settings().read();
    EXPECT_TRUE(settings().verboseLogging);
    EXPECT_EQ(logFilePath, wantedLog());
    EXPECT_TRUE(handlerIsInstalled());
    EXPECT_FALSE(settings().messageHandlerInstalled); // nothing ever sets it
    qDebug().noquote() << "first %1 line";
    qInfo().noquote() << "second";
    qWarning("third");
    qCritical("fourth");
    EXPECT_EQ(contents(wantedLog()), "first %1 line \t\t\t (:0, )\nInfo: second (:0, )\n\n\n");
}

TEST_F(Settings, SecondReadContinuesTheLogAndEndsTheDumps)
{
    writeIni("[plugin]\nverbose_logging=true\nlog_dir=" + QFile::encodeName(home.path()) +
             "\n[nodalis]\ndump_all=true\ndump_output_dir=" + QFile::encodeName(home.path()) +
             "\n");
    settings().read();
    EXPECT_TRUE(settings().dumpAll);
    EXPECT_EQ(settings().dumpFolder, wantedDump());
    EXPECT_TRUE(QFileInfo(wantedDump()).isDir());
    qDebug("one");
    settings().read();
    EXPECT_FALSE(settings().dumpAll);
    EXPECT_TRUE(settings().verboseLogging);
    qDebug("two");
    EXPECT_EQ(contents(wantedLog()), "one \t\t\t (:0, )\ntwo \t\t\t (:0, )\n");
}

TEST_F(Settings, HandlerStaysInstalledWhenVerboseLoggingEnds)
{
    writeIni("[plugin]\nverbose_logging=true\nlog_dir=" + QFile::encodeName(home.path()) + "\n");
    settings().read();
    ASSERT_TRUE(QFile::remove(iniPath()));
    settings().read();
    EXPECT_FALSE(settings().verboseLogging);
    EXPECT_TRUE(handlerIsInstalled());
    qDebug("of the host"); // every message of the process goes there
    EXPECT_EQ(contents(wantedLog()), "of the host \t\t\t (:0, )\n");
}

TEST_F(Settings, HandlerStaysUsableWhileTheProcessEnds)
{
    const auto endWithMessage = [this] {
        logFilePath = home.filePath("log.txt");
        qInstallMessageHandler(writeMessageToLogFile);
        messageAtTheVeryEnd = true;
        std::exit(0);
    };
    EXPECT_EXIT(endWithMessage(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(contents(home.filePath("log.txt")), "Info: the last (:0, )\n");
}

TEST_F(Settings, DumpFolderThatExistsTurnsDumpingOff)
{
    ASSERT_TRUE(QDir().mkdir(wantedDump()));
    writeIni("[nodalis]\ndump_all=true\ndump_output_dir=" + QFile::encodeName(home.path()) + "\n");
    settings().read();
    EXPECT_FALSE(settings().dumpAll);
}

TEST_F(Settings, DumpFolderThatCannotBeMadeTurnsDumpingOff)
{
    QFile file(home.filePath("file"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    for (const QString &parent : {QString(), home.filePath("missing"), file.fileName()}) {
        writeIni("[nodalis]\ndump_all=true\ndump_output_dir=" + QFile::encodeName(parent) + "\n");
        settings().read();
        EXPECT_FALSE(settings().dumpAll) << parent.toStdString();
    }
}

TEST_F(Settings, FileIsNeverWritten)
{
    const QByteArray text = "[plugin]\nverbose_logging=false\n";
    writeIni(text);
    settings().read();
    EXPECT_EQ(contents(iniPath()), text);
}

TEST_F(Settings, StampIsDateAndTime)
{
    EXPECT_EQ(loadStamp.size(), 15);
    EXPECT_TRUE(QDateTime::fromString(loadStamp, "ddMMyyyy_hhmmss").isValid());
}

TEST_F(Settings, StampIsTheTimeOfLoadingInTheTimeZoneOfTheComputer)
{
    // Time zones without daylight saving: names of them, and how far they are ahead of UTC.
    const std::pair<const char *, int> zones[] = {
        {"UTC0", 0}, {"EAST-7:45", 7 * 3600 + 45 * 60}, {"WEST3:30", -(3 * 3600 + 30 * 60)}};
    for (const auto &[name, ahead] : zones) {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("TZ", name);
        program.setProcessEnvironment(environment);
        const qint64 earliest = QDateTime::currentSecsSinceEpoch();
        program.start(LOAD_STAMP_PROBE, QStringList());
        ASSERT_TRUE(program.waitForFinished());
        const qint64 latest = QDateTime::currentSecsSinceEpoch();
        QDateTime stamp =
            QDateTime::fromString(program.readAllStandardOutput().trimmed(), "ddMMyyyy_hhmmss");
        stamp.setOffsetFromUtc(ahead);
        EXPECT_GE(stamp.toSecsSinceEpoch(), earliest) << name;
        EXPECT_LE(stamp.toSecsSinceEpoch(), latest) << name;
    }
}

TEST_F(Settings, HandlerWithoutWritableFileWritesNothing)
{
    logFilePath = home.filePath("missing/log.txt");
    writeMessageToLogFile(QtDebugMsg, QMessageLogContext(), "lost");
    EXPECT_FALSE(QFileInfo::exists(logFilePath));
}

TEST_F(Settings, HandlerNamesTheContextOfDebugAndInfoMessagesAlone)
{
    logFilePath = home.filePath("log.txt");
    writeMessageToLogFile(QtDebugMsg, QMessageLogContext("file.cpp", 12, "run()", "default"), "a");
    writeMessageToLogFile(QtInfoMsg, QMessageLogContext("file.cpp", 13, "run()", "default"), "b");
    for (const QtMsgType type : {QtWarningMsg, QtCriticalMsg, QtFatalMsg})
        writeMessageToLogFile(type, QMessageLogContext("file.cpp", 14, "run()", "default"), "c");
    EXPECT_EQ(contents(logFilePath),
              "a \t\t\t (file.cpp:12, run())\nInfo: b (file.cpp:13, run())\n\n\n\n");
}

} // namespace
