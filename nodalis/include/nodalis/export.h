// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// \file
/// NODALIS_API marks what the library exports; everything else stays inside.
///
/// NODALIS_ABI names how this translation unit's Eigen aligns and allocates. A matrix made on one
/// side of the library's border is freed on the other, so both sides must agree; as part of every
/// function's name a disagreement (a client built with -mavx, or with a sanitizer the library
/// lacks) is an unresolved symbol at link time instead of a crash at run time.

#include <Eigen/Core>

#if defined(NODALIS_STATIC)
#define NODALIS_API
#elif defined(_WIN32)
#if defined(NODALIS_BUILDING)
#define NODALIS_API __declspec(dllexport)
#else
#define NODALIS_API __declspec(dllimport)
#endif
#else
#define NODALIS_API __attribute__((visibility("default")))
#endif

#define NODALIS_ABI_PASTE(align, plain_malloc) eigen_align_##align##_malloc_##plain_malloc
#define NODALIS_ABI_NAME(align, plain_malloc) NODALIS_ABI_PASTE(align, plain_malloc)
#define NODALIS_ABI NODALIS_ABI_NAME(EIGEN_MAX_ALIGN_BYTES, EIGEN_MALLOC_ALREADY_ALIGNED)
