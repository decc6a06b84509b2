// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/confounds.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "signals/text.h"

namespace signals
{

namespace
{

using Index = Eigen::Index;

bool begins_with(const std::string &text, const std::string &start)
{
    return text.compare(0, start.size(), start) == 0;
}

bool is_all_digits(const std::string &text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

/// Shorter runs of digits are smaller numbers, once leading zeros are gone.
bool number_below(const std::string &a, const std::string &b)
{
    const auto digits = [](const std::string &name) {
        const std::string all = name.substr(name.find_last_not_of("0123456789") + 1);
        return all.substr(std::min(all.find_first_not_of('0'), all.size()));
    };
    const std::string first = digits(a);
    const std::string second = digits(b);
    return first.size() != second.size() ? first.size() < second.size() : first < second;
}

std::vector<std::string> by_number(std::vector<std::string> names)
{
    std::stable_sort(names.begin(), names.end(), number_below);
    return names;
}

/// Columns of that stem with digits behind it.
std::vector<std::string> numbered_columns(const ConfoundsTable &table, const std::string &stem)
{
    std::vector<std::string> names;
    for (const std::string &name : table.names) {
        if (begins_with(name, stem) && is_all_digits(name.substr(stem.size()))) {
            names.push_back(name);
        }
    }
    return names;
}

std::vector<std::string> components_by_json(const ConfoundsTable &table, const std::string &mask)
{
    if (!table.components) {
        throw Error("the table's JSON is missing: only it tells which components are those of "
                    "the mask " +
                    mask);
    }
    std::vector<std::string> names;
    for (const Component &component : *table.components) {
        if (component.method == "aCompCor" && component.mask == mask && component.retained) {
            names.push_back(component.name);
        }
    }
    return names;
}

Eigen::VectorXd difference(const Eigen::VectorXd &values)
{
    const Index rest = std::max<Index>(values.size() - 1, 0);
    Eigen::VectorXd result =
        Eigen::VectorXd::Constant(values.size(), std::numeric_limits<double>::quiet_NaN());
    result.tail(rest) = values.tail(rest) - values.head(rest);
    return result;
}

} // namespace

bool is_headerless(const ConfoundsTable &table)
{
    for (std::size_t i = 0; i < table.names.size(); ++i) {
        if (table.names[i] != "p" + std::to_string(i + 1)) {
            return false;
        }
    }
    return !table.names.empty();
}

std::optional<Index> column_named(const ConfoundsTable &table, const std::string &name)
{
    const auto found = std::find(table.names.begin(), table.names.end(), name);
    return found == table.names.end() ? std::nullopt
                                      : std::optional<Index>(found - table.names.begin());
}

const std::vector<std::string> &motion_columns()
{
    static const std::vector<std::string> names = {"trans_x", "trans_y", "trans_z",
                                                   "rot_x",   "rot_y",   "rot_z"};
    return names;
}

Eigen::VectorXd complete_column(const ConfoundsTable &table, const std::string &name)
{
    const std::optional<Index> column = column_named(table, name);
    if (!column) {
        throw Error("there is no column " + name);
    }
    Eigen::VectorXd values = table.values.col(*column);
    if (values.size() > 1 && std::isnan(values[0])) {
        values[0] = values[1];
    }
    for (Index row = 0; row < values.size(); ++row) {
        if (!std::isfinite(values[row])) {
            throw Error("column " + name + ", row " + std::to_string(row) + " (from 0) is " +
                        number(table.values(row, *column)) + ": expected a finite number");
        }
    }
    return values;
}

ConfoundsTable with_derived_columns(const ConfoundsTable &table)
{
    if (table.names.size() != 6) {
        throw Error("a table without a header and with " +
                    counted(static_cast<Index>(table.names.size()), "column") +
                    ": expected the 6 motion parameters");
    }
    ConfoundsTable result = table;
    result.values.conservativeResize(Eigen::NoChange, 24);
    Index next = 6;
    const auto append = [&](const std::string &name, const Eigen::VectorXd &values) {
        result.names.push_back(name);
        result.values.col(next++) = values;
    };
    for (Index i = 0; i < 6; ++i) {
        const Eigen::VectorXd values = table.values.col(i);
        const Eigen::VectorXd change = difference(values);
        append(table.names[i] + "_derivative1", change);
        append(table.names[i] + "_power2", values.array().square());
        append(table.names[i] + "_derivative1_power2", change.array().square());
    }
    return result;
}

Eigen::ArrayXd displacement_of(const ConfoundsTable &table, std::optional<MotionOrder> order)
{
    if (const std::optional<Index> column = column_named(table, "framewise_displacement")) {
        return table.values.col(*column);
    }
    if (is_headerless(table)) {
        return order ? framewise_displacement(motion_parameters(table.values, *order))
                     : Eigen::ArrayXd();
    }
    Eigen::MatrixXd parameters(table.values.rows(), 6);
    for (Index i = 0; i < 6; ++i) {
        const std::optional<Index> column = column_named(table, motion_columns()[i]);
        if (!column) {
            return {};
        }
        parameters.col(i) = table.values.col(*column);
    }
    return framewise_displacement(parameters);
}

Flags non_steady_volumes(const ConfoundsTable &table)
{
    Flags flags = Flags::Constant(table.values.rows(), false);
    for (const std::string &name : numbered_columns(table, "non_steady_state_outlier")) {
        flags = flags || complete_column(table, name).array() != 0;
    }
    return flags;
}

std::vector<std::string> anatomical_components(const ConfoundsTable &table, const std::string &mask)
{
    if (mask == "combined") {
        return by_number(components_by_json(table, mask));
    }
    const bool newer = !numbered_columns(table, "c_comp_cor_").empty() ||
                       !numbered_columns(table, "w_comp_cor_").empty();
    return by_number(newer ? numbered_columns(table, mask == "CSF" ? "c_comp_cor_" : "w_comp_cor_")
                           : components_by_json(table, mask));
}

} // namespace signals
