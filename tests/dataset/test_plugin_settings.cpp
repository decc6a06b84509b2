// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/message_handler.h"
#include "dataset/plugin_settings.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <unistd.h>

namespace
{

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

    QString iniPath() const
    {
        return home.filePath("Documents/CVExtensions/Plugins_64/tessera_plugin.ini");
    }

    void writeIni(const QByteArray &text) const
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(iniPath()).path()));
        QFile file(iniPath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

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
    const bool wasRoot = geteuid() == 0; // who reads everything
    if (wasRoot) {
        ASSERT_EQ(setresuid(65534, 65534, 0), 0);
    }
    QTemporaryDir ownHome;
    ASSERT_TRUE(ownHome.isValid());
    qputenv("HOME", QFile::encodeName(ownHome.path()));
    const QString path = ownHome.filePath("Documents/CVExtensions/Plugins_64/tessera_plugin.ini");
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[plugin]\nverbose_logging=true\nlog_dir=" + QFile::encodeName(ownHome.path()));
    file.close();
    ASSERT_TRUE(file.setPermissions({}));
    settings().read();
    EXPECT_FALSE(settings().verboseLogging);
    EXPECT_EQ(settings().logDir, QStandardPaths::displayName(QStandardPaths::TempLocation));
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    if (wasRoot) {
        ASSERT_EQ(setresuid(0, 0, 0), 0);
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

TEST_F(Settings, HandlerWithoutWritableFileWritesNothing)
{
    logFilePath = home.filePath("missing/log.txt");
    writeMessageToLogFile(QtDebugMsg, QMessageLogContext(), "lost");
    EXPECT_FALSE(QFileInfo::exists(logFilePath));
}

TEST_F(Settings, HandlerNamesTheContextWhenThereIsOne)
{
    logFilePath = home.filePath("log.txt");
    writeMessageToLogFile(QtDebugMsg, QMessageLogContext("file.cpp", 12, "run()", "default"), "a");
    writeMessageToLogFile(QtInfoMsg, QMessageLogContext("file.cpp", 13, "run()", "default"), "b");
    EXPECT_EQ(contents(logFilePath),
              "a \t\t\t (file.cpp:12, run())\nInfo: b (file.cpp:13, run())\n");
}

} // namespace
