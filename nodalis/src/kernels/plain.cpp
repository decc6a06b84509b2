// SPDX-License-Identifier: GPL-3.0-or-later
// The kernels in standard C++, for compilers without vectors of their own, and as what the others
// are compared with.
#include "kernels.h"

#include <cstdint>
#include <cstring>

namespace nodalis::detail
{
namespace
{

void min_plus(double *out, const double *in, const double *x, const double *y, int depth)
{
    for (int a = 0; a < tile_size; ++a) {
        double best[tile_size];
        std::memcpy(best, in + a * tile_size, sizeof best);
        for (int r = 0; r < depth; ++r) {
            const double *const to = y + r * tile_size;
            const double from = x[r * tile_size + a];
            for (int b = 0; b < tile_size; ++b) {
                const double sum = from + to[b];
                best[b] = sum < best[b] ? sum : best[b];
            }
        }
        std::memcpy(out + a * tile_size, best, sizeof best);
    }
}

void multiply(double *out, const double *x, const double *y, int depth)
{
    for (int a = 0; a < tile_size; ++a) {
        double sums[tile_size] = {};
        for (int r = 0; r < depth; ++r) {
            const double *const right = y + r * tile_size;
            const double left = x[r * tile_size + a];
            for (int b = 0; b < tile_size; ++b) {
                sums[b] += left * right[b];
            }
        }
        std::memcpy(out + a * tile_size, sums, sizeof sums);
    }
}

void divide(double *sums, const double *tile, const double *weights)
{
    for (int a = 0; a < tile_size; ++a) {
        for (int b = 0; b < tile_size; ++b) {
            sums[b] += weights[a] / tile[a * tile_size + b];
        }
    }
}

/// As in tile_kernels.inc, one number at a time.
double cube_root(double x)
{
    std::int64_t bits = 0;
    std::memcpy(&bits, &x, sizeof bits);
    const auto upper = static_cast<std::int32_t>(bits >> 32);
    const double third = upper * (1.0 / 3.0) + 715094163.0;
    bits = static_cast<std::int64_t>(static_cast<std::int32_t>(third)) << 32;
    double root = 0.0;
    std::memcpy(&root, &bits, sizeof root);
    for (int step = 0; step < 2; ++step) {
        const double cube = root * root * root;
        root = root * (cube + 2.0 * x) / (2.0 * cube + x);
    }
    return root;
}

void cube_roots(double *out, const float *in, int count)
{
    for (int i = 0; i < count; ++i) {
        out[i] = in[i] > 0.0F ? cube_root(in[i]) : 0.0;
    }
}

double half_product(double *sums, const double *x, double factor, const float *column, int count)
{
    double products[tile_size] = {};
    int i = 0;
    for (; i + tile_size <= count; i += tile_size) {
        for (int p = 0; p < tile_size; ++p) {
            const double weight = column[i + p];
            sums[i + p] += weight * factor;
            products[p] += weight * x[i + p];
        }
    }
    double total = 0.0;
    for (const double product : products) {
        total += product;
    }
    for (; i < count; ++i) {
        const double weight = column[i];
        sums[i] += weight * factor;
        total += weight * x[i];
    }
    return total;
}

} // namespace

const Kernels plain_kernels = {"plain", min_plus, multiply, divide, cube_roots, half_product};

} // namespace nodalis::detail
