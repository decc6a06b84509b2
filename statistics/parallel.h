// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <functional>

namespace statistics
{

/// How many threads a wish for `threads` means: as many as the machine has processors for 0.
int thread_count(int threads);

/// Calls `work(chunk, worker)` once for each chunk from 0 to `chunks` - 1, on up to `threads`
/// threads (0: one for each processor) of which the caller's is one. Chunks start in ascending
/// order; which worker (0 to threads - 1) takes one is open, so that results must not depend on it.
/// The first exception ends the rest and is thrown here.
void for_each_chunk(std::ptrdiff_t chunks, int threads,
                    const std::function<void(std::ptrdiff_t chunk, int worker)> &work);

} // namespace statistics
