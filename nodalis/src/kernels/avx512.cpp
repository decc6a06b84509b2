// SPDX-License-Identifier: GPL-3.0-or-later
#define VECTOR_BYTES 64
#define BLOCK_ROWS 8
#define BLOCK_VECTORS 2
#define KERNELS avx512_kernels
#define KERNELS_NAME "avx512"
#include "tile_kernels.inc"
