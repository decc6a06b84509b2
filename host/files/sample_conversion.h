// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/nifti_header.h"

namespace corvane
{

/// Whether every value of the file is a whole number of 16 bits with sign, so that toShort keeps
/// it: unscaled samples of 8 bits, or of 16 bits with sign.
bool fitsShort(const NiftiHeader &header);

/// The values of samples as NiftiStream::read gives them. `header` tells their kind and scaling;
/// scaling is computed in double precision.
void toShort(const NiftiHeader &header, const void *samples, qint64 count, short *values);
void toFloat(const NiftiHeader &header, const void *samples, qint64 count, float *values);
void toDouble(const NiftiHeader &header, const void *samples, qint64 count, double *values);

} // namespace corvane
