// SPDX-License-Identifier: GPL-3.0-or-later
//
// The readers for libFuzzer. Which one it is says the environment variable TESSERA_FUZZ_READER;
// without it they are listed. tests/fuzz/readers.py takes one after the other.
#include "tests/fuzz/readers.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

const reading::Reader *wantedReader = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    const char *const wanted = std::getenv("TESSERA_FUZZ_READER");
    for (const reading::Reader *reader = reading::begin(); reader != reading::end(); ++reader) {
        if (wanted == nullptr)
            std::puts(reader->name);
        else if (std::strcmp(reader->name, wanted) == 0)
            wantedReader = reader;
    }
    if (wantedReader == nullptr)
        std::exit(wanted == nullptr ? 0 : 2);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    reading::errorOf(*wantedReader, QByteArray(reinterpret_cast<const char *>(data), int(size)));
    return 0;
}
