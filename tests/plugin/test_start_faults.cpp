// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the user meets when a function of the host fails while the plugin starts: each function, at
// each of its calls, once without an answer and once with a zeroed record. The functions that a
// dataset needs are made to fail in tests/engine/test_host_faults.cpp.
#include "dataset/tessera.h"
#include "plugin/exports.h"
#include "tests/plugin/entry_fixture.h"
#include "tests/support/fault.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace
{

using fake_host::Failure;
using fake_host::Fault;
using fake_host::Story;

std::string joined(const std::vector<std::string> &lines)
{
    std::string all;
    for (const std::string &line : lines)
        all += line + "|";
    return all;
}

/// The line with "..." for what stands between its beginning and its end, where a build names its
/// maker.
std::string masked(const std::string &line, const std::string &beginning, const std::string &end)
{
    const bool fits = line.size() > beginning.size() + end.size() &&
                      line.compare(0, beginning.size(), beginning) == 0 &&
                      line.compare(line.size() - end.size(), end.size(), end) == 0;
    return fits ? beginning + "..." + end : line;
}

std::string withoutMaker(const std::string &line)
{
    return masked(masked(line, "\n* Please check our support website (", ") for frequent updates."),
                  "\n* For questions, suggestions and bugs please contact ", ".");
}

class StartFault : public EntryFixture
{
protected:
    /// Starts the plugin as a host does: executes it if it is ready.
    Story start()
    {
        const int dialogsBefore = dialogs().size();
        host.forgetCalls();
        Story story;
        story["ready"] = plugin->initPlugin() ? "yes" : "no";
        if (story["ready"] == "yes")
            story["executed"] = plugin->execute() ? "yes" : "no";
        story["log pane"] = host.logPaneShown == 0 ? "hidden" : "shown";
        std::transform(host.log.begin(), host.log.end(), host.log.begin(), withoutMaker);
        story["log"] = joined(host.log);
        story["host box"] = joined(host.messages);
        story["asked"] = joined(host.calls);
        story["new dialogs"] = std::to_string(dialogs().size() - dialogsBefore);
        return story;
    }
};

const std::string starting = "\n Starting Tessera Analysis Plugin , using Nodalis|";
const std::string support = "\n* Please check our support website (...) for frequent updates.|";
const std::string contact = "\n* For questions, suggestions and bugs please contact ....|";
const std::string executing = "Executing plugin...|";
const std::string version = "zqGetVersionOfCorvaneZQ()|";
const std::string vmr = "zqGetCurrentVMR()|";
const std::string logText = "zqLogText()|";

const Story smoothly = {
    {"ready", "yes"},
    {"executed", "yes"},
    {"log pane", "shown"},
    {"log", starting + support + contact + executing},
    {"host box", ""},
    {"asked", version + vmr + "zqShowLogPane()|" + logText + logText + logText + logText},
    {"new dialogs", "1"}};

/// The start ends with the message box.
Story refusal(const std::string &box, const std::string &askedBefore)
{
    return {{"ready", "no"},
            {"log pane", "hidden"},
            {"log", ""},
            {"host box", box + "|"},
            {"asked", askedBefore + "zqMessageBox()|"},
            {"new dialogs", "0"}};
}

const Story oldVersion =
    refusal("Can not execute this plugin - CorvaneZQ version 2.8 or higher required.", version);
const Story noVmr = refusal("This plugin requires a VMR to operate. Make sure that a VMR is open "
                            "and that its window is selected.",
                            version + vmr);
const Story otherSize = refusal("This plugin requires a VMR with \"256\" dimensions, "
                                "preferentially a VMR in Talairach space.",
                                version + vmr);

Story smoothlyBut(const std::string &what, const std::string &is)
{
    Story story = smoothly;
    story[what] = is;
    return story;
}

using fake_host::both;
using fake_host::zero;
using fake_host::zeroed;

/// Each with the start that comes of it.
const Fault faults[] = {
    {"zqGetVersionOfCorvaneZQ", 1, both, oldVersion},
    {"zqGetCurrentVMR", 1, zero, noVmr},
    {"zqGetCurrentVMR", 1, zeroed, otherSize},
    {"zqShowLogPane", 1, both, smoothlyBut("log pane", "hidden")},
    {"zqLogText", 1, both, smoothlyBut("log", support + contact + executing)},
    {"zqLogText", 2, both, smoothlyBut("log", starting + contact + executing)},
    {"zqLogText", 3, both, smoothlyBut("log", starting + support + executing)},
    {"zqLogText", 4, both, smoothlyBut("log", starting + support + contact)},
};

class EachStartFault : public StartFault, public testing::WithParamInterface<Fault>
{
};

INSTANTIATE_TEST_SUITE_P(Faults, EachStartFault, testing::ValuesIn(faults),
                         [](const auto &test) { return testName(test.param); });

TEST_P(EachStartFault, IsToldAndLeavesTheNextStartWorking)
{
    const Fault &fault = GetParam();
    for (const Failure failure : fault.failures) {
        host.fail(fault.function, failure, fault.nthCall);
        EXPECT_EQ(start(), fault.story) << (failure == Failure::Zero ? "none" : "zeroed");
        host.work();
        EXPECT_EQ(start(), smoothly);
    }
}

TEST_P(EachStartFault, IsTheSameWhenTheMessageBoxAndTheLogFailToo)
{
    const Fault &fault = GetParam();
    Story expected = fault.story;
    expected["log"] = "";
    expected["host box"] = "";
    for (const Failure failure : fault.failures) {
        for (const Failure silent : {Failure::Zero, Failure::ZeroedRecord}) {
            host.fail(fault.function, failure, fault.nthCall);
            host.fail("zqMessageBox", silent);
            host.fail("zqLogText", silent);
            EXPECT_EQ(start(), expected);
            host.work();
        }
    }
}

TEST_P(EachStartFault, LeavesAnOpenDialogAlone)
{
    start();
    ASSERT_EQ(dialogs().size(), 1);
    Tessera *const open = dialogs().first();
    for (const Failure failure : GetParam().failures) {
        host.fail(GetParam().function, failure, GetParam().nthCall);
        start();
        host.work();
        EXPECT_TRUE(dialogs().contains(open));
        EXPECT_TRUE(open->isVisible());
        EXPECT_EQ(static_cast<void *>(open->plugin), static_cast<void *>(plugin.get()));
    }
    // A refused start leaves the plugin with the dialog that it had.
    if (GetParam().story.at("ready") == "no") {
        plugin->execute();
        EXPECT_EQ(dialogs(), QList<Tessera *>{open});
    }
}

TEST_F(StartFault, NoneTellsTheSmoothStory)
{
    EXPECT_EQ(start(), smoothly);
}

/// Every call of a function that a start makes is made to fail in both ways.
TEST_F(StartFault, AreCompleteForTheStart)
{
    start();
    EXPECT_THAT(fake_host::untested(faults, host), testing::IsEmpty());
    EXPECT_EQ(host.calls.size(), 7U);
}

} // namespace
