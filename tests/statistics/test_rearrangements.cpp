// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <map>
#include <numeric>
#include <set>

#include <gtest/gtest.h>

#include "statistics/rearrangements.h"
#include "tests/statistics/error_text.h"
#include "tests/statistics/random_data.h"

namespace
{

using namespace statistics;

/// The test of the last column.
Hypothesis last_of(const Eigen::MatrixXd &design)
{
    std::vector<std::string> names;
    for (Index c = 0; c < design.cols(); ++c) {
        names.push_back("c" + std::to_string(c));
    }
    return make_hypothesis(design, names, read_contrast("x=" + names.back(), names));
}

Hypothesis groups(int first, int second)
{
    Eigen::MatrixXd design = Eigen::MatrixXd::Ones(first + second, 2);
    design.col(1).head(first).setZero();
    return last_of(design);
}

Hypothesis one_sample(int subjects)
{
    return last_of(Eigen::MatrixXd::Ones(subjects, 1));
}

struct Row {
    std::vector<int> source;
    std::vector<double> sign;
};

Row row(const Rearrangements &rearrangements, Index number)
{
    Row read{std::vector<int>(static_cast<std::size_t>(rearrangements.subjects())), {}};
    read.sign.resize(read.source.size());
    rearrangements.get(number, read.source.data(), read.sign.data());
    return read;
}

std::vector<int> identity(int n)
{
    std::vector<int> numbers(static_cast<std::size_t>(n));
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

RearrangementOptions of_count(Index count)
{
    RearrangementOptions options;
    options.count = count;
    return options;
}

TEST(Rearrangements, DrawnOnesArePermutations)
{
    const Rearrangements drawn(groups(10, 12), of_count(300));
    EXPECT_EQ(drawn.count(), 300);
    EXPECT_FALSE(drawn.is_exhaustive());
    EXPECT_FALSE(drawn.has_signs());
    std::set<std::vector<int>> seen;
    for (Index p = 0; p < drawn.count(); ++p) {
        Row one = row(drawn, p);
        EXPECT_EQ(one.sign, std::vector<double>(22, 1.0));
        seen.insert(one.source);
        std::sort(one.source.begin(), one.source.end());
        EXPECT_EQ(one.source, identity(22));
    }
    EXPECT_EQ(seen.size(), 300U);
}

TEST(Rearrangements, BytesOfASeedAreFixed)
{
    // These numbers stand for all systems and versions: published p values rest on them.
    const Rearrangements drawn(groups(4, 6), of_count(100));
    EXPECT_EQ(row(drawn, 0).source, std::vector<int>({2, 0, 3, 1, 5, 6, 7, 4, 9, 8}));
    EXPECT_EQ(row(drawn, 99).source, std::vector<int>({5, 9, 1, 6, 3, 0, 7, 4, 8, 2}));
    RearrangementOptions other = of_count(100);
    other.seed = 20240229;
    EXPECT_EQ(row(Rearrangements(groups(4, 6), other), 0).source,
              std::vector<int>({2, 7, 4, 0, 9, 6, 1, 3, 8, 5}));
    const Row signs = row(Rearrangements(one_sample(10), of_count(100)), 0);
    EXPECT_EQ(signs.source, identity(10));
    EXPECT_EQ(signs.sign, std::vector<double>({1, 1, -1, -1, -1, 1, -1, -1, 1, 1}));
}

TEST(Rearrangements, ARowDoesNotDependOnTheOthers)
{
    const Rearrangements few(groups(10, 10), of_count(50));
    const Rearrangements many(groups(10, 10), of_count(5000));
    EXPECT_EQ(row(few, 49).source, row(many, 49).source);
}

TEST(Rearrangements, BlocksStayTogether)
{
    RearrangementOptions options = of_count(500);
    options.blocks = {"a", "b", "a", "c", "b", "a", "c", "b", "a", "c", "b", "a"};
    Eigen::MatrixXd design = RandomNumbers(1).normal(12, 2);
    design.col(0).setOnes();
    const Rearrangements drawn(last_of(design), options);
    std::map<std::pair<int, int>, int> moves;
    for (Index p = 0; p < drawn.count(); ++p) {
        const std::vector<int> source = row(drawn, p).source;
        for (int i = 0; i < 12; ++i) {
            EXPECT_EQ(options.blocks[source[i]], options.blocks[i]);
            ++moves[{i, source[i]}];
        }
    }
    EXPECT_EQ(moves.size(), 25U + 16U + 9U) << "each goes everywhere in its block";
}

TEST(Rearrangements, AllOfThemWhenTheyAreFew)
{
    const Rearrangements all(groups(3, 4), of_count(35));
    EXPECT_TRUE(all.is_exhaustive());
    EXPECT_EQ(all.count(), 35);
    std::set<std::set<int>> first_groups;
    bool has_identity = false;
    for (Index p = 0; p < 35; ++p) {
        const std::vector<int> source = row(all, p).source;
        first_groups.insert({source.begin(), source.begin() + 3});
        has_identity = has_identity || source == identity(7);
    }
    EXPECT_EQ(first_groups.size(), 35U);
    EXPECT_TRUE(has_identity);
    EXPECT_FALSE(Rearrangements(groups(3, 4), of_count(34)).is_exhaustive());
    EXPECT_EQ(Rearrangements(groups(3, 4), of_count(34)).count(), 34);
}

TEST(Rearrangements, AllWithinBlocks)
{
    // Two blocks of two and two, one of one and two: 6 * 6 * 3.
    Eigen::MatrixXd design = Eigen::MatrixXd::Ones(11, 2);
    design.col(1) << 0, 0, 1, 1, 0, 1, 0, 1, 1, 0, 1;
    RearrangementOptions options = of_count(108);
    options.blocks = {"a", "a", "a", "a", "b", "b", "b", "b", "c", "c", "c"};
    const Rearrangements all(last_of(design), options);
    EXPECT_TRUE(all.is_exhaustive());
    EXPECT_EQ(all.count(), 108);
    std::set<std::vector<double>> arrangements;
    for (Index p = 0; p < all.count(); ++p) {
        const std::vector<int> source = row(all, p).source;
        std::vector<double> moved(11);
        for (int i = 0; i < 11; ++i) {
            EXPECT_EQ(options.blocks[source[i]], options.blocks[i]);
            moved[source[i]] = design(i, 1);
        }
        arrangements.insert(moved);
    }
    EXPECT_EQ(arrangements.size(), 108U);
}

TEST(Rearrangements, CovariatesMakeAllOrdersDistinct)
{
    Eigen::MatrixXd design = RandomNumbers(1).normal(5, 2);
    design.col(0).setOnes();
    const Rearrangements all(last_of(design), of_count(120));
    EXPECT_TRUE(all.is_exhaustive());
    EXPECT_EQ(all.count(), 120);
    EXPECT_FALSE(Rearrangements(last_of(design), of_count(119)).is_exhaustive());
}

TEST(Rearrangements, SignsWhereTheReducedModelHasNoConstant)
{
    const Rearrangements drawn(one_sample(40), of_count(1000));
    EXPECT_TRUE(drawn.has_signs());
    EXPECT_FALSE(drawn.is_exhaustive());
    std::vector<double> sums(40, 0.0);
    for (Index p = 0; p < drawn.count(); ++p) {
        const Row one = row(drawn, p);
        EXPECT_EQ(one.source, identity(40));
        for (int i = 0; i < 40; ++i) {
            ASSERT_TRUE(one.sign[i] == 1.0 || one.sign[i] == -1.0);
            sums[i] += one.sign[i];
        }
    }
    for (const double sum : sums) {
        EXPECT_LT(std::abs(sum), 5 * 32);
    }

    const Rearrangements all(one_sample(6), of_count(64));
    EXPECT_TRUE(all.is_exhaustive());
    std::set<std::vector<double>> seen;
    for (Index p = 0; p < all.count(); ++p) {
        seen.insert(row(all, p).sign);
    }
    EXPECT_EQ(seen.size(), 64U);
    EXPECT_EQ(row(all, 0).sign, std::vector<double>(6, 1.0));
    EXPECT_FALSE(Rearrangements(one_sample(6), of_count(63)).is_exhaustive());
    // The signs of so many cannot be counted in 64 bits.
    const Rearrangements large(one_sample(70), of_count(20));
    EXPECT_FALSE(large.is_exhaustive());
    EXPECT_EQ(large.count(), 20);
    EXPECT_NE(row(large, 0).sign, row(large, 1).sign);
}

TEST(Rearrangements, ExchangeCanBeChosen)
{
    RearrangementOptions options = of_count(10);
    options.exchange = Exchange::signs;
    EXPECT_TRUE(Rearrangements(groups(9, 9), options).has_signs());
    Eigen::MatrixXd line = RandomNumbers(1).normal(20, 1);
    EXPECT_TRUE(Rearrangements(last_of(line), of_count(10)).has_signs());
    options.exchange = Exchange::permutations;
    EXPECT_FALSE(Rearrangements(last_of(line), options).has_signs());
    EXPECT_EQ(error_text([&] { Rearrangements(one_sample(9), options); }),
              "contrast x: there is nothing to permute, all subjects of a block are alike in the "
              "design");
}

TEST(Rearrangements, GivenOnesAreTaken)
{
    RearrangementOptions options = of_count(5000);
    options.given.resize(2, 6);
    options.given << 5, 4, 3, 2, 1, 0, 1, 0, 2, 3, 4, 5;
    const Rearrangements given(groups(3, 3), options);
    EXPECT_EQ(given.count(), 2);
    EXPECT_FALSE(given.is_exhaustive());
    EXPECT_EQ(row(given, 0).source, std::vector<int>({5, 4, 3, 2, 1, 0}));
    EXPECT_EQ(row(given, 1).source, std::vector<int>({1, 0, 2, 3, 4, 5}));
}

TEST(Rearrangements, RefusesGivenOnesThatAreNone)
{
    RearrangementOptions options;
    const auto text = [&](const Hypothesis &hypothesis, const Eigen::MatrixXi &given) {
        options.given = given;
        return error_text([&] { Rearrangements(hypothesis, options); });
    };
    Eigen::MatrixXi given(2, 4);
    given << 0, 1, 2, 3, 3, 2, 1, 0;
    EXPECT_EQ(text(groups(2, 2), given), "no error");
    EXPECT_EQ(text(groups(2, 3), given),
              "the given permutations are of 4 subjects, the test has 5");
    EXPECT_EQ(text(one_sample(4), given),
              "contrast x is tested by flipping signs; given permutations are for permutations");
    given(1, 2) = 2;
    EXPECT_EQ(text(groups(2, 2), given),
              "row 2 of the given permutations is no permutation of 0 to 3: it has 2 twice");
    given(1, 2) = 4;
    EXPECT_EQ(text(groups(2, 2), given),
              "row 2 of the given permutations is no permutation of 0 to 3: it has 4");
    given(1, 2) = -1;
    EXPECT_EQ(text(groups(2, 2), given),
              "row 2 of the given permutations is no permutation of 0 to 3: it has -1");
    given << 0, 1, 2, 3, 2, 1, 0, 3;
    options.blocks = {"a", "b", "b", "a"};
    EXPECT_EQ(text(groups(2, 2), given),
              "row 2 of the given permutations leaves the blocks: subject 0 gets the data of "
              "subject 2");
}

TEST(Rearrangements, RefusesBlocksThatCannotTest)
{
    RearrangementOptions options;
    const auto text = [&](const Hypothesis &hypothesis, const std::vector<std::string> &blocks) {
        options.blocks = blocks;
        return error_text([&] { Rearrangements(hypothesis, options); });
    };
    EXPECT_EQ(text(groups(2, 2), {"a", "b", "b", "a"}), "no error");
    EXPECT_EQ(text(groups(2, 2), {"a", "a", "b", "b"}),
              "contrast x: c1 is the same within every block, so permutations within blocks "
              "cannot test it");
    EXPECT_EQ(text(groups(2, 2), {"a", "b", "c", "d"}),
              "contrast x: c1 is the same within every block, so permutations within blocks "
              "cannot test it");
    EXPECT_EQ(text(groups(2, 2), {"a", "b"}), "2 block labels for 4 subjects");
    EXPECT_EQ(text(one_sample(3), {"a", "a", "b"}),
              "contrast x is tested by flipping signs; blocks are for permutations");
    EXPECT_EQ(error_text([] { Rearrangements(groups(20, 20), of_count(0)); }),
              "a permutation test needs at least 1 permutation");
    EXPECT_EQ(error_text([] { Rearrangements(5, 0, 1, Purpose::map); }),
              "a permutation test needs at least 1 permutation");
}

TEST(Rearrangements, PValuesAreNeverZero)
{
    const Rearrangements drawn(groups(20, 20), of_count(999));
    EXPECT_EQ(drawn.p_value(0), 1.0 / 1000.0);
    EXPECT_EQ(drawn.p_value(999), 1.0);
    const Rearrangements all(groups(3, 4), of_count(35));
    EXPECT_EQ(all.p_value(1), 1.0 / 35.0) << "the identity reaches itself";
}

TEST(Rearrangements, ReachingAllowsForRounding)
{
    Eigen::ArrayXd null_values(4);
    null_values << 1.0, 2.0 * (1.0 - 5e-13), 2.0 * (1.0 - 2e-12), 3.0;
    EXPECT_EQ(count_reaching(null_values, 2.0), 2);
    EXPECT_EQ(count_reaching(-null_values, -2.0 * (1.0 - 2e-12)), 2) << "-1 and the value itself";
    EXPECT_EQ(count_reaching(null_values, 0.0), 4);
}

} // namespace
