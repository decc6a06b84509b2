// SPDX-License-Identifier: GPL-3.0-or-later
//
// All widths of vectors give the same bits, and those are right.
#include <cmath>
#include <cstring>

#include <gtest/gtest.h>

#include "statistics/kernels/kernels.h"
#include "tests/statistics/random_data.h"

namespace
{

using namespace statistics::detail;

struct alignas(64) Line {
    double values[8] = {};
};

class Values
{
public:
    explicit Values(int count) : m_lines(static_cast<std::size_t>((count + 7) / 8)) {}
    double *data() { return m_lines.front().values; }
    double &operator[](int i) { return m_lines[static_cast<std::size_t>(i / 8)].values[i % 8]; }
    bool same_bits(const Values &other) const
    {
        return std::memcmp(m_lines.data(), other.m_lines.data(), m_lines.size() * sizeof(Line)) ==
               0;
    }

private:
    std::vector<Line> m_lines;
};

Values random_values(int count, RandomNumbers &random)
{
    Values values(count);
    for (int i = 0; i < count; ++i) {
        values[i] = random.normal();
    }
    return values;
}

TEST(Kernels, ProductsInAscendingOrder)
{
    RandomNumbers random(1);
    for (const int depth : {1, 2, 7, 40}) {
        Values weights = random_values(depth * batch_size, random);
        Values panel = random_values(depth * panel_size, random);
        Values out(tile_size);
        plain_kernels.multiply(out.data(), weights.data(), panel.data(), depth);
        for (int p = 0; p < batch_size; ++p) {
            for (int e = 0; e < panel_size; ++e) {
                volatile double sum = 0.0;
                for (int r = 0; r < depth; ++r) {
                    const volatile double product =
                        weights[r * batch_size + p] * panel[r * panel_size + e];
                    sum = sum + product;
                }
                ASSERT_EQ(out[p * panel_size + e], sum);
            }
        }
    }
}

TEST(Kernels, StatisticsOfProducts)
{
    RandomNumbers random(2);
    Values x = random_values(3 * tile_size, random);
    Values total(panel_size);
    Values floor(panel_size);
    for (int e = 0; e < panel_size; ++e) {
        total[e] = e == 5 ? 1e-3 : 20.0 + random.uniform();
        floor[e] = e == 5 ? 0.25 : 1e-14;
    }
    Values t(tile_size);
    Values f(tile_size);
    plain_kernels.t_values(t.data(), x.data(), 3, total.data(), floor.data(), 1.5);
    plain_kernels.f_values(f.data(), x.data(), 2, 3, total.data(), floor.data(), 2.5);
    for (int i = 0; i < tile_size; ++i) {
        const double a = x[i];
        const double b = x[tile_size + i];
        const double c = x[2 * tile_size + i];
        const int e = i % panel_size;
        const double rest = e == 5 ? 0.25 : total[e] - a * a - b * b - c * c;
        EXPECT_NEAR(t[i], 1.5 * a / std::sqrt(rest), 1e-13);
        EXPECT_NEAR(f[i], 2.5 * (a * a + b * b) / rest, 1e-12);
    }
}

class KernelsOf : public testing::TestWithParam<const char *>
{
};

TEST_P(KernelsOf, SameBitsAsThePlainOnes)
{
    const Kernels *const wide = kernels_named(GetParam());
    if (wide == nullptr) {
        GTEST_SKIP() << "this processor or build has no " << GetParam();
    }
    RandomNumbers random(3);
    for (const int depth : {1, 3, 48, 101}) {
        Values weights = random_values(depth * batch_size, random);
        Values panel = random_values(depth * panel_size, random);
        Values plain_out(2 * tile_size);
        Values wide_out(2 * tile_size);
        for (int tile = 0; tile < 2; ++tile) {
            const int at = tile * tile_size;
            plain_kernels.multiply(plain_out.data() + at, weights.data(), panel.data(), depth);
            wide->multiply(wide_out.data() + at, weights.data(), panel.data(), depth);
        }
        EXPECT_TRUE(wide_out.same_bits(plain_out));
        Values total = random_values(panel_size, random);
        Values floor = random_values(panel_size, random);
        for (int e = 0; e < panel_size; ++e) {
            total[e] = 300.0 + total[e];
            floor[e] = 1e-3 * std::abs(floor[e]) + 1e-9;
        }
        Values plain_t(tile_size);
        Values wide_t(tile_size);
        plain_kernels.t_values(plain_t.data(), plain_out.data(), 2, total.data(), floor.data(),
                               6.5);
        wide->t_values(wide_t.data(), plain_out.data(), 2, total.data(), floor.data(), 6.5);
        EXPECT_TRUE(wide_t.same_bits(plain_t));
        plain_kernels.f_values(plain_t.data(), plain_out.data(), 2, 2, total.data(), floor.data(),
                               9);
        wide->f_values(wide_t.data(), plain_out.data(), 2, 2, total.data(), floor.data(), 9);
        EXPECT_TRUE(wide_t.same_bits(plain_t));
    }
}

INSTANTIATE_TEST_SUITE_P(Widths, KernelsOf, testing::Values("avx2", "avx512"));

TEST(Kernels, AreFoundByName)
{
    EXPECT_EQ(kernels_named("plain"), &plain_kernels);
    EXPECT_EQ(kernels_named("other"), nullptr);
    EXPECT_NE(kernels_named(kernels().name), nullptr);
}

} // namespace
