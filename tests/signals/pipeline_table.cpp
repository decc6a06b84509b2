// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/signals/pipeline_table.h"

#include "signals/drift.h"
#include "tests/signals/noise.h"

#include <algorithm>
#include <cmath>

namespace pipeline_table
{
namespace
{

using signals::ConfoundsTable;
using Index = Eigen::Index;

void append(ConfoundsTable &table, const std::string &name, const Eigen::VectorXd &values)
{
    table.names.push_back(name);
    table.values.conservativeResize(values.size(), table.values.cols() + 1);
    table.values.rightCols(1) = values;
}

std::string numbered(const std::string &stem, Index number)
{
    return stem + (number < 10 ? "0" : "") + std::to_string(number);
}

void append_signal(ConfoundsTable &table, const std::string &name, const Eigen::VectorXd &values)
{
    const Index rest = values.size() - 1;
    Eigen::VectorXd change = Eigen::VectorXd::Constant(values.size(), NAN);
    change.tail(rest) = values.tail(rest) - values.head(rest);
    append(table, name, values);
    append(table, name + "_derivative1", change);
    append(table, name + "_power2", values.array().square());
    append(table, name + "_derivative1_power2", change.array().square());
}

} // namespace

ConfoundsTable make(Index volumes, Generation generation)
{
    Noise noise(100);
    ConfoundsTable table;
    table.components.emplace();
    for (const char *name : {"csf", "white_matter", "global_signal"}) {
        append_signal(table, name, 20 * noise.serial(volumes, 1, 0.6).array() + 500);
    }
    for (const std::string &name : signals::motion_columns()) {
        const double size = name[0] == 't' ? 0.05 : 0.0005;
        append_signal(table, name, size * noise.serial(volumes, 1, 0.9));
    }
    append(table, "framewise_displacement", signals::displacement_of(table, {}));
    Eigen::VectorXd dvars = noise.white(volumes, 1).array().abs() * 0.1 + 1;
    dvars[0] = NAN;
    append(table, "std_dvars", dvars);

    Index next = 0;
    const auto append_components = [&](const std::string &letter, const std::string &mask) {
        const bool continues = generation == Generation::older;
        for (Index i = 0; i < 6; ++i) {
            const std::string name =
                continues ? numbered("a_comp_cor_", next++) : numbered(letter + "_comp_cor_", i);
            append(table, name, noise.serial(volumes, 1, 0.5));
            table.components->push_back({name, "aCompCor", mask, true});
        }
    };
    append_components("a", "combined");
    append_components("c", "CSF");
    append_components("w", "WM");
    append(table, "t_comp_cor_00", noise.white(volumes, 1));
    table.components->push_back({"t_comp_cor_00", "tCompCor", "", true});
    table.components->push_back({"dropped_0", "aCompCor", "combined", false});

    const std::vector<Index> drift = signals::cosines_below(volumes, 2, 0.008);
    const Eigen::MatrixXd cosines = signals::cosines(volumes, drift);
    for (Index i = 0; i < cosines.cols(); ++i) {
        append(table, numbered("cosine", i), cosines.col(i));
    }
    for (Index i = 0; i < 2; ++i) {
        append(table, numbered("non_steady_state_outlier", i), Eigen::VectorXd::Unit(volumes, i));
    }
    return table;
}

ConfoundsTable without(const ConfoundsTable &table, const std::vector<std::string> &names)
{
    ConfoundsTable result;
    result.components = table.components;
    for (std::size_t i = 0; i < table.names.size(); ++i) {
        if (std::find(names.begin(), names.end(), table.names[i]) == names.end()) {
            append(result, table.names[i], table.values.col(static_cast<Index>(i)));
        }
    }
    return result;
}

ConfoundsTable with(ConfoundsTable table, const std::string &column, Index row, double value)
{
    table.values(row, *signals::column_named(table, column)) = value;
    return table;
}

} // namespace pipeline_table
