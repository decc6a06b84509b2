// SPDX-License-Identifier: GPL-3.0-or-later
//
// The plugin's entry in a program named as the host, which exports the host's functions: binding,
// the gates, the start-up lines, and the dialog.
#include "dataset/tessera.h"
#include "plugin/exports.h"
#include "plugin/host_functions.h"
#include "plugin/plugin_interface.h"

#include <QApplication>
#include <QCheckBox>
#include <QPushButton>
#include <QTest>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace
{

/// What this host answers, and what was asked of it.
struct Host {
    std::array<int, 3> version{2, 8, 0};
    bool hasVmr = true;
    std::array<int, 3> dimensions{256, 256, 256};
    std::vector<std::string> log;
    std::vector<std::string> messages;
    int logPaneShown = 0;
};

Host host;

} // namespace

extern "C" {
__attribute__((visibility("default"))) void zqGetVersionOfCorvaneZQ(int *major, int *minor,
                                                                    int *third)
{
    *major = host.version[0];
    *minor = host.version[1];
    *third = host.version[2];
}

__attribute__((visibility("default"))) void *zqGetCurrentVMR(int *x, int *y, int *z)
{
    if (!host.hasVmr)
        return nullptr;
    *x = host.dimensions[0];
    *y = host.dimensions[1];
    *z = host.dimensions[2];
    return &host;
}

__attribute__((visibility("default"))) void zqShowLogPane()
{
    ++host.logPaneShown;
}

__attribute__((visibility("default"))) void zqLogText(const char *text)
{
    host.log.emplace_back(text);
}

__attribute__((visibility("default"))) void zqMessageBox(const char *text)
{
    host.messages.emplace_back(text);
}
}

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class PluginEntry : public testing::Test
{
protected:
    PluginEntry() : plugin(createPlugin()) { host = Host(); }
    ~PluginEntry() override
    {
        for (Tessera *dialog : dialogs())
            delete dialog;
    }

    static QList<Tessera *> dialogs()
    {
        QList<Tessera *> all;
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *dialog = qobject_cast<Tessera *>(widget))
                all.append(dialog);
        }
        return all;
    }

    std::unique_ptr<CVZQPluginInterface> plugin;
};

TEST_F(PluginEntry, TextsAreConstant)
{
    EXPECT_STREQ(getPluginName(), "Tessera Analysis");
    EXPECT_STREQ(getPluginDescription(), "");
    EXPECT_STREQ(getGUIScript(), "");
    EXPECT_STREQ(getPluginVersion(), "");
    EXPECT_THAT(getAuthor(), testing::MatchesRegex("<i>.+</i>"));
    EXPECT_EQ(getPluginName(), getPluginName());
}

struct VersionCase {
    std::array<int, 3> version;
    bool passes;
};

class VersionGate : public PluginEntry, public testing::WithParamInterface<VersionCase>
{
};

TEST_P(VersionGate, LetsLaterVersionsPass)
{
    host.version = GetParam().version;
    EXPECT_EQ(plugin->initPlugin(), GetParam().passes);
    if (GetParam().passes) {
        EXPECT_THAT(host.messages, IsEmpty());
        return;
    }
    EXPECT_THAT(
        host.messages,
        ElementsAre("Can not execute this plugin - CorvaneZQ version 2.8 or higher required."));
    EXPECT_THAT(host.log, IsEmpty());
    EXPECT_EQ(host.logPaneShown, 0);
}

INSTANTIATE_TEST_SUITE_P(
    PluginEntry, VersionGate,
    testing::Values(VersionCase{{2, 7, 9}, false}, VersionCase{{2, 8, 0}, true},
                    VersionCase{{2, 8, 5}, true}, VersionCase{{2, 8, -1}, false},
                    VersionCase{{2, 9, 0}, true}, VersionCase{{2, 9, -1}, true},
                    VersionCase{{3, 0, 0}, true}, VersionCase{{3, 0, -7}, true},
                    VersionCase{{1, 9, 9}, false}, VersionCase{{0, 0, 0}, false}));

TEST_F(PluginEntry, WithoutVmrIsRefused)
{
    host.hasVmr = false;
    EXPECT_FALSE(plugin->initPlugin());
    EXPECT_THAT(host.messages,
                ElementsAre("This plugin requires a VMR to operate. Make sure that a VMR is open "
                            "and that its window is selected."));
    EXPECT_THAT(host.log, IsEmpty());
}

TEST_F(PluginEntry, WithVmrOfOtherSizeIsRefused)
{
    for (std::size_t axis = 0; axis < 3; ++axis) {
        host = Host();
        host.dimensions[axis] = 255;
        EXPECT_FALSE(plugin->initPlugin());
        EXPECT_THAT(host.messages,
                    ElementsAre("This plugin requires a VMR with \"256\" dimensions, "
                                "preferentially a VMR in Talairach space."));
        EXPECT_THAT(host.log, IsEmpty());
        EXPECT_EQ(host.logPaneShown, 0);
    }
}

TEST_F(PluginEntry, WritesItsStartUpLines)
{
    ASSERT_TRUE(plugin->initPlugin());
    EXPECT_EQ(host.logPaneShown, 1);
    EXPECT_THAT(
        host.log,
        ElementsAre("\n Starting Tessera Analysis Plugin , using Nodalis",
                    testing::MatchesRegex("\n\\* Please check our support website \\(.+\\) for "
                                          "frequent updates\\."),
                    testing::MatchesRegex(
                        "\n\\* For questions, suggestions and bugs please contact .+\\.")));
    for (const std::string &line : host.log)
        EXPECT_LT(line.size(), 256u);
}

TEST_F(PluginEntry, BindsTheFunctionsOfThisProgram)
{
    hostFunctions() = HostFunctionTable();
    ASSERT_TRUE(plugin->initPlugin());
    EXPECT_EQ(hostFunctions().zqLogText, &zqLogText);
    EXPECT_EQ(hostFunctions().zqMessageBox, &zqMessageBox);
    EXPECT_EQ(hostFunctions().zqLoadVOIs, nullptr); // this host has none
}

TEST_F(PluginEntry, ExecuteShowsOneDialog)
{
    ASSERT_TRUE(plugin->initPlugin());
    host.log.clear();
    EXPECT_TRUE(plugin->execute());
    EXPECT_THAT(host.log, ElementsAre("Executing plugin..."));
    ASSERT_EQ(dialogs().size(), 1);
    Tessera *dialog = dialogs().first();
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->parentWidget(), nullptr);
    EXPECT_TRUE(dialog->testAttribute(Qt::WA_DeleteOnClose));
    EXPECT_EQ(static_cast<void *>(dialog->plugin), static_cast<void *>(plugin.get()));
}

TEST_F(PluginEntry, SecondExecuteShowsTheSameDialogWithItsState)
{
    ASSERT_TRUE(plugin->initPlugin());
    plugin->execute();
    Tessera *dialog = dialogs().first();
    dialog->findChild<QCheckBox *>("chkBox_ComputeMST")->setChecked(false);
    dialog->hide();
    EXPECT_TRUE(plugin->execute());
    EXPECT_EQ(dialogs(), QList<Tessera *>{dialog});
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_FALSE(dialog->findChild<QCheckBox *>("chkBox_ComputeMST")->isChecked());
}

TEST_F(PluginEntry, ExecuteAfterTheDialogWasClosedMakesNewOne)
{
    ASSERT_TRUE(plugin->initPlugin());
    plugin->execute();
    const QPointer<Tessera> first = dialogs().first();
    QTest::mouseClick(first->findChild<QPushButton *>("btn_CloseDialog"), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return first.isNull(); }));
    EXPECT_TRUE(plugin->execute());
    ASSERT_EQ(dialogs().size(), 1);
    EXPECT_TRUE(dialogs().first()->isVisible());
}

TEST_F(PluginEntry, InitLeavesAnOpenDialogAloneAndForgetsIt)
{
    ASSERT_TRUE(plugin->initPlugin());
    plugin->execute();
    ASSERT_TRUE(plugin->initPlugin());
    EXPECT_EQ(dialogs().size(), 1);
    plugin->execute();
    EXPECT_EQ(dialogs().size(), 2);
}

TEST_F(PluginEntry, PluginsEndLeavesItsDialogOpen)
{
    ASSERT_TRUE(plugin->initPlugin());
    plugin->execute();
    plugin.reset();
    ASSERT_EQ(dialogs().size(), 1);
    EXPECT_TRUE(dialogs().first()->isVisible());
}

} // namespace
