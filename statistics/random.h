// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

namespace statistics
{

/// What a sequence of random numbers is for: sequences of one seed and number differ by it.
enum class Purpose : std::uint32_t {
    permutation = 0,
    sign = 1,
    identity = 2,
    map = 3,
};

/// Ten rounds of Philox4x32: four random words for each counter and key, without any state.
///
/// Source: Salmon et al. 2011, Parallel random numbers: as easy as 1, 2, 3, SC '11,
/// doi:10.1145/2063384.2063405.
std::array<std::uint32_t, 4> philox(std::array<std::uint32_t, 4> counter,
                                    std::array<std::uint32_t, 2> key);

/// The sequence of random words number `number` of a seed. It depends on nothing but the arguments:
/// any thread can make any sequence, on every system the same.
class RandomSequence
{
public:
    RandomSequence(std::uint64_t seed, Purpose purpose, std::uint64_t number);

    /// Uniform over all words of 32 bits.
    std::uint32_t next();

    /// Uniform over 0 to n - 1, without bias, n >= 1; now and then takes more than one word.
    /// Lemire 2019, ACM Trans Model Comput Simul 29:3, doi:10.1145/3230636.
    std::uint32_t below(std::uint32_t n);

    /// Brings `count` values into random order, each order equally likely (Fisher and Yates).
    template <typename Value>
    void shuffle(Value *values, std::uint32_t count)
    {
        for (std::uint32_t left = count; left > 1; --left) {
            const std::uint32_t chosen = below(left);
            const Value moved = values[chosen];
            values[chosen] = values[left - 1];
            values[left - 1] = moved;
        }
    }

private:
    std::array<std::uint32_t, 2> m_key;
    std::array<std::uint32_t, 4> m_counter;
    std::array<std::uint32_t, 4> m_words = {};
    unsigned m_used = 4;
};

} // namespace statistics
