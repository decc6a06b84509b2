// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/compute_settings.h"
#include "host/commands/commands.h"

#include <QCommandLineParser>
#include <optional>

/// @file
/// The values of options, checked.

namespace corvane
{

/// A finite number of `least` or more; unset without the option. Throws UsageError.
std::optional<double> numberValue(const QCommandLineParser &parser, const char *option,
                                  double least);

/// Likewise a whole number.
std::optional<qint64> wholeValue(const QCommandLineParser &parser, const char *option,
                                 qint64 least);

template <typename Value, std::size_t Count>
QStringList valueNames(const NamedValue<Value> (&values)[Count])
{
    QStringList names;
    for (const NamedValue<Value> &entry : values)
        names += QLatin1String(entry.name);
    return names;
}

/// The value of that name, of those that an option may take. Throws UsageError.
template <typename Value, std::size_t Count>
Value valueNamed(const QString &name, const QString &option,
                 const NamedValue<Value> (&values)[Count])
{
    for (const NamedValue<Value> &entry : values) {
        if (name == QLatin1String(entry.name))
            return entry.value;
    }
    throw UsageError(QStringLiteral("--%1: found \"%2\", expected one of: %3")
                         .arg(option, name, valueNames(values).join(QStringLiteral(", "))));
}

/// The value that an option gives, likewise.
template <typename Value, std::size_t Count>
Value chosenValue(const QCommandLineParser &parser, const QString &option,
                  const NamedValue<Value> (&values)[Count])
{
    return valueNamed(parser.value(option), option, values);
}

} // namespace corvane
