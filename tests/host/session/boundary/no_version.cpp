// SPDX-License-Identifier: GPL-3.0-or-later
//
// A program named as the host that exports nothing, with a library loaded that offers every name of
// the host, the version function included: it is not the right host.
#include "plugin/host_functions.h"
#include "tests/host/session/boundary/decoy.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

TEST(BoundaryOfAHostWithoutTheVersion, IsNotTheHost)
{
    EXPECT_EQ(decoyIsLoaded(), 1);
    EXPECT_NE(dlsym(RTLD_DEFAULT, "zqGetVersionOfCorvaneZQ"), nullptr);
    EXPECT_FALSE(bindHostFunctions());
    EXPECT_EQ(hostFunctions().zqLogText, nullptr);
}
