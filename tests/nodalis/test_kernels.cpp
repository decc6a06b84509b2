// SPDX-License-Identifier: GPL-3.0-or-later
// All widths of vectors give the same bits, and those are right.

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "nodalis/src/kernels/kernels.h"
#include "tests/nodalis/graphs.h"

namespace
{

using nodalis::detail::Kernels;
using nodalis::detail::kernels_named;
using nodalis::detail::plain_kernels;
using nodalis::detail::tile_size;

struct alignas(64) Row {
    double value[tile_size];
};
using Rows = std::vector<Row>;

/// Numbers of all sizes, now and then infinite.
Rows random_rows(int count, graphs::Random &random)
{
    Rows rows(static_cast<std::size_t>(count));
    for (Row &row : rows) {
        for (double &value : row.value) {
            value = graphs::below(20, random) == 0
                        ? std::numeric_limits<double>::infinity()
                        : std::ldexp(1.0 + graphs::uniform(random), graphs::below(9, random));
        }
    }
    return rows;
}

Rows finite(Rows rows)
{
    for (Row &row : rows) {
        for (double &value : row.value) {
            value = std::isinf(value) ? 0.0 : value;
        }
    }
    return rows;
}

bool same_bits(const Rows &a, const Rows &b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(Row)) == 0;
}

double at(const Rows &rows, int row, int column)
{
    return rows[static_cast<std::size_t>(row)].value[column];
}

class KernelsOf : public testing::TestWithParam<const char *>
{
protected:
    void SetUp() override
    {
        m_kernels = kernels_named(GetParam());
        if (m_kernels == nullptr) {
            GTEST_SKIP() << "this processor or build has no " << GetParam();
        }
    }
    const Kernels &wide() const { return *m_kernels; }

private:
    const Kernels *m_kernels = nullptr;
};

TEST_P(KernelsOf, MinPlusIsAMinimumOfSums)
{
    graphs::Random random(61);
    for (const int depth : {0, 1, 2, 7, 16, 33}) {
        const Rows in = random_rows(tile_size, random);
        const Rows x = random_rows(depth + 1, random);
        const Rows y = random_rows(depth + 1, random);
        Rows out(tile_size);
        wide().min_plus(out[0].value, in[0].value, x[0].value, y[0].value, depth);
        for (int a = 0; a < tile_size; ++a) {
            for (int b = 0; b < tile_size; ++b) {
                double wanted = at(in, a, b);
                for (int r = 0; r < depth; ++r) {
                    wanted = std::min(wanted, at(x, r, a) + at(y, r, b));
                }
                EXPECT_EQ(at(out, a, b), wanted);
            }
        }
        Rows in_place = in;
        wide().min_plus(in_place[0].value, in_place[0].value, x[0].value, y[0].value, depth);
        EXPECT_TRUE(same_bits(in_place, out));
    }
}

TEST_P(KernelsOf, MultiplyAddsUpInOrder)
{
    graphs::Random random(62);
    for (const int depth : {0, 1, 5, 64, 131}) {
        const Rows x = finite(random_rows(depth + 1, random));
        const Rows y = finite(random_rows(depth + 1, random));
        Rows out(tile_size);
        wide().multiply(out[0].value, x[0].value, y[0].value, depth);
        Rows plain(tile_size);
        plain_kernels.multiply(plain[0].value, x[0].value, y[0].value, depth);
        EXPECT_TRUE(same_bits(out, plain));
        for (int a = 0; a < tile_size; ++a) {
            for (int b = 0; b < tile_size; ++b) {
                double wanted = 0.0;
                for (int r = 0; r < depth; ++r) {
                    wanted += at(x, r, a) * at(y, r, b);
                }
                EXPECT_NEAR(at(out, a, b), wanted, 1e-13 * wanted);
            }
        }
    }
}

TEST_P(KernelsOf, DivideAddsUpInOrder)
{
    graphs::Random random(63);
    for (int round = 0; round < 20; ++round) {
        const Rows tile = random_rows(tile_size, random);
        const Rows weights = finite(random_rows(1, random));
        Rows sums = finite(random_rows(1, random));
        Rows plain = sums;
        Rows wanted = sums;
        wide().divide(sums[0].value, tile[0].value, weights[0].value);
        plain_kernels.divide(plain[0].value, tile[0].value, weights[0].value);
        EXPECT_TRUE(same_bits(sums, plain));
        for (int b = 0; b < tile_size; ++b) {
            for (int a = 0; a < tile_size; ++a) {
                wanted[0].value[b] += weights[0].value[a] / at(tile, a, b);
            }
            EXPECT_DOUBLE_EQ(sums[0].value[b], wanted[0].value[b]);
        }
    }
}

TEST_P(KernelsOf, CubeRootsAreRightOverAllFloats)
{
    std::vector<float> in{0.0F, -0.0F, -1.0F, -1e30F, 1.0F, 8.0F};
    // Every 10007th pattern of bits from the smallest to the largest float.
    for (std::uint32_t bits = 1; bits < 0x7F800000U; bits += 10007) {
        float value = 0.0F;
        std::memcpy(&value, &bits, sizeof value);
        in.push_back(value);
    }
    std::vector<double> out(in.size());
    std::vector<double> plain(in.size());
    wide().cube_roots(out.data(), in.data(), static_cast<int>(in.size()));
    plain_kernels.cube_roots(plain.data(), in.data(), static_cast<int>(in.size()));
    EXPECT_EQ(std::memcmp(out.data(), plain.data(), out.size() * sizeof(double)), 0);
    for (std::size_t i = 0; i < in.size(); ++i) {
        const double wanted = in[i] > 0.0F ? std::cbrt(double{in[i]}) : 0.0;
        ASSERT_NEAR(out[i], wanted, 1e-14 * wanted) << in[i];
    }
    EXPECT_EQ(out[4], 1.0);
    EXPECT_EQ(out[5], 2.0);
}

TEST_P(KernelsOf, HalfProductAddsUpInOrder)
{
    graphs::Random random(64);
    for (const int count : {0, 1, 15, 16, 17, 100}) {
        const std::size_t size = static_cast<std::size_t>(count);
        // One place further along, nothing is aligned.
        std::vector<float> column(size + 1);
        std::vector<double> x(size + 1);
        std::vector<double> sums(size + 1);
        for (std::size_t i = 0; i <= size; ++i) {
            column[i] = static_cast<float>(graphs::uniform(random) - 0.5);
            x[i] = graphs::uniform(random) - 0.5;
            sums[i] = graphs::uniform(random);
        }
        std::vector<double> plain = sums;
        std::vector<double> wanted = sums;
        double wanted_total = 0.0;
        for (std::size_t i = 1; i <= size; ++i) {
            wanted[i] += double{column[i]} * 0.7;
            wanted_total += double{column[i]} * x[i];
        }
        const double total =
            wide().half_product(sums.data() + 1, x.data() + 1, 0.7, column.data() + 1, count);
        const double plain_total = plain_kernels.half_product(plain.data() + 1, x.data() + 1, 0.7,
                                                              column.data() + 1, count);
        EXPECT_EQ(total, plain_total);
        EXPECT_EQ(sums, plain);
        EXPECT_NEAR(total, wanted_total, 1e-14 * count);
        for (std::size_t i = 0; i <= size; ++i) {
            EXPECT_DOUBLE_EQ(sums[i], wanted[i]);
        }
    }
}

/// Acts with the stack by so many bytes further down.
template <typename Action>
void with_stack_moved(std::size_t bytes, Action act)
{
    auto *const room = static_cast<volatile char *>(__builtin_alloca(bytes));
    room[0] = 0;
    act();
}

TEST_P(KernelsOf, NeedNoMoreAlignmentOfTheStackThanTheSystemGives)
{
    graphs::Random random(65);
    const Rows in = random_rows(tile_size, random);
    const Rows x = finite(random_rows(16, random));
    const Rows y = finite(random_rows(16, random));
    const std::vector<float> column(40, 0.5F);
    for (const std::size_t bytes : {16, 32, 48, 64}) {
        with_stack_moved(bytes, [&] {
            Rows out(tile_size);
            wide().min_plus(out[0].value, in[0].value, x[0].value, y[0].value, 16);
            wide().multiply(out[0].value, x[0].value, y[0].value, 16);
            wide().divide(out[0].value, in[0].value, x[0].value);
            std::vector<double> roots(column.size());
            wide().cube_roots(roots.data(), column.data(), 40);
            EXPECT_NEAR(roots[0], std::cbrt(0.5), 1e-14);
            std::vector<double> sums(column.size());
            EXPECT_EQ(
                wide().half_product(sums.data(), roots.data(), 2.0, column.data(), 40),
                plain_kernels.half_product(sums.data(), roots.data(), 2.0, column.data(), 40));
        });
    }
}

INSTANTIATE_TEST_SUITE_P(Widths, KernelsOf, testing::Values("plain", "vector16", "avx2", "avx512"),
                         [](const auto &width) { return std::string(width.param); });

TEST(Kernels, OfUnknownNamesAreNone)
{
    EXPECT_EQ(kernels_named("avx1024"), nullptr);
    EXPECT_EQ(kernels_named(""), nullptr);
}

} // namespace
