// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// A test of a small study, of which every byte is known: those of the permutations, of the null
/// distributions and of the p values from them.
namespace same_bytes
{

/// A hash of the permutations of a seed, drawn freely, within blocks, and of flipped signs.
std::uint64_t of_rearrangements();
constexpr std::uint64_t rearrangements = 0xB6B6783AC9F72159;

/// A hash of all numbers that a permutation test with networks makes without the C library's
/// functions.
std::uint64_t of_test(int threads);
constexpr std::uint64_t test = 0xF42EA8E6402C8F2F;

} // namespace same_bytes
