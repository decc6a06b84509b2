// SPDX-License-Identifier: GPL-3.0-or-later
//
// A program that exports all that the host exports, under another file name: it is not the host.
#include "plugin/host_functions.h"

#include <gtest/gtest.h>

TEST(BoundaryUnderAnotherName, BindsNothing)
{
    EXPECT_FALSE(bindHostFunctions());
    const HostFunctionTable &table = hostFunctions();
#define HOST_CALL(result, name, arguments) EXPECT_EQ(table.name, nullptr) << #name;
#define HOST_NAME(name) EXPECT_EQ(table.name, nullptr) << #name;
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
}
