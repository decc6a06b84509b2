// SPDX-License-Identifier: GPL-3.0-or-later
//
// A folder of libraries, most of which are no plugins or do not work. This program exports the
// host's functions, as the host does.
#include "host/session/host_functions.h"
#include "host/session/log.h"
#include "host/session/plugin_loader.h"
#include "tests/host/support/listened_session.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>
#include <QTemporaryDir>
#include <cstdio>
#include <gmock/gmock.h>
#include <sys/stat.h>

namespace corvane
{

namespace
{

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

class PluginLoader : public testing::Test, protected ListenedSession
{
protected:
    std::string faultOf(const QString &name)
    {
        try {
            Plugin plugin(QStringLiteral(PLUGIN_FOLDER "/") + name);
            plugin.start();
        } catch (const PluginError &error) {
            return error.what();
        }
        return "none";
    }
};

} // namespace

TEST_F(PluginLoader, ListsThePluginsOfAFolderAndSaysWhyTheOthersAreNone)
{
    const auto plugins = loadPlugins(QStringLiteral(PLUGIN_FOLDER));
    QStringList names;
    for (const auto &plugin : plugins) {
        names += plugin->name();
        EXPECT_EQ(plugin->author(), QStringLiteral("<i>The Testers</i>"));
        EXPECT_TRUE(QFileInfo(plugin->path()).isAbsolute());
    }
    EXPECT_EQ(names.join(QLatin1String(", ")).toStdString(),
              "Plugin & create gives none, Plugin & create throws, Plugin & execute fails, "
              "Plugin & execute throws, Plugin & none, Plugin & init throws, "
              "Plugin & init throws a number, Plugin & refuses, Plugin & refuses silently");
    EXPECT_THAT(
        log, ElementsAre(HasSubstr("author_is_none.so is no plugin: getAuthor gives no text."),
                         HasSubstr("empty_name.so is no plugin: its name is empty."),
                         HasSubstr("name_throws.so getPluginName failed: what name."),
                         HasSubstr("no_author.so is no plugin: it does not export getAuthor."),
                         HasSubstr("no_exports.so is no plugin: it does not export createPlugin."),
                         HasSubstr("no_library.so cannot be loaded: "),
                         HasSubstr("no_name.so is no plugin: getPluginName gives no text."),
                         HasSubstr("other_host.so was built for another version of the host: it "
                                   "needs zqNeverThere, which version 3.0.0 does not have.")));
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(PluginLoader, SaysThatThereIsNoFolder)
{
    EXPECT_THAT(loadPlugins(QStringLiteral("/nowhere/plugins")), IsEmpty());
    EXPECT_THAT(log, ElementsAre("There is no plugin folder /nowhere/plugins."));
}

TEST_F(PluginLoader, InitialisesOnceAndExecutesAtEveryStart)
{
    {
        Plugin plugin(QStringLiteral(PLUGIN_FOLDER "/good.so"));
        EXPECT_THAT(log, IsEmpty());
        plugin.start();
        EXPECT_THAT(log, ElementsAre("initPlugin", "execute"));
        plugin.start();
        EXPECT_THAT(log, ElementsAre("initPlugin", "execute", "execute"));
    }
    EXPECT_THAT(log, ElementsAre("initPlugin", "execute", "execute", "deleted"));
    // A second handle that may unload, and does not: the library stays.
    QLibrary library(QStringLiteral(PLUGIN_FOLDER "/good.so"));
    EXPECT_TRUE(library.load());
}

TEST_F(PluginLoader, BeginsAnewAfterARefusal)
{
    Plugin plugin(QStringLiteral(PLUGIN_FOLDER "/refuses.so"));
    for (int n = 1; n <= 2; ++n) {
        EXPECT_THROW(plugin.start(), PluginError);
        EXPECT_EQ(log.size(), static_cast<std::size_t>(3 * n));
        EXPECT_EQ(log.back(), "deleted");
    }
}

TEST_F(PluginLoader, BeginsAnewAfterAnExecutionThatThrew)
{
    Plugin plugin(QStringLiteral(PLUGIN_FOLDER "/execute_throws.so"));
    for (int n = 1; n <= 2; ++n) {
        log.clear();
        EXPECT_THROW(plugin.start(), PluginError);
        EXPECT_THAT(log, ElementsAre("initPlugin", "execute", "deleted"));
    }
}

TEST_F(PluginLoader, KeepsAPluginWhoseExecutionOnlyFails)
{
    Plugin plugin(QStringLiteral(PLUGIN_FOLDER "/execute_fails.so"));
    EXPECT_THROW(plugin.start(), PluginError);
    EXPECT_THROW(plugin.start(), PluginError);
    EXPECT_THAT(log, ElementsAre("initPlugin", "execute", "execute"));
}

TEST_F(PluginLoader, ShowsWhatARefusingPluginSaysAndRepeatsIt)
{
    EXPECT_EQ(faultOf(QStringLiteral("refuses.so")), "it refuses: Not without an anatomy.");
    EXPECT_THAT(messages, ElementsAre("Not without\nan anatomy."));
    // Later messages are no reason of a plugin's.
    showMessage(QStringLiteral("afterwards"));
    EXPECT_THAT(messages, ElementsAre("Not without\nan anatomy.", "afterwards"));
    EXPECT_EQ(faultOf(QStringLiteral("refuses_silently.so")),
              "it refuses to run in version 3.0.0 of this host and does not say why");
}

TEST_F(PluginLoader, SaysWhatWentWrongInAPlugin)
{
    EXPECT_EQ(faultOf(QStringLiteral("create_throws.so")),
              "createPlugin failed: no plugin\\ntoday");
    EXPECT_EQ(faultOf(QStringLiteral("create_gives_none.so")), "createPlugin gives no plugin");
    EXPECT_EQ(faultOf(QStringLiteral("init_throws.so")), "initPlugin failed: not ready");
    EXPECT_EQ(faultOf(QStringLiteral("init_throws_number.so")),
              "initPlugin failed with an error that does not say what it is");
    EXPECT_EQ(faultOf(QStringLiteral("refuses_silently.so")),
              "it refuses to run in version 3.0.0 of this host and does not say why");
    EXPECT_EQ(faultOf(QStringLiteral("execute_throws.so")), "execute failed: beyond");
    EXPECT_EQ(faultOf(QStringLiteral("execute_fails.so")), "execute reports a failure");
    EXPECT_EQ(faultOf(QStringLiteral("good.so")), "none");
}

/// A folder for files that are made from a library of the test's.
class DamagedLibrary : public PluginLoader
{
protected:
    QByteArray good() const
    {
        QFile file(QStringLiteral(PLUGIN_FOLDER "/good.so"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    void put(const QByteArray &bytes)
    {
        QFile file(m_folder.filePath(QStringLiteral("damaged.so")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(bytes), bytes.size());
    }

    /// What the log says of it, without its path.
    std::string told()
    {
        log.clear();
        EXPECT_THAT(loadPlugins(m_folder.path()), IsEmpty());
        EXPECT_EQ(log.size(), 1u);
        return log.empty() ? "" : log.front().substr(log.front().find(".so ") + 4);
    }

    const QTemporaryDir m_folder;
};

TEST_F(DamagedLibrary, OfAnotherKindOfComputerIsToldAsThat)
{
    for (const auto &[place, value] : {std::pair{18, 183}, {18, 8}, {4, 1}, {5, 2}}) {
        QByteArray other = good();
        other[place] = static_cast<char>(value);
        put(other);
        EXPECT_EQ(told(), "was built for another kind of computer.") << place;
    }
}

TEST_F(DamagedLibrary, ThatIsCutOffIsToldAndNotLoaded)
{
    const QByteArray whole = good();
    for (const int parts : {2, 3, 10}) {
        put(whole.left(whole.size() / parts));
        EXPECT_THAT(told(), AllOf(HasSubstr("is cut off: it has "), HasSubstr(" of at least ")));
    }
    for (const int bytes : {0, 1, 63}) {
        put(whole.left(bytes));
        EXPECT_THAT(told(), HasSubstr("cannot be loaded: ")) << bytes;
    }
}

TEST_F(DamagedLibrary, FoldersAndPipesOfItsNameAreNone)
{
    EXPECT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("folder.so")));
    EXPECT_EQ(mkfifo(m_folder.filePath(QStringLiteral("pipe.so")).toLocal8Bit(), 0600), 0);
    EXPECT_TRUE(
        QFile::link(QStringLiteral("loop.so"), m_folder.filePath(QStringLiteral("loop.so"))));
    EXPECT_THAT(loadPlugins(m_folder.path()), IsEmpty());
    EXPECT_THAT(log, IsEmpty());
}

/// As a package does it that is installed while the program runs: under another name, and renamed.
TEST_F(DamagedLibrary, ThatIsReplacedWhileItIsLoadedGoesOnAsItWas)
{
    put(good());
    const auto plugins = loadPlugins(m_folder.path());
    ASSERT_EQ(plugins.size(), 1u);
    plugins.front()->start();
    const QString path = m_folder.filePath(QStringLiteral("damaged.so"));
    for (const char *other : {PLUGIN_FOLDER "/refuses.so", PLUGIN_FOLDER "/no_library.so"}) {
        const QString fresh = m_folder.filePath(QStringLiteral("fresh"));
        ASSERT_TRUE(QFile::copy(QString::fromUtf8(other), fresh));
        ASSERT_EQ(std::rename(fresh.toLocal8Bit(), path.toLocal8Bit()), 0);
        log.clear();
        plugins.front()->start();
        EXPECT_THAT(log, ElementsAre("execute"));
    }
    ASSERT_TRUE(QFile::remove(path));
    log.clear();
    plugins.front()->start();
    EXPECT_THAT(log, ElementsAre("execute"));
}

TEST_F(PluginLoader, TakesTheFolderOfTheEnvironmentOrTheOneBesideTheProgram)
{
    qputenv("CORVANE_PLUGINS", "/some/where");
    EXPECT_EQ(defaultPluginFolder(), QStringLiteral("/some/where"));
    qunsetenv("CORVANE_PLUGINS");
    const QString parent = QFileInfo(QCoreApplication::applicationDirPath()).path();
    EXPECT_EQ(defaultPluginFolder(), parent + QStringLiteral("/lib/corvane/plugins"));
}

} // namespace corvane
