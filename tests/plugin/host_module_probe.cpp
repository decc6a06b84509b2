// SPDX-License-Identifier: GPL-3.0-or-later
//
// A program that may be the host: tests copy it under names of their own. What becomes of its file
// while it runs is its argument:
//   keep     nothing
//   delete   it is deleted
//   replace  another file takes its place, as when a package is upgraded
//   rename   it gets another name
//   decoy    it is deleted, and there is another one with the name that tells so
// Exit status 0 when the binding of the host's functions takes it for the host, else 1; 2 when it
// has bound a function of a library, which is not the host's.
#include "plugin/host_functions.h"

#include <filesystem>
#include <fstream>
#include <string>

extern "C" __attribute__((visibility("default"))) void zqGetVersionOfCorvaneZQ(int *, int *, int *)
{
}

/// Of the library beside it, which has a function of the host's name, too.
extern "C" int libraryIsLoaded();

int main(int, char *arguments[])
{
    const std::filesystem::path self = arguments[0];
    const std::filesystem::path other = self.string() + ".other";
    const std::string change = arguments[1];
    if (change == "delete")
        std::filesystem::remove(self);
    if (change == "replace") {
        std::ofstream(other) << "a later version";
        std::filesystem::rename(other, self);
    }
    if (change == "rename")
        std::filesystem::rename(self, other);
    if (change == "decoy") {
        std::filesystem::remove(self);
        std::ofstream(self.string() + " (deleted)") << "another file";
    }
    const bool bound =
        bindHostFunctions() && hostFunctions().zqGetVersionOfCorvaneZQ == &zqGetVersionOfCorvaneZQ;
    if (libraryIsLoaded() == 0 || hostFunctions().zqLogText != nullptr)
        return 2;
    return bound ? 0 : 1;
}
