// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/example_study/draws.h"

#include "statistics/random.h"

#include <cmath>

namespace corvane::example_study
{

Draws::Draws(Draw purpose, const Owner &owner, std::uint32_t part)
    : m_key{0x53545544, static_cast<std::uint32_t>(purpose)}, m_counter{0, owner.participant,
                                                                        owner.session * 16 +
                                                                            owner.task,
                                                                        part}
{
}

std::uint32_t Draws::word()
{
    if (m_used == m_words.size()) {
        m_words = statistics::philox(m_counter, m_key);
        ++m_counter[0];
        m_used = 0;
    }
    return m_words[m_used++];
}

double Draws::normal()
{
    double sum = 0;
    for (int pair = 0; pair < 6; ++pair) {
        const std::uint32_t bits = word();
        sum += (bits & 0xffff) + (bits >> 16) + 1.0;
    }
    return sum / 65536 - 6;
}

Eigen::VectorXd Draws::persistentSeries(Eigen::Index volumes, double part)
{
    const double fresh = std::sqrt(1 - part * part);
    Eigen::VectorXd series(volumes);
    double value = normal();
    for (double &sample : series) {
        sample = value;
        value = part * value + fresh * normal();
    }
    return series;
}

} // namespace corvane::example_study
