// SPDX-License-Identifier: GPL-3.0-or-later
//
// A program named as the host that exports the version function and nothing else. With DECOY_LOADED
// every other name is offered by a library that it has loaded, and must stay unbound all the same.
#include "plugin/host_functions.h"
#include "tests/host/session/boundary/decoy.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

extern "C" __attribute__((visibility("default"))) void
zqGetVersionOfCorvaneZQ(int *major, int *minor, int *third)
{
    *major = 2;
    *minor = 8;
    *third = 0;
}

TEST(BoundaryOfAHostWithTheVersionAlone, BindsNothingElse)
{
#ifdef DECOY_LOADED
    // The names are there for the taking.
    EXPECT_EQ(decoyIsLoaded(), 1);
    EXPECT_NE(dlsym(RTLD_DEFAULT, "zqLogText"), nullptr);
    EXPECT_NE(dlsym(RTLD_DEFAULT, "zqGetPOI"), nullptr);
#endif

    EXPECT_TRUE(bindHostFunctions());
    const HostFunctionTable &table = hostFunctions();
    int bound = 0;
#define HOST_CALL(result, name, arguments)                                                         \
    if (table.name != nullptr) {                                                                   \
        EXPECT_STREQ(#name, "zqGetVersionOfCorvaneZQ");                                            \
        ++bound;                                                                                   \
    }
#define HOST_NAME(name) EXPECT_EQ(table.name, nullptr) << #name;
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
    EXPECT_EQ(bound, 1);
    EXPECT_EQ(table.zqGetVersionOfCorvaneZQ, &zqGetVersionOfCorvaneZQ);
}
