// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/run_filter_options.h"

#include "host/commands/commands.h"
#include "host/files/input_error.h"
#include "host/files/text_check.h"

#include <algorithm>

namespace corvane
{

namespace
{

/// An option of labels, and what may stand before them.
struct LabelOption {
    const char *option;
    const char *prefix;
    QStringList RunFilter::*labels;
};

constexpr LabelOption labelOptions[] = {{"participant-label", "sub-", &RunFilter::participants},
                                        {"session-id", "ses-", &RunFilter::sessions},
                                        {"session-label", "ses-", &RunFilter::sessions},
                                        {"task-id", "task-", &RunFilter::tasks},
                                        {"task-label", "task-", &RunFilter::tasks},
                                        {"space", "space-", &RunFilter::spaces}};

bool takesLabels(const QString &option)
{
    return std::any_of(std::begin(labelOptions), std::end(labelOptions),
                       [&](const LabelOption &known) {
                           return option == QLatin1String("--") + QLatin1String(known.option);
                       });
}

/// "--participant_label" as "--participant-label"; a value behind "=" stays as it is.
QString withDashes(const QString &option)
{
    const int end = option.indexOf(QLatin1Char('='));
    QString name = end < 0 ? option : option.left(end);
    return name.replace(QLatin1Char('_'), QLatin1Char('-')) + option.mid(name.size());
}

bool isOption(const QString &argument)
{
    return argument.startsWith(QLatin1Char('-')) && argument.size() > 1;
}

/// The labels of an option, without their prefix.
QStringList labelsOf(const QCommandLineParser &parser, const LabelOption &option)
{
    QStringList labels;
    for (QString label : parser.values(QLatin1String(option.option))) {
        if (label.startsWith(QLatin1String(option.prefix)))
            label = label.mid(int(qstrlen(option.prefix)));
        if (label.isEmpty() || label.contains(QLatin1Char('/')) || nameFault(label))
            throw UsageError(QStringLiteral("--%1: found %2, expected a label")
                                 .arg(QLatin1String(option.option), quoted(label)));
        labels += label;
    }
    return labels;
}

} // namespace

QStringList withLabelWords(const QStringList &arguments, const QStringList &foreign)
{
    QStringList words;
    QString labels; // the option whose words these are
    for (const QString &argument : arguments) {
        // Behind an option of another program stands its word, also one that looks like an option.
        const bool isForeign = !words.isEmpty() && foreign.contains(words.last());
        if (!isForeign && isOption(argument)) {
            labels = withDashes(argument);
            words += labels;
            if (!takesLabels(labels))
                labels.clear();
        } else if (!isForeign && !labels.isEmpty()) {
            if (words.last() ==
                labels) // without a word it stays as it is, for the parser to refuse
                words.removeLast();
            words += labels + QLatin1Char('=') + argument;
        } else {
            words += argument;
        }
    }
    return words;
}

QStringList runFilterOptionNames()
{
    QStringList names{QStringLiteral("bids-filter-file")};
    for (const LabelOption &option : labelOptions)
        names += QLatin1String(option.option);
    return names;
}

void addRunFilterOptions(QCommandLineParser &parser)
{
    for (const LabelOption &option : labelOptions)
        parser.addOption({QLatin1String(option.option),
                          QStringLiteral("Only runs with one of these labels, with or without "
                                         "\"%1\".")
                              .arg(QLatin1String(option.prefix)),
                          QStringLiteral("labels")});
    parser.addOption({QStringLiteral("bids-filter-file"),
                      QStringLiteral("Only runs that fit the entry \"bold\" of this JSON file."),
                      QStringLiteral("file")});
}

RunFilter runFilterOf(const QCommandLineParser &parser)
{
    RunFilter filter;
    for (const LabelOption &option : labelOptions)
        filter.*option.labels += labelsOf(parser, option);
    filter.filterFile = parser.value(QStringLiteral("bids-filter-file"));
    return filter;
}

} // namespace corvane
