// SPDX-License-Identifier: GPL-3.0-or-later
#define VECTOR_BYTES 32
#define BLOCK_VECTORS 2
#define KERNELS avx2_kernels
#define KERNELS_NAME "avx2"
#include "tile_kernels.inc"
