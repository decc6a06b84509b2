// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/session/boundary/decoy.h"

#define HOST_CALL(result, name, arguments)                                                         \
    extern "C" __attribute__((visibility("default"))) void name() {}
#define HOST_NAME(name)                                                                            \
    extern "C" __attribute__((visibility("default"))) void name() {}
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME

int decoyIsLoaded()
{
    return 1;
}
