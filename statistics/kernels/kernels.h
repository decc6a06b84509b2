// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// \file
/// The inner loops of permutation tests, on panels of 24 edges and batches of four rearrangements.
/// They exist once per width of the processor's vector units; all widths do the same operations on
/// each element in the same order, so that their results agree bit by bit.
///
/// The wide ones are compiled with flags that nothing else has. Hence raw pointers and neither
/// templates nor inline functions of other headers in their files: those would be emitted as weak
/// symbols, and the linker could pick the wide copy for code that runs everywhere.

namespace statistics::detail
{

/// Edges of a panel, rearrangements of a batch.
constexpr int panel_size = 24;
constexpr int batch_size = 4;
/// Values of a panel for each rearrangement of a batch, one rearrangement after the other.
constexpr int tile_size = batch_size * panel_size;

/// Pointers to panels and tiles are aligned to 64 bytes.
struct Kernels {
    const char *name;

    /// out(p, e) = sum over r of weights[r](p) * panel[r](e), in ascending order of r; rows of
    /// `depth` lists of batch_size and of panel_size values.
    void (*multiply)(double *out, const double *weights, const double *panel, int depth);

    /// t = root_df * x0 / sqrt(rest), rest = total - x0^2 - x1^2 - ..., at least floor; x are
    /// `tiles` tiles of products, total and floor are of the panel's edges.
    void (*t_values)(double *t, const double *x, int tiles, const double *total,
                     const double *floor, double root_df);

    /// F = scale * (x0^2 + .. of `tested` tiles) / rest, with the rest of all tiles as above.
    void (*f_values)(double *f, const double *x, int tested, int tiles, const double *total,
                     const double *floor, double scale);
};

extern const Kernels plain_kernels;
extern const Kernels avx2_kernels;
extern const Kernels avx512_kernels;

/// The widest kernels that this processor runs. The environment variable STATISTICS_KERNELS can
/// name narrower ones, for comparing them.
const Kernels &kernels();

/// The kernels of that name ("plain", "avx2", "avx512"), or null if this processor or build lacks
/// them.
const Kernels *kernels_named(const char *name);

} // namespace statistics::detail
