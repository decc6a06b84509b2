// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/kernels/kernels.h"

#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace statistics::detail
{
namespace
{

const Kernels &choose()
{
    const char *const wanted = std::getenv("STATISTICS_KERNELS");
    for (const char *const name : {wanted, "avx512", "avx2"}) {
        const Kernels *const found = name != nullptr ? kernels_named(name) : nullptr;
        if (found != nullptr) {
            return *found;
        }
    }
    return plain_kernels;
}

} // namespace

const Kernels *kernels_named(const char *name)
{
#if defined(STATISTICS_WIDE_KERNELS)
    if (std::strcmp(name, "avx512") == 0 && __builtin_cpu_supports("avx512f")) {
        return &avx512_kernels;
    }
    if (std::strcmp(name, "avx2") == 0 && __builtin_cpu_supports("avx2")) {
        return &avx2_kernels;
    }
#endif
    return std::strcmp(name, "plain") == 0 ? &plain_kernels : nullptr;
}

const Kernels &kernels()
{
    static const Kernels &chosen = choose();
    return chosen;
}

} // namespace statistics::detail
