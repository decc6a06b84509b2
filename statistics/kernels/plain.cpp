// SPDX-License-Identifier: GPL-3.0-or-later
// Vectors that every processor of the target has, or that the compiler takes apart.
#define VECTOR_BYTES 16
#define BLOCK_VECTORS 2
#define KERNELS plain_kernels
#define KERNELS_NAME "plain"
#include "tile_kernels.inc"
