// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/statistics/nbs_reference.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "statistics/text.h"
#include "tests/support/reference_folder.h"

namespace nbs_reference
{
namespace
{

using Eigen::Index;

std::filesystem::path folder()
{
    return std::filesystem::u8path(referenceFolder()) / "reference" / "nbs";
}

std::vector<std::vector<std::string>> cells(const char *file)
{
    std::ifstream opened(folder() / file);
    if (!opened) {
        throw std::runtime_error(std::string("cannot read ") + file);
    }
    std::vector<std::vector<std::string>> lines;
    for (std::string line; std::getline(opened, line);) {
        lines.emplace_back();
        std::istringstream stream(line);
        for (std::string cell; std::getline(stream, cell, ',');) {
            lines.back().push_back(statistics::trimmed(cell));
        }
    }
    return lines;
}

Eigen::ArrayXXd numbers(const char *file, std::size_t first_row, std::size_t first_column)
{
    const auto lines = cells(file);
    Eigen::ArrayXXd values(lines.size() - first_row, lines.front().size() - first_column);
    for (Index row = 0; row < values.rows(); ++row) {
        for (Index column = 0; column < values.cols(); ++column) {
            values(row, column) =
                statistics::number_in(lines.at(row + first_row).at(column + first_column)).value();
        }
    }
    return values;
}

} // namespace

bool is_there()
{
    return std::filesystem::exists(folder() / "frontal2D.csv");
}

statistics::Table subjects()
{
    const auto lines = cells("frontal2D.csv");
    statistics::Table table;
    for (std::size_t column = 0; column < 3; ++column) {
        table.columns.push_back({lines[0][column], {}});
        for (std::size_t row = 1; row < lines.size(); ++row) {
            table.columns.back().values.push_back(lines[row][column]);
        }
    }
    return table;
}

Eigen::ArrayXd in_our_order(const Eigen::ArrayXd &values)
{
    const int nodes = statistics::node_count(values.size());
    Eigen::ArrayXd ours(values.size());
    Index at = 0;
    for (const auto [first, second] : statistics::node_pairs(nodes)) {
        ours(at++) = values(Index{second} * (second - 1) / 2 + first);
    }
    return ours;
}

statistics::EdgeData edges()
{
    const Eigen::ArrayXXd values = numbers("frontal2D.csv", 1, 3);
    statistics::EdgeData data(values.rows(), values.cols());
    for (Index subject = 0; subject < values.rows(); ++subject) {
        data.row(subject) = in_our_order(values.row(subject).transpose()).matrix().transpose();
    }
    return data;
}

Eigen::ArrayXd t_values()
{
    return in_our_order(numbers("nbs_group_t.csv", 0, 0).col(0));
}

Eigen::MatrixXi permutations()
{
    return numbers("nbs_permutations_first1000.csv", 0, 0).cast<int>().matrix();
}

} // namespace nbs_reference
