// SPDX-License-Identifier: GPL-3.0-or-later
//
// From the settings file of a user to the log and the dumps of what the main dialog does.
#include "dataset/plugin_settings.h"
#include "tests/support/dataset_fixture.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace
{

/// A home folder of its own, and the process's message handler back at the end.
class Diagnostics : public DatasetFixture
{
protected:
    Diagnostics() : homeBefore(qgetenv("HOME")), handlerBefore(qInstallMessageHandler(nullptr))
    {
        qInstallMessageHandler(handlerBefore);
        qputenv("HOME", QFile::encodeName(home.path()));
    }
    ~Diagnostics() override
    {
        closeDialog();
        qInstallMessageHandler(handlerBefore);
        qputenv("HOME", homeBefore);
        PluginSettings::instance()->verboseLogging = false;
        PluginSettings::instance()->dumpAll = false;
    }

    /// Switches both diagnostics on or off, in files of the home folder.
    void writeSettings(bool on) const
    {
        const QString settings = home.filePath("Documents/CVExtensions/Plugins_64");
        ASSERT_TRUE(QDir().mkpath(settings));
        QFile file(settings + "/tessera_plugin.ini");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        const QByteArray answer = on ? "true" : "false";
        const QByteArray place = QFile::encodeName(home.path());
        file.write("[plugin]\nverbose_logging=" + answer + "\nlog_dir=" + place +
                   "\n[nodalis]\ndump_all=" + answer + "\ndump_output_dir=" + place + "\n");
    }

    QStringList log() const
    {
        QFile file(home.filePath("log_" + loadStamp + ".txt"));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
    }
    QStringList dumps() const
    {
        return QDir(home.filePath("dump_" + loadStamp)).entryList(QDir::Files, QDir::Name);
    }
    void computeReadyRow()
    {
        addReadyRow();
        computeRow(0, {0, 1, 2});
    }

    const QTemporaryDir home;
    const QByteArray homeBefore;
    const QtMessageHandler handlerBefore;
};

TEST_F(Diagnostics, WithoutSettingsNothingIsWritten)
{
    computeReadyRow();
    EXPECT_TRUE(QDir(home.path()).isEmpty());
}

TEST_F(Diagnostics, TheLogTellsWhatWasClicked)
{
    writeSettings(true);
    computeReadyRow();
    const QStringList lines = log();
    EXPECT_EQ(lines.value(0), "void __cdecl Tessera::addSubject(bool) \t\t\t (:0, )");
    EXPECT_TRUE(lines.contains("Selected VTC: " + folder.filePath("run.vtc") + " \t\t\t (:0, )"));
    EXPECT_TRUE(lines.contains("Selected vois: 3 \t\t\t (:0, )"));
}

TEST_F(Diagnostics, TheFirstDialogDumpsAndEveryDialogLogs)
{
    const QStringList all = {"connectivity_ts.csv", "correlation_mtx_0.csv",
                             "correlation_mtx_0_mst.csv", "correlation_mtx_0_treatment_pass_1.csv",
                             "correlation_mtx_0_treatment_pass_2.csv"};
    writeSettings(true);
    computeReadyRow();
    EXPECT_EQ(dumps(), all);
    const QStringList lines = log();
    closeDialog();

    for (const QString &name : all)
        QFile::remove(home.filePath("dump_" + loadStamp + '/' + name));
    computeReadyRow();
    EXPECT_EQ(dumps(), QStringList()) << "the folder was there already";
    EXPECT_EQ(log().mid(0, lines.size()), lines);
    EXPECT_EQ(log().count("void __cdecl Tessera::addSubject(bool) \t\t\t (:0, )"), 2);
}

TEST_F(Diagnostics, TheFileIsReadAnewForEachDialog)
{
    dialog();
    EXPECT_FALSE(PluginSettings::instance()->verboseLogging);
    writeSettings(true);
    EXPECT_FALSE(PluginSettings::instance()->verboseLogging) << "not before the next dialog";
    closeDialog();
    dialog();
    EXPECT_TRUE(PluginSettings::instance()->verboseLogging);
    EXPECT_TRUE(PluginSettings::instance()->dumpAll);
    closeDialog();
    writeSettings(false);
    dialog();
    EXPECT_FALSE(PluginSettings::instance()->verboseLogging);
    EXPECT_FALSE(PluginSettings::instance()->dumpAll);
}

} // namespace
