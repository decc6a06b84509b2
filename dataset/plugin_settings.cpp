// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/plugin_settings.h"

#include "dataset/message_handler.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

const QString loadStamp = QDateTime::currentDateTime().toString(QStringLiteral("ddMMyyyy_hhmmss"));

PluginSettings *PluginSettings::instance()
{
    static auto *const settings = new PluginSettings;
    return settings;
}

void PluginSettings::read()
{
    reset();
    const QString path =
        QDir::homePath() + QStringLiteral("/Documents/CVExtensions/Plugins_64/tessera_plugin.ini");
    const QFileInfo file(path);
    if (!file.exists() || !file.isReadable())
        return;

    const QSettings ini(path, QSettings::IniFormat);
    verboseLogging = ini.value(QStringLiteral("plugin/verbose_logging")).toBool();
    logDir = ini.value(QStringLiteral("plugin/log_dir")).toString();
    dumpAll = ini.value(QStringLiteral("nodalis/dump_all")).toBool();
    dumpOutputDir = ini.value(QStringLiteral("nodalis/dump_output_dir")).toString();

    if (dumpAll)
        makeDumpFolder();
    if (verboseLogging)
        startLogging();
}

void PluginSettings::reset()
{
    // The location's display name, not a path: it only shows that there is no file.
    const QString unset = QStandardPaths::displayName(QStandardPaths::TempLocation);
    messageHandlerInstalled = false;
    verboseLogging = false;
    dumpAll = false;
    logDir = unset;
    dumpOutputDir = unset;
    dumpFolder = unset;
}

void PluginSettings::makeDumpFolder()
{
    dumpAll = false;
    if (!QFileInfo::exists(dumpOutputDir))
        return;

    // A second dialog of one load finds the folder of the first, and writes no dumps.
    const QString wanted = dumpOutputDir + QStringLiteral("/dump_") + loadStamp;
    if (QFileInfo::exists(wanted) || !QDir().mkdir(wanted))
        return;
    dumpFolder = wanted;
    dumpAll = true;
}

void PluginSettings::startLogging()
{
    const QFileInfo folder(logDir);
    if (!folder.exists() || !folder.isWritable()) {
        verboseLogging = false;
        return;
    }
    logFilePath =
        logDir + QStringLiteral("/") + QStringLiteral("log_") + loadStamp + QStringLiteral(".txt");
    if (!messageHandlerInstalled)
        qInstallMessageHandler(writeMessageToLogFile);
}
