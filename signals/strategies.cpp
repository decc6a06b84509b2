// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/strategies.h"

#include <algorithm>

#include "signals/text.h"

namespace signals
{

namespace
{

using Index = Eigen::Index;
using Names = std::vector<std::string>;

constexpr std::string_view columns_prefix = "columns:";
constexpr std::size_t components_of_a_mask = 5;

void append(Names &names, const Names &more)
{
    names.insert(names.end(), more.begin(), more.end());
}

Names expanded(const std::string &signal, Expansion expansion)
{
    Names names = {signal};
    if (expansion != Expansion::plain) {
        names.push_back(signal + "_derivative1");
    }
    if (expansion == Expansion::full) {
        append(names, {signal + "_power2", signal + "_derivative1_power2"});
    }
    return names;
}

bool takes_columns(std::string_view strategy)
{
    return strategy.substr(0, columns_prefix.size()) == columns_prefix;
}

const Strategy &strategy_named(const std::string &name)
{
    Names known;
    for (const Strategy &strategy : strategies()) {
        if (strategy.name == name || (takes_columns(strategy.name) && takes_columns(name))) {
            return strategy;
        }
        known.emplace_back(strategy.name);
    }
    throw UsageError("there is no strategy \"" + name + "\": expected one of " + listed(known));
}

void require(const ConfoundsTable &table, const StrategyRequest &request)
{
    if (static_cast<Index>(table.names.size()) != table.values.cols()) {
        throw Error(counted(static_cast<Index>(table.names.size()), "name") + " of " +
                    counted(table.values.cols(), "column") + ": expected as many");
    }
    Names sorted = table.names;
    std::sort(sorted.begin(), sorted.end());
    const auto twice = std::adjacent_find(sorted.begin(), sorted.end());
    if (twice != sorted.end()) {
        throw Error("two columns are called " + *twice);
    }
    if (table.values.rows() != request.volumes) {
        const Index rows = table.values.rows();
        const bool is_short = rows < request.volumes && !table.names.empty();
        throw Error((is_short ? "column " + table.names.front() + " ends before row " +
                                    std::to_string(rows) + " (from 0): "
                              : std::string()) +
                    "the table has " + counted(rows, "row") + ": expected " +
                    std::to_string(request.volumes) + ", one for each volume of the run");
    }
    if (request.censor.size() > 0 && request.censor.size() != request.volumes) {
        throw Error("the list of volumes to leave out has " +
                    counted(request.censor.size(), "row") + ": expected " +
                    std::to_string(request.volumes) + ", one for each volume of the run");
    }
    if (request.components && *request.components < 1) {
        throw UsageError("at most " + counted(*request.components, "component") +
                         ": expected 1 or more");
    }
    if (request.dummy_scans &&
        (*request.dummy_scans < 0 || *request.dummy_scans > request.volumes)) {
        throw UsageError(std::to_string(*request.dummy_scans) +
                         " volumes at the start are to go: expected 0 to " +
                         std::to_string(request.volumes));
    }
}

Names motion_or_parameters(const ConfoundsTable &table, const Names &signals_of_table)
{
    if (!is_headerless(table) || signals_of_table != motion_columns()) {
        return signals_of_table;
    }
    return {"p1", "p2", "p3", "p4", "p5", "p6"};
}

/// The columns that the patterns behind "columns:" stand for.
Names matching_columns(const ConfoundsTable &table, const std::string &patterns)
{
    Names found;
    Names missing;
    std::size_t start = 0;
    while (start <= patterns.size()) {
        const std::size_t end = std::min(patterns.find(',', start), patterns.size());
        std::string pattern = patterns.substr(start, end - start);
        start = end + 1;
        if (pattern.empty()) {
            throw UsageError("an empty name in \"columns:" + patterns +
                             "\": expected names of columns with commas between them");
        }
        const bool any_ending = pattern.back() == '*';
        const std::size_t before = found.size();
        std::copy_if(table.names.begin(), table.names.end(), std::back_inserter(found),
                     [&](const std::string &name) {
                         return any_ending ? name.compare(0, pattern.size() - 1, pattern, 0,
                                                          pattern.size() - 1) == 0
                                           : name == pattern;
                     });
        if (found.size() == before) {
            missing.push_back(pattern);
        }
    }
    if (!missing.empty()) {
        throw Error("the table lacks the columns " + listed(missing));
    }
    return found;
}

Names cosines_of(const ConfoundsTable &table, const Strategy &strategy, Order order)
{
    if (strategy.cosines == Cosines::none ||
        (strategy.cosines == Cosines::not_butterworth && order == Order::butterworth)) {
        return {};
    }
    Names names;
    std::copy_if(table.names.begin(), table.names.end(), std::back_inserter(names), is_cosine);
    return names;
}

/// The first \p most of a mask's components, of which there must be one.
Names first_components(const ConfoundsTable &table, const std::string &mask, std::size_t most)
{
    Names names = anatomical_components(table, mask);
    if (names.empty()) {
        throw Error("the table has no anatomical components of the mask " + mask);
    }
    names.resize(std::min(names.size(), most));
    return names;
}

Names components_of(const ConfoundsTable &table, const Strategy &strategy,
                    std::optional<Index> limit, Names &notes)
{
    const std::size_t most = limit ? static_cast<std::size_t>(*limit) : table.names.size();
    if (strategy.components == Components::combined) {
        return first_components(table, "combined", most);
    }
    Names names;
    if (strategy.components == Components::of_each_mask) {
        for (const char *mask : {"CSF", "WM"}) {
            const std::size_t wanted = std::min(most, components_of_a_mask);
            const Names found = first_components(table, mask, wanted);
            if (found.size() < wanted) {
                notes.push_back("of the mask " + std::string(mask) + " there are only " +
                                counted(static_cast<Index>(found.size()), "component"));
            }
            append(names, found);
        }
    }
    return names;
}

/// Names of the columns, each once, in the order of their bytes.
Names chosen_columns(const ConfoundsTable &table, const Strategy &strategy,
                     const StrategyRequest &request, Names &notes)
{
    Names names;
    if (takes_columns(strategy.name)) {
        names = matching_columns(table, request.strategy.substr(columns_prefix.size()));
    }
    for (const Term &term : strategy.terms) {
        for (const std::string &signal : motion_or_parameters(table, term.signals_of_table)) {
            append(names, expanded(signal, term.expansion));
        }
    }
    append(names, components_of(table, strategy, request.components, notes));
    if (strategy.components != Components::none &&
        cosines_of(table, strategy, Order::joint).empty()) {
        throw Error("the table has no columns cosine00, ..: the strategy " +
                    std::string(strategy.name) +
                    " needs them, since components are made from series without drift");
    }
    append(names, cosines_of(table, strategy, request.order));
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

Regressors regressors_of(const ConfoundsTable &table, const Names &names)
{
    Regressors regressors;
    regressors.names = names;
    regressors.values.resize(table.values.rows(), static_cast<Index>(names.size()));
    for (Index column = 0; column < regressors.values.cols(); ++column) {
        regressors.values.col(column) = complete_column(table, names[column]);
    }
    return regressors;
}

Thresholds thresholds_of(const Strategy &strategy, const StrategyRequest &request)
{
    Thresholds thresholds = strategy.thresholds;
    thresholds.fd = request.fd_threshold.value_or(thresholds.fd);
    thresholds.std_dvars = request.dvars_threshold.value_or(thresholds.std_dvars);
    thresholds.min_segment = request.min_segment.value_or(thresholds.min_segment);
    return thresholds;
}

Flags first_volumes(Index volumes, Index count)
{
    Flags flags = Flags::Constant(volumes, false);
    flags.head(count).setConstant(true);
    return flags;
}

Eigen::ArrayXd standardised_dvars(const ConfoundsTable &table)
{
    const std::optional<Index> column = column_named(table, "std_dvars");
    return column ? Eigen::ArrayXd(table.values.col(*column)) : Eigen::ArrayXd();
}

Volumes volumes_of(const ConfoundsTable &table, const StrategyRequest &request,
                   const Thresholds &thresholds)
{
    Volumes volumes = Volumes::all_of(request.volumes);
    volumes.fd = displacement_of(table, request.motion_order);
    volumes.non_steady = request.dummy_scans ? first_volumes(request.volumes, *request.dummy_scans)
                                             : non_steady_volumes(table);
    const Flags found = outliers(volumes.fd, standardised_dvars(table), thresholds);
    if (found.size() > 0) {
        volumes.censored = found;
    }
    if (request.censor.size() > 0) {
        volumes.censored = volumes.censored || request.censor;
    }
    return volumes;
}

/// What is wanted and not there, all of it.
void require_columns(const ConfoundsTable &table, const Strategy &strategy, const Names &names,
                     const Thresholds &thresholds, bool knows_fd)
{
    Names missing;
    std::copy_if(names.begin(), names.end(), std::back_inserter(missing),
                 [&](const std::string &name) { return !column_named(table, name); });
    if (thresholds.fd > 0 && !knows_fd) {
        missing.emplace_back("framewise_displacement");
    }
    if (thresholds.std_dvars > 0 && !column_named(table, "std_dvars")) {
        missing.emplace_back("std_dvars");
    }
    if (!missing.empty()) {
        throw Error("the strategy " + std::string(strategy.name) +
                    " needs columns that the table lacks: " + listed(missing));
    }
}

/// Motion parameters of other packages come without the order of their columns.
void require_order(const ConfoundsTable &table, const Thresholds &thresholds, bool knows_fd,
                   Names &notes)
{
    if (!is_headerless(table) || knows_fd) {
        return;
    }
    if (thresholds.fd > 0) {
        throw UsageError("an FD threshold for motion parameters without a header needs the order "
                         "of their columns: fsl, spm or afni");
    }
    notes.emplace_back("FD is not known: the order of the motion parameters is not given");
}

} // namespace

const std::vector<Strategy> &strategies()
{
    static const Names motion = motion_columns();
    static const Names tissues = {"csf", "white_matter"};
    static const Names all_means = {"csf", "global_signal", "white_matter"};
    constexpr Expansion plain = Expansion::plain;
    constexpr Expansion derivatives = Expansion::derivatives;
    constexpr Expansion full = Expansion::full;
    static const std::vector<Strategy> table = {
        {"none", "nothing, not even a trend", "", {}, Cosines::none, Components::none, {}},
        {"simple",
         "cosines, motion 24, csf, white_matter",
         "",
         {{motion, full}, {tissues, plain}},
         Cosines::all_orders,
         Components::none,
         {}},
        {"simple-gsr",
         "cosines, motion 24, csf, white_matter, global_signal",
         "",
         {{motion, full}, {all_means, plain}},
         Cosines::all_orders,
         Components::none,
         {}},
        {"scrubbing",
         "cosines, motion 24, csf and white_matter with derivatives and squares",
         "FD > 0.5 mm or std_dvars > 1.5, and segments shorter than 5 volumes",
         {{motion, full}, {tissues, full}},
         Cosines::all_orders,
         Components::none,
         {0.5, 1.5, 5}},
        {"compcor",
         "cosines, motion 24, all retained components of the combined mask",
         "",
         {{motion, full}},
         Cosines::all_orders,
         Components::combined,
         {}},
        {"acompcor",
         "cosines, motion 12, five components of csf and five of white matter",
         "",
         {{motion, derivatives}},
         Cosines::all_orders,
         Components::of_each_mask,
         {}},
        {"motion6",
         "the six motion parameters",
         "",
         {{motion, plain}},
         Cosines::none,
         Components::none,
         {}},
        {"motion24",
         "motion 24: the six, their derivatives, the squares of both",
         "",
         {{motion, full}},
         Cosines::none,
         Components::none,
         {}},
        {"24P",
         "cosines (not with the order butterworth), motion 24",
         "",
         {{motion, full}},
         Cosines::not_butterworth,
         Components::none,
         {}},
        {"27P",
         "as 24P, with csf, white_matter, global_signal",
         "",
         {{motion, full}, {all_means, plain}},
         Cosines::not_butterworth,
         Components::none,
         {}},
        {"36P",
         "as 27P, with derivatives and squares of the three",
         "",
         {{motion, full}, {all_means, full}},
         Cosines::not_butterworth,
         Components::none,
         {}},
        {"columns:a,b,c*",
         "these columns; a * at the end stands for any ending",
         "by the thresholds given",
         {},
         Cosines::none,
         Components::none,
         {}},
    };
    return table;
}

Selection select(const ConfoundsTable &table, const StrategyRequest &request)
{
    require(table, request);
    const Strategy &strategy = strategy_named(request.strategy);
    Selection selection;
    selection.thresholds = thresholds_of(strategy, request);
    selection.volumes = volumes_of(table, request, selection.thresholds);
    const bool knows_fd = selection.volumes.fd.size() > 0;
    require_order(table, selection.thresholds, knows_fd, selection.notes);

    const Names names = chosen_columns(table, strategy, request, selection.notes);
    const ConfoundsTable source =
        is_headerless(table) && !strategy.terms.empty() ? with_derived_columns(table) : table;
    require_columns(source, strategy, names, selection.thresholds, knows_fd);
    selection.regressors = regressors_of(source, names);
    selection.regressors.filter_only = strategy.name == "none";
    return selection;
}

} // namespace signals
