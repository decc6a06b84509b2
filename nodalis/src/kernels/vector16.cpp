// SPDX-License-Identifier: GPL-3.0-or-later
// Vectors that every processor of the target has, or that the compiler takes apart.
#define VECTOR_BYTES 16
#define BLOCK_ROWS 4
#define BLOCK_VECTORS 2
#define KERNELS vector16_kernels
#define KERNELS_NAME "vector16"
#include "tile_kernels.inc"
