// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

/// @file
/// The settings of a compute. A `Subject` holds them as the numbers that they have here; elsewhere
/// they go by their names.

enum class ConnectivityMeasure { Correlation = 1, PartialCorrelation = 2 };

/// Which signs of a matrix stay. The dialog offers the first three.
enum class MatrixValues { Absolute = 0, Positive = 1, Negative = 2, Signed = 3 };

/// A value of a setting with its name on the command line and in files.
template <typename Value>
struct NamedValue {
    Value value;
    const char *name;
};

inline constexpr NamedValue<ConnectivityMeasure> measureNames[] = {
    {ConnectivityMeasure::Correlation, "correlation"},
    {ConnectivityMeasure::PartialCorrelation, "partial-correlation"}};

inline constexpr NamedValue<MatrixValues> matrixValuesNames[] = {
    {MatrixValues::Absolute, "absolute"},
    {MatrixValues::Positive, "positive"},
    {MatrixValues::Negative, "negative"},
    {MatrixValues::Signed, "signed"}};

/// The name of a value in one of the lists above, null for a value that it does not have.
template <typename Value, std::size_t Count>
constexpr const char *nameOf(Value value, const NamedValue<Value> (&names)[Count])
{
    for (const NamedValue<Value> &entry : names) {
        if (entry.value == value)
            return entry.name;
    }
    return nullptr;
}
