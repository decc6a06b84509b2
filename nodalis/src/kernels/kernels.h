// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// \file
/// The inner loops, on tiles of 16 x 16 doubles. They exist in standard C++, and once per width of
/// the processor's vector units where the compiler has such vectors; all do the same operations on
/// each element in the same order, so that their results agree bit by bit.
///
/// The wide ones are compiled with flags that nothing else has. Hence raw pointers and neither
/// templates nor inline functions of other headers in their files: those would be emitted as weak
/// symbols, and the linker could pick the wide copy for code that runs everywhere.

namespace nodalis::detail
{

/// Rows and columns of a tile, columns of a strip.
constexpr int tile_size = 16;

/// Unless said otherwise pointers are aligned to 64 bytes. A tile is stored row by row. A strip is
/// a list of `depth` rows of tile_size values each.
struct Kernels {
    const char *name;

    /// out(a, b) = min(in(a, b), min over r of x[r](a) + y[r](b)) for strips x and y; out may be
    /// in.
    void (*min_plus)(double *out, const double *in, const double *x, const double *y, int depth);

    /// out(a, b) = sum over r of x[r](a) * y[r](b) for strips x and y, in ascending order of r.
    void (*multiply)(double *out, const double *x, const double *y, int depth);

    /// sums(b) += weights(a) / tile(a, b) for a in ascending order.
    void (*divide)(double *sums, const double *tile, const double *weights);

    /// out(i) = in(i)^(1/3) to within 1e-14 where in(i) > 0, else 0. Not the C library's, which
    /// differs between platforms and takes one number at a time. No alignment needed.
    void (*cube_roots)(double *out, const float *in, int count);

    /// sums(i) += column(i) * factor for i below count; returns the sum of column(i) * x(i), added
    /// up in tile_size interleaved parts. Pointers need no alignment.
    double (*half_product)(double *sums, const double *x, double factor, const float *column,
                           int count);
};

extern const Kernels plain_kernels;
extern const Kernels vector16_kernels;
extern const Kernels avx2_kernels;
extern const Kernels avx512_kernels;

/// The widest kernels that this processor runs. The environment variable NODALIS_KERNELS can name
/// others ("plain", "vector16", "avx2"), for comparing them.
const Kernels &kernels();

/// The kernels of that name, or null if this processor or build lacks them.
const Kernels *kernels_named(const char *name);

} // namespace nodalis::detail
