// SPDX-License-Identifier: GPL-3.0-or-later
//
// The plugin's entry in a program named as the host, which exports the host's functions: binding,
// the gates, the start-up lines, and the dialog.
#include "dataset/tessera.h"
#include "plugin/exports.h"
#include "plugin/host_functions.h"
#include "tests/plugin/entry_fixture.h"

#include <QCheckBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <gmock/gmock.h>

#include <array>
#include <cstring>
#include <string>
#include <type_traits>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class PluginEntry : public EntryFixture
{
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
    host.documents.clear();
    EXPECT_FALSE(plugin->initPlugin());
    EXPECT_THAT(host.messages,
                ElementsAre("This plugin requires a VMR to operate. Make sure that a VMR is open "
                            "and that its window is selected."));
    EXPECT_THAT(host.log, IsEmpty());
    EXPECT_EQ(host.logPaneShown, 0);
}

TEST_F(PluginEntry, WithVmrOfOtherSizeIsRefused)
{
    for (std::size_t axis = 0; axis < 3; ++axis) {
        host.forgetCalls();
        host.documents.front().dimensions = {256, 256, 256};
        host.documents.front().dimensions[axis] = 255;
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

TEST_F(PluginEntry, AsksTheHostInThisOrder)
{
    ASSERT_TRUE(plugin->initPlugin());
    EXPECT_THAT(host.calls,
                ElementsAre("zqGetVersionOfCorvaneZQ()", "zqGetCurrentVMR()", "zqShowLogPane()",
                            "zqLogText()", "zqLogText()", "zqLogText()"));
}

TEST_F(PluginEntry, BindsTheFunctionsOfThisProgramAtEachStart)
{
    for (int start = 0; start < 2; ++start) {
        hostFunctions().zqLogText = nullptr;
        hostFunctions().zqLoadVOIs = [](const char *) { return 1; }; // this host has none
        ASSERT_TRUE(plugin->initPlugin());
        EXPECT_EQ(hostFunctions().zqLogText, &zqLogText);
        EXPECT_EQ(hostFunctions().zqMessageBox, &zqMessageBox);
        EXPECT_EQ(hostFunctions().zqLoadVOIs, nullptr);
    }
}

#ifdef __GXX_ABI_VERSION
/// Place of a virtual function in the table of its class, in the C++ ABI that is not Windows': the
/// first word of the pointer to it is 1 + its distance in bytes.
template <typename Function>
std::size_t slotOf(Function function)
{
    std::size_t word = 0;
    std::memcpy(&word, &function, sizeof word);
    return (word - 1) / sizeof(void *);
}

TEST_F(PluginEntry, VirtualFunctionsStandInTheOrderOfTheContract)
{
    // The destructor comes first; it has two entries there.
    EXPECT_EQ(slotOf(&CVZQPluginInterface::execute), 2u);
    EXPECT_EQ(slotOf(&CVZQPluginInterface::initPlugin), 3u);
    static_assert(std::has_virtual_destructor_v<CVZQPluginInterface>);
}
#endif

/// As hosts may keep plugins by value.
TEST(PluginInterface, CopiesKeepWhatTheirClassHolds)
{
    struct Counting : CVZQPluginInterface {
        bool initPlugin() override { return true; }
        bool execute() override { return ++runs > 2; }
        int runs = 0;
    };
    Counting first;
    EXPECT_FALSE(first.execute());
    EXPECT_FALSE(first.execute());
    Counting copy = first;
    Counting assigned;
    assigned = first;
    EXPECT_TRUE(copy.execute());
    EXPECT_TRUE(assigned.execute());
    EXPECT_EQ(first.runs, 2);
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

TEST_F(PluginEntry, SecondExecuteBringsADialogThatIsMinimisedOrCoveredToTheFront)
{
    ASSERT_TRUE(plugin->initPlugin());
    plugin->execute();
    Tessera *dialog = dialogs().first();
    QWidget other;
    for (const Qt::WindowState state : {Qt::WindowNoState, Qt::WindowMinimized}) {
        dialog->setWindowState(state);
        other.show();
        other.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
        plugin->execute();
        EXPECT_TRUE(QTest::qWaitForWindowActive(dialog)) << int(state);
        EXPECT_FALSE(dialog->isMinimized()) << int(state);
    }
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
