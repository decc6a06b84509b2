// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The folder of real recordings and connectomes, `TESSERA_DATA_DIR` of the build, in UTF-8. It may
/// be missing, and then tests that need it skip. One file of its own knows the path, so that the
/// other objects are the same in every checkout.
const char *referenceFolder();
