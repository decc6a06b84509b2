// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/connectome_options.h"

#include "host/commands/cleaning_options.h"
#include "host/commands/commands.h"
#include "host/commands/option_values.h"
#include "host/derivatives/bids_names.h"
#include "host/files/input_error.h"

namespace corvane
{

namespace
{

QStringList relationshipNames()
{
    QStringList names;
    for (const RelationshipFacts &facts : relationshipFacts)
        names += QLatin1String(facts.option);
    return names;
}

/// The measures of a list with commas, each once.
std::vector<Relationship> relationships(const QString &text)
{
    std::vector<Relationship> chosen;
    for (const QString &name : text.split(QLatin1Char(','))) {
        const auto found = std::find_if(
            std::begin(relationshipFacts), std::end(relationshipFacts),
            [&](const RelationshipFacts &facts) { return name == QLatin1String(facts.option); });
        if (found == std::end(relationshipFacts))
            throw UsageError(
                QStringLiteral("--measure: found %1, expected one or more of: %2")
                    .arg(quoted(name), relationshipNames().join(QStringLiteral(", "))));
        if (std::find(chosen.begin(), chosen.end(), found->relationship) == chosen.end())
            chosen.push_back(found->relationship);
    }
    return chosen;
}

bool wantsShrinkage(const QCommandLineParser &parser,
                    const std::vector<Relationship> &relationships)
{
    const QString option = QStringLiteral("shrinkage");
    if (!parser.isSet(option))
        return false;
    if (parser.value(option) != QLatin1String("ledoit-wolf"))
        throw UsageError(QStringLiteral("--shrinkage: found %1, expected ledoit-wolf")
                             .arg(quoted(parser.value(option))));
    if (std::none_of(relationships.begin(), relationships.end(), [](Relationship relationship) {
            return factsOf(relationship).takesShrinkage;
        }))
        throw UsageError(QStringLiteral("--shrinkage is for partial, partial-tessera and "
                                        "covariance, none of which is asked for"));
    return true;
}

void requireTogether(const QCommandLineParser &parser, const char *option, const char *needed)
{
    if (parser.isSet(QLatin1String(option)) && !parser.isSet(QLatin1String(needed)))
        throw UsageError(QStringLiteral("--%1 goes with --%2, which is missing")
                             .arg(QLatin1String(option), QLatin1String(needed)));
}

/// A window's weights make no ranks and no shrinkage, and the plugin's measure takes none.
void requireUntapered(const PartsRequest &parts, const ConnectomeRequest &request)
{
    if (parts.taper == signals::Taper::none)
        return;
    for (const Relationship relationship : request.relationships)
        if (relationship == Relationship::Spearman ||
            relationship == Relationship::PartialTessera || request.shrink)
            throw UsageError(QStringLiteral("--taper goes with pearson, fisherz, partial and "
                                            "covariance, and without --shrinkage"));
}

PartsRequest partsRequest(const QCommandLineParser &parser)
{
    requireTogether(parser, "step", "window");
    requireTogether(parser, "window", "step");
    requireTogether(parser, "taper", "window");
    for (const char *option : {"delay", "per-interval", "centre-intervals"})
        requireTogether(parser, option, "events");
    PartsRequest parts;
    parts.window = numberValue(parser, "window", 0);
    parts.step = numberValue(parser, "step", 0).value_or(0);
    parts.taper = chosenValue(parser, QStringLiteral("taper"), taperNames);
    parts.delay = *numberValue(parser, "delay", 0);
    parts.perInterval = parser.isSet(QStringLiteral("per-interval"));
    parts.centreIntervals = parser.isSet(QStringLiteral("centre-intervals"));
    return parts;
}

std::optional<double> repetitionTime(const QCommandLineParser &parser)
{
    const std::optional<double> seconds = numberValue(parser, "tr", 0);
    if (seconds && *seconds <= 0)
        throw UsageError(QStringLiteral("--tr: found %1, expected seconds above 0")
                             .arg(quoted(parser.value(QStringLiteral("tr")))));
    return seconds;
}

std::optional<double> dvarsScale(const QCommandLineParser &parser, const CleaningRequest &cleaning)
{
    const std::optional<double> scale = numberValue(parser, "dvars-scale", 0);
    if (!scale)
        return scale;
    if (*scale <= 0)
        throw UsageError(QStringLiteral("--dvars-scale: found %1, expected a number above 0")
                             .arg(quoted(parser.value(QStringLiteral("dvars-scale")))));
    if (cleaning.settings.standardize != signals::Standardize::none)
        throw UsageError(QStringLiteral("--dvars-scale is for series in the unit of the run, "
                                        "--standardize gives them another"));
    return scale;
}

} // namespace

QList<QCommandLineOption> connectomeSettingOptions()
{
    const auto seconds = QStringLiteral("seconds");
    return {
        {QStringLiteral("min-coverage"),
         QStringLiteral("Nodes with a smaller share of their voxels have no values."),
         QStringLiteral("share"), QStringLiteral("0.5")},
        {QStringLiteral("tr"),
         QStringLiteral("The repetition time, instead of the one in the header."), seconds},
        {QStringLiteral("dvars-scale"),
         QStringLiteral("For DVARS of the node series on the page: scales the median of the series "
                        "before cleaning to this, often 1000; as stored without it."),
         QStringLiteral("median")},
        {QStringLiteral("measure"),
         QStringLiteral("One or more, with commas: %1.")
             .arg(relationshipNames().join(QStringLiteral(", "))),
         QStringLiteral("names"), QStringLiteral("pearson")},
        {QStringLiteral("shrinkage"),
         QStringLiteral("Shrinks the covariance of partial, partial-tessera and covariance: "
                        "ledoit-wolf."),
         QStringLiteral("name")},
        {QStringLiteral("window"), QStringLiteral("Also a matrix for each window of this length."),
         seconds},
        {QStringLiteral("step"), QStringLiteral("From window to window."), seconds},
        {QStringLiteral("taper"),
         QStringLiteral("How volumes of a window weigh: none, hann or gauss."),
         QStringLiteral("name"), QStringLiteral("none")},
        {QStringLiteral("delay"), QStringLiteral("Conditions begin and end later by this."),
         seconds, QStringLiteral("0")},
        {QStringLiteral("per-interval"),
         QStringLiteral("Also a matrix for each interval of a condition.")},
        {QStringLiteral("centre-intervals"),
         QStringLiteral("Each interval on its own mean, instead of one for the condition.")},
    };
}

ConnectomeRequest connectomeSettings(const QCommandLineParser &parser)
{
    ConnectomeRequest request;
    request.repetitionTime = repetitionTime(parser);
    request.minCoverage = *numberValue(parser, "min-coverage", 0);
    if (request.minCoverage > 1)
        throw UsageError(
            QStringLiteral("--min-coverage: found %1, expected 0 to 1").arg(request.minCoverage));
    request.cleaning = cleaningSettings(parser);
    request.dvarsScale = dvarsScale(parser, request.cleaning);
    request.relationships = relationships(parser.value(QStringLiteral("measure")));
    request.shrink = wantsShrinkage(parser, request.relationships);
    request.parts = partsRequest(parser);
    requireUntapered(request.parts, request);
    return request;
}

void requireAtlasName(const QString &name)
{
    if (name.isEmpty() || bidsLabel(name) != name)
        throw UsageError(QStringLiteral("--atlas-name: found %1, expected letters and digits")
                             .arg(quoted(name)));
}

} // namespace corvane
