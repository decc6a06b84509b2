// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "statistics/contrast.h"
#include "tests/statistics/error_text.h"

namespace
{

using namespace statistics;

const std::vector<std::string> columns = {
    "(Intercept)", "a", "b", "group[Patient]", "group[Patient]:age", "site[x - y; z]", "a1"};

Eigen::MatrixXd weights(const std::string &text)
{
    return read_contrast(text, columns).weights;
}

Eigen::RowVectorXd row(const std::vector<double> &values)
{
    return Eigen::RowVectorXd::Map(values.data(), static_cast<Eigen::Index>(values.size()));
}

TEST(Contrast, SumsOfColumns)
{
    EXPECT_EQ(weights("x=0.5*a - b"), row({0, 0.5, -1, 0, 0, 0, 0}));
    EXPECT_EQ(weights(" x = -a+2 * b"), row({0, -1, 2, 0, 0, 0, 0}));
    EXPECT_EQ(weights("x=+ (Intercept) - 1e-2*a1"), row({1, 0, 0, 0, 0, 0, -0.01}));
    EXPECT_EQ(weights("x=a + a"), row({0, 2, 0, 0, 0, 0, 0}));
    EXPECT_EQ(weights("x=-2*a"), row({0, -2, 0, 0, 0, 0, 0}));
    EXPECT_EQ(weights("x=a - -2*b"), row({0, 1, 2, 0, 0, 0, 0})) << "a weight has its own sign";
    EXPECT_EQ(read_contrast("patients = group[Patient]", columns).name, "patients");
}

TEST(Contrast, TheLongestNameIsTaken)
{
    EXPECT_EQ(weights("x=group[Patient]:age"), row({0, 0, 0, 0, 1, 0, 0}));
    EXPECT_EQ(weights("x=group[Patient] - group[Patient]:age"), row({0, 0, 0, 1, -1, 0, 0}));
    EXPECT_EQ(weights("x=a1-a"), row({0, -1, 0, 0, 0, 0, 1}));
    EXPECT_EQ(weights("x=0.25*site[x - y; z]+b"), row({0, 0, 1, 0, 0, 0.25, 0}))
        << "names hold any character";
    // What could be a difference is the column of that name, wherever it stands.
    for (const std::vector<std::string> &names :
         {std::vector<std::string>{"a", "b", "a - b"}, {"a - b", "b", "a"}}) {
        const Eigen::MatrixXd found = read_contrast("x=2*a - b + b", names).weights;
        EXPECT_EQ(found(names[0] == "a" ? 2 : 0), 2.0);
        EXPECT_EQ(found(1), 1.0);
        EXPECT_EQ(found.sum(), 3.0);
    }
}

TEST(Contrast, RowsGiveF)
{
    const Eigen::MatrixXd two = weights("x = a ; b - 3*a1");
    ASSERT_EQ(two.rows(), 2);
    EXPECT_EQ(two.row(0), row({0, 1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(two.row(1), row({0, 0, 1, 0, 0, 0, -3}));
}

TEST(Contrast, RefusesWhatNamesNoColumn)
{
    const std::string list = "; its columns are (Intercept), a, b, group[Patient], "
                             "group[Patient]:age, site[x - y; z], a1";
    const auto text = [](const std::string &contrast) {
        return error_text([&] { read_contrast(contrast, columns); });
    };
    EXPECT_EQ(text("x=c"), "contrast x: c names no column of the design" + list);
    EXPECT_EQ(text("x=a + age"), "contrast x: age names no column of the design" + list);
    EXPECT_EQ(text("x=ab"), "contrast x: ab names no column of the design" + list);
    EXPECT_EQ(text("x=2*ab - a"), "contrast x: ab - a names no column of the design" + list);
    EXPECT_EQ(text("x=2"), "contrast x: 2 names no column of the design" + list);
    EXPECT_EQ(text("x=2 a"), "contrast x: 2 a names no column of the design" + list);
    EXPECT_EQ(text("x=two*a"), "contrast x: two*a names no column of the design" + list);
    EXPECT_EQ(text("x=inf*a"), "contrast x: inf*a names no column of the design" + list);
    EXPECT_EQ(text("x="), "contrast x: a row is empty" + list);
    EXPECT_EQ(text("x=a;"), "contrast x: a row is empty" + list);
    EXPECT_EQ(text("x=;a"), "contrast x: a row is empty" + list);
    EXPECT_EQ(text("x=2*"), "contrast x: 2* names no column of the design" + list);
    EXPECT_EQ(text("x=a - a"), "contrast x: all weights of a row are 0");
    EXPECT_EQ(text("a"), "the contrast a has no name; it is written NAME=column");
    EXPECT_EQ(text("=a"), "the contrast =a has no name; it is written NAME=column");
}

} // namespace
