// SPDX-License-Identifier: GPL-3.0-or-later
//
// The module as a host loads it: what it offers by name, and what that gives.
#include "plugin/plugin_interface.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace
{

class Module : public testing::Test
{
protected:
    void SetUp() override { ASSERT_NE(library, nullptr) << dlerror(); }

    template <typename Function>
    Function *function(const char *name) const
    {
        void *const address = dlsym(library, name);
        EXPECT_NE(address, nullptr) << name;
        return reinterpret_cast<Function *>(address);
    }
    const char *text(const char *getter) const
    {
        auto *const get = function<const char *()>(getter);
        return get != nullptr ? get() : "none";
    }

    void *const library = dlopen(MODULE, RTLD_NOW | RTLD_LOCAL);
};

TEST_F(Module, OffersItsFunctionsByTheirPlainNames)
{
    EXPECT_STREQ(text("getPluginName"), "Tessera Analysis");
    EXPECT_STREQ(text("getPluginDescription"), "");
    EXPECT_THAT(text("getAuthor"), testing::MatchesRegex("<i>.+</i>"));
    EXPECT_STREQ(text("getGUIScript"), "");
    EXPECT_STREQ(text("getPluginVersion"), "");
    EXPECT_STREQ(text("qxtVersion"), "0.7.0");
}

TEST_F(Module, MakesAnObjectOfItsOwnForEachCaller)
{
    auto *const create = function<CVZQPluginInterface *()>("createPlugin");
    ASSERT_NE(create, nullptr);
    const std::unique_ptr<CVZQPluginInterface> first(create());
    const std::unique_ptr<CVZQPluginInterface> second(create());
    ASSERT_NE(first, nullptr);
    EXPECT_NE(first, second);
    EXPECT_FALSE(first->initPlugin()) << "this program is no host";
}

TEST_F(Module, OffersTheMembersOfItsClasses)
{
    for (const char *const name :
         {"_ZN19CVZQPluginInterfaceC1Ev", "_ZN19CVZQPluginInterfaceC1ERKS_",
          "_ZN19CVZQPluginInterfaceaSERKS_", "_ZN19CVZQPluginInterfaceD1Ev",
          "_ZTV19CVZQPluginInterface", "_ZN14Tessera_PluginC1Ev", "_ZN14Tessera_PluginD1Ev",
          "_ZN14Tessera_Plugin7executeEv", "_ZN14Tessera_Plugin10initPluginEv"})
        EXPECT_NE(dlsym(library, name), nullptr) << name;
}

} // namespace
