// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/random.h"

namespace statistics
{
namespace
{

std::uint32_t low(std::uint64_t value)
{
    return static_cast<std::uint32_t>(value);
}

std::uint32_t high(std::uint64_t value)
{
    return static_cast<std::uint32_t>(value >> 32);
}

} // namespace

std::array<std::uint32_t, 4> philox(std::array<std::uint32_t, 4> counter,
                                    std::array<std::uint32_t, 2> key)
{
    for (int round = 0; round < 10; ++round) {
        const std::uint64_t a = std::uint64_t{0xD2511F53} * counter[0];
        const std::uint64_t b = std::uint64_t{0xCD9E8D57} * counter[2];
        counter = {high(b) ^ counter[1] ^ key[0], low(b), high(a) ^ counter[3] ^ key[1], low(a)};
        key = {key[0] + 0x9E3779B9U, key[1] + 0xBB67AE85U};
    }
    return counter;
}

RandomSequence::RandomSequence(std::uint64_t seed, Purpose purpose, std::uint64_t number)
    : m_key({low(seed), high(seed)}),
      m_counter({0, static_cast<std::uint32_t>(purpose), low(number), high(number)})
{
}

std::uint32_t RandomSequence::next()
{
    if (m_used == m_words.size()) {
        m_words = philox(m_counter, m_key);
        ++m_counter[0];
        m_used = 0;
    }
    return m_words[m_used++];
}

std::uint32_t RandomSequence::below(std::uint32_t n)
{
    std::uint64_t product = std::uint64_t{next()} * n;
    if (low(product) < n) {
        const std::uint32_t rest = (0U - n) % n;
        while (low(product) < rest) {
            product = std::uint64_t{next()} * n;
        }
    }
    return high(product);
}

} // namespace statistics
