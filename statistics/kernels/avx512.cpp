// SPDX-License-Identifier: GPL-3.0-or-later
#define VECTOR_BYTES 64
#define BLOCK_VECTORS 3
#define KERNELS avx512_kernels
#define KERNELS_NAME "avx512"
#include "tile_kernels.inc"
