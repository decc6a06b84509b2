// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// @file
/// A library that exports every name of the host without being it.

extern "C" __attribute__((visibility("default"))) int decoyIsLoaded();
