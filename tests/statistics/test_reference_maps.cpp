// SPDX-License-Identifier: GPL-3.0-or-later
//
// Hubs and atrophy: the strength of nodes in a group's networks against a published map of effects.
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "statistics/correlation.h"
#include "statistics/text.h"
#include "tests/support/reference_folder.h"

namespace
{

using Eigen::Index;

std::filesystem::path folder()
{
    return std::filesystem::u8path(referenceFolder()) / "reference" / "hubs";
}

std::vector<std::vector<std::string>> rows_of(const char *file)
{
    std::ifstream opened(folder() / file);
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(opened, line);) {
        rows.emplace_back();
        std::istringstream stream(line);
        for (std::string cell; std::getline(stream, cell, ',');) {
            rows.back().push_back(statistics::trimmed(cell));
        }
    }
    return rows;
}

/// The sum of each row but its diagonal.
Eigen::ArrayXd strength(const char *file)
{
    const auto rows = rows_of(file);
    Eigen::ArrayXd sums = Eigen::ArrayXd::Zero(static_cast<Index>(rows.size()));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = 0; j < rows[i].size(); ++j) {
            sums(static_cast<Index>(i)) += i == j ? 0.0 : statistics::number_in(rows[i][j]).value();
        }
    }
    return sums;
}

/// Cohen's d, the column d_icv.
Eigen::ArrayXd effects()
{
    const auto rows = rows_of("tlemtsl_case-controls_CortThick.csv");
    Eigen::ArrayXd values(static_cast<Index>(rows.size()) - 1);
    for (Index i = 0; i < values.size(); ++i) {
        values(i) = statistics::number_in(rows[static_cast<std::size_t>(i) + 1].at(2)).value();
    }
    return values;
}

TEST(ReferenceMaps, StrengthOfHubsAgainstPublishedEffects)
{
    if (!std::filesystem::exists(folder() / "funcMatrix_ctx.csv")) {
        GTEST_SKIP() << "the folder of reference numbers is not there";
    }
    const auto functional =
        statistics::compare_maps(strength("funcMatrix_ctx.csv"), effects(), 999, 1);
    EXPECT_EQ(functional.nodes, 68);
    EXPECT_NEAR(functional.pearson, -0.50, 0.005);
    EXPECT_EQ(functional.p_pearson, 1.0 / 1000.0);
    const auto structural =
        statistics::compare_maps(strength("strucMatrix_ctx.csv"), effects(), 999, 1);
    EXPECT_NEAR(structural.pearson, -0.24, 0.005);
}

} // namespace
