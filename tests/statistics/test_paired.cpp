// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>

#include <gtest/gtest.h>

#include "statistics/glm.h"
#include "statistics/paired.h"
#include "tests/statistics/error_text.h"

namespace
{

using namespace statistics;
using Names = std::vector<std::string>;

/// Rows out of order: participant, session, age, group.
const Table visits{{{"participant_id", {"b", "a", "c", "a", "b", "c", "d", "d"}},
                    {"session", {"pre", "pre", "post", "post", "post", "pre", "pre", "post"}},
                    {"age", {"30", "20", "40", "20", "30", "40", "70", "70"}},
                    {"group", {"P", "C", "P", "C", "P", "P", "C", "C"}},
                    {"weight", {"1", "2", "3", "4", "5", "6", "7", "8"}}}};

PairedDesign paired(const std::string &formula, const std::string &tested = "session[pre]")
{
    return pair_rows(make_design(formula, visits), visits.column("participant_id").values, tested);
}

TEST(Paired, DifferencesWithCentredColumns)
{
    const PairedDesign pairs = paired("session + age + group");
    EXPECT_EQ(pairs.columns, Names({"session[pre]", "age", "group[P]"}));
    EXPECT_EQ(pairs.participants, Names({"b", "a", "c", "d"}));
    EXPECT_EQ(pairs.lower, std::vector<Index>({4, 3, 2, 7})) << "post is the reference level";
    EXPECT_EQ(pairs.higher, std::vector<Index>({0, 1, 5, 6}));
    Eigen::MatrixXd wanted(4, 3);
    wanted << 1, -10, 0.5, 1, -20, -0.5, 1, 0, 0.5, 1, 30, -0.5;
    EXPECT_EQ(pairs.matrix, wanted);

    EdgeData data(8, 1);
    data << 1, 2, 3, 4, 5, 6, 7, 8;
    EXPECT_EQ(differences(data, pairs), (EdgeData(4, 1) << -4, -2, 3, -1).finished());
}

TEST(Paired, TestsTheMeanDifference)
{
    const PairedDesign pairs = paired("C(session, ref=pre)", "session[post]");
    EdgeData data(8, 1);
    data << 1, 2, 3, 4, 5, 6, 7, 9.5;
    const EdgeData d = differences(data, pairs);
    const GlmResult result =
        glm(d, make_hypothesis(pairs.matrix, pairs.columns,
                               read_contrast("x=session[post]", pairs.columns)));
    const double mean = (4.0 + 2.0 - 3.0 + 2.5) / 4.0;
    const double variance = (d.array() - mean).square().sum() / 3.0;
    EXPECT_NEAR(result.estimate(0), mean, 1e-14);
    EXPECT_NEAR(result.statistic(0), mean / std::sqrt(variance / 4.0), 1e-13);
    EXPECT_EQ(result.df, 3.0);
}

TEST(Paired, RefusesWhatIsNoPair)
{
    const auto text = [](const Table &table, const std::string &formula,
                         const std::string &tested) {
        return error_text([&] {
            pair_rows(make_design(formula, table), table.column("participant_id").values, tested);
        });
    };
    EXPECT_EQ(text(visits, "session + weight", "session[pre]"),
              "the column weight changes within participant b; a paired test takes columns that "
              "do not, beside session[pre]");
    EXPECT_EQ(text(visits, "session", "session[post]"),
              "the design has no column session[post]; its columns are (Intercept), session[pre]");
    EXPECT_EQ(text(visits, "weight", "weight"),
              "a paired test needs a column of two values, weight has more");
    EXPECT_EQ(text(visits, "session", "(Intercept)"),
              "a paired test needs a column of two values, (Intercept) has one");
    Table bad = visits;
    bad.columns[1].values[3] = "pre";
    EXPECT_EQ(text(bad, "session", "session[pre]"),
              "both rows of participant a have the same session[pre]");
    bad = visits;
    bad.columns[0].values[3] = "e";
    EXPECT_EQ(text(bad, "session", "session[pre]"),
              "participant a has 1 row, a paired test needs exactly 2 of each");
    EXPECT_EQ(error_text([] { pair_rows(make_design("session", visits), {"a"}, "session[pre]"); }),
              "1 participant for 8 rows of the design");
    EXPECT_EQ(error_text([] { differences(EdgeData::Zero(7, 2), paired("session")); }),
              "the data have 7 rows, fewer than the paired design");
}

} // namespace
