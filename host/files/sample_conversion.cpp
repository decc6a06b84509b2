// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/sample_conversion.h"

#include <algorithm>

namespace corvane
{

namespace
{

template <typename Sample, typename Value>
void convertKind(const NiftiHeader &header, const void *samples, qint64 count, Value *values)
{
    const auto *const stored = static_cast<const Sample *>(samples);
    if (header.scaled) {
        const double slope = header.slope;
        const double intercept = header.intercept;
        std::transform(stored, stored + count, values, [=](Sample sample) {
            return static_cast<Value>(slope * static_cast<double>(sample) + intercept);
        });
    } else {
        std::transform(stored, stored + count, values,
                       [](Sample sample) { return static_cast<Value>(sample); });
    }
}

template <typename Value>
void convert(const NiftiHeader &header, const void *samples, qint64 count, Value *values)
{
    switch (header.kind) {
    case SampleKind::UInt8:
        return convertKind<quint8>(header, samples, count, values);
    case SampleKind::Int8:
        return convertKind<qint8>(header, samples, count, values);
    case SampleKind::Int16:
        return convertKind<qint16>(header, samples, count, values);
    case SampleKind::UInt16:
        return convertKind<quint16>(header, samples, count, values);
    case SampleKind::Int32:
        return convertKind<qint32>(header, samples, count, values);
    case SampleKind::UInt32:
        return convertKind<quint32>(header, samples, count, values);
    case SampleKind::Int64:
        return convertKind<qint64>(header, samples, count, values);
    case SampleKind::UInt64:
        return convertKind<quint64>(header, samples, count, values);
    case SampleKind::Float32:
        return convertKind<float>(header, samples, count, values);
    case SampleKind::Float64:
        return convertKind<double>(header, samples, count, values);
    }
}

} // namespace

bool fitsShort(const NiftiHeader &header)
{
    return !header.scaled && (header.kind == SampleKind::UInt8 || header.kind == SampleKind::Int8 ||
                              header.kind == SampleKind::Int16);
}

void toShort(const NiftiHeader &header, const void *samples, qint64 count, short *values)
{
    Q_ASSERT(fitsShort(header));
    switch (header.kind) {
    case SampleKind::UInt8:
        return convertKind<quint8>(header, samples, count, values);
    case SampleKind::Int8:
        return convertKind<qint8>(header, samples, count, values);
    default:
        return convertKind<qint16>(header, samples, count, values);
    }
}

void toFloat(const NiftiHeader &header, const void *samples, qint64 count, float *values)
{
    convert(header, samples, count, values);
}

void toDouble(const NiftiHeader &header, const void *samples, qint64 count, double *values)
{
    convert(header, samples, count, values);
}

} // namespace corvane
