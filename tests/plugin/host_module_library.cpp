// SPDX-License-Identifier: GPL-3.0-or-later
//
// A library that the program of the tests has loaded, with a function of the host's name.
extern "C" __attribute__((visibility("default"))) void zqLogText(const char *) {}
extern "C" __attribute__((visibility("default"))) int libraryIsLoaded()
{
    return 1;
}
