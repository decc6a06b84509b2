// SPDX-License-Identifier: GPL-3.0-or-later
//
// Formulas against design matrices written by hand.
#include <sstream>

#include <Eigen/LU>
#include <gtest/gtest.h>

#include "statistics/design.h"
#include "tests/statistics/error_text.h"

namespace
{

using namespace statistics;
using Names = std::vector<std::string>;

/// A table from lines of cells, blanks between them; the first line has the names.
Table table(const std::string &text)
{
    Table read;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream cells(line);
        std::size_t column = 0;
        for (std::string cell; cells >> cell; ++column) {
            if (column == read.columns.size()) {
                read.columns.push_back({cell, {}});
            } else {
                read.columns[column].values.push_back(cell);
            }
        }
    }
    return read;
}

const Table people = table("id group sex age site\n"
                           "s1 Patient F 20 2\n"
                           "s2 Control M 30 1\n"
                           "s3 Patient M 40 3\n"
                           "s4 Control F 50 1\n"
                           "s5 Patient M 22 2\n"
                           "s6 Control F 32 3\n"
                           "s7 Patient F 44 1\n"
                           "s8 Control M 58 3\n");

/// The design as text: a line of names, then one of numbers for each row.
std::string written(const Design &design)
{
    std::ostringstream text;
    for (std::size_t c = 0; c < design.columns.size(); ++c) {
        text << (c == 0 ? "" : " ") << design.columns[c];
    }
    text << '\n';
    for (Index row = 0; row < design.matrix.rows(); ++row) {
        for (Index column = 0; column < design.matrix.cols(); ++column) {
            text << (column == 0 ? "" : " ") << design.matrix(row, column);
        }
        text << '\n';
    }
    return text.str();
}

std::string design_of(const std::string &formula, const Table &of = people)
{
    return written(make_design(formula, of));
}

TEST(Formula, InterceptAlone)
{
    EXPECT_EQ(design_of("1"), "(Intercept)\n1\n1\n1\n1\n1\n1\n1\n1\n");
}

TEST(Formula, NumbersAndTwoLevels)
{
    EXPECT_EQ(design_of("group + age"), "(Intercept) group[Patient] age\n"
                                        "1 1 20\n"
                                        "1 0 30\n"
                                        "1 1 40\n"
                                        "1 0 50\n"
                                        "1 1 22\n"
                                        "1 0 32\n"
                                        "1 1 44\n"
                                        "1 0 58\n");
}

TEST(Formula, CategoryOfThreeLevels)
{
    const std::string wanted = "(Intercept) site[2] site[3]\n"
                               "1 1 0\n"
                               "1 0 0\n"
                               "1 0 1\n"
                               "1 0 0\n"
                               "1 1 0\n"
                               "1 0 1\n"
                               "1 0 0\n"
                               "1 0 1\n";
    EXPECT_EQ(design_of("C(site)"), wanted);
    EXPECT_EQ(design_of("C(site, ref=3)"), "(Intercept) site[1] site[2]\n"
                                           "1 0 1\n"
                                           "1 1 0\n"
                                           "1 0 0\n"
                                           "1 1 0\n"
                                           "1 0 1\n"
                                           "1 0 0\n"
                                           "1 1 0\n"
                                           "1 0 0\n");
    EXPECT_EQ(design_of(" C( site ,ref = \"1\" ) "), wanted);
    EXPECT_EQ(design_of("C(site,ref='1')"), wanted);
}

TEST(Formula, LevelsAreInByteOrder)
{
    const Table levels = table("x\nb\nB\n10\n9\na\nb\nB\n10\n9\na\n");
    EXPECT_EQ(make_design("0 + x", levels).columns,
              Names({"x[10]", "x[9]", "x[B]", "x[a]", "x[b]"}));
    EXPECT_EQ(make_design("C(x, ref=a)", levels).columns,
              Names({"(Intercept)", "x[10]", "x[9]", "x[B]", "x[b]"}));
}

TEST(Formula, WithoutInterceptTheFirstCategoryHasAllLevels)
{
    const std::string wanted = "group[Control] group[Patient] sex[M]\n"
                               "0 1 0\n"
                               "1 0 1\n"
                               "0 1 1\n"
                               "1 0 0\n"
                               "0 1 1\n"
                               "1 0 0\n"
                               "0 1 0\n"
                               "1 0 1\n";
    for (const char *formula : {"0 + group + sex", "group + sex - 1", "group + 0 + sex",
                                "-1 + group + sex", "1 + group + sex + 0", "0+group+sex"}) {
        EXPECT_EQ(design_of(formula), wanted) << formula;
    }
    EXPECT_EQ(make_design("0 + age", people).columns, Names({"age"}));
    EXPECT_EQ(make_design("0 + age + group", people).columns,
              Names({"age", "group[Control]", "group[Patient]"}));
    EXPECT_EQ(make_design("0 + age + 1", people).columns, Names({"(Intercept)", "age"}))
        << "the last one counts";
    EXPECT_EQ(make_design("age - 0", people).columns, Names({"(Intercept)", "age"}));
}

TEST(Formula, InteractionOfCategoryAndNumber)
{
    const std::string wanted = "(Intercept) group[Patient] age group[Patient]:age\n"
                               "1 1 20 20\n"
                               "1 0 30 0\n"
                               "1 1 40 40\n"
                               "1 0 50 0\n"
                               "1 1 22 22\n"
                               "1 0 32 0\n"
                               "1 1 44 44\n"
                               "1 0 58 0\n";
    EXPECT_EQ(design_of("group * age"), wanted);
    EXPECT_EQ(design_of("group + age + group:age"), wanted);
    EXPECT_EQ(design_of("group:age + group + age"), wanted) << "main effects come first";
    EXPECT_EQ(design_of("group*age + age + group"), wanted) << "no term twice";
}

TEST(Formula, InteractionOfCategories)
{
    EXPECT_EQ(design_of("group * sex"), "(Intercept) group[Patient] sex[M] group[Patient]:sex[M]\n"
                                        "1 1 0 0\n"
                                        "1 0 1 0\n"
                                        "1 1 1 1\n"
                                        "1 0 0 0\n"
                                        "1 1 1 1\n"
                                        "1 0 0 0\n"
                                        "1 1 0 0\n"
                                        "1 0 1 0\n");
    // The first factor varies fastest.
    const Table crossed = table("a b\nx 1\nx 1\ny 1\ny 1\nz 1\nz 1\nx 2\nx 2\ny 2\ny 2\nz 2\nz 2\n"
                                "x 3\nx 3\ny 3\ny 3\nz 3\nz 3\n");
    EXPECT_EQ(make_design("a * C(b)", crossed).columns,
              Names({"(Intercept)", "a[y]", "a[z]", "b[2]", "b[3]", "a[y]:b[2]", "a[z]:b[2]",
                     "a[y]:b[3]", "a[z]:b[3]"}));
}

TEST(Formula, InteractionOfNumbersAndOfThree)
{
    const Design design = make_design("age:site + group*sex*age", people);
    EXPECT_EQ(design.columns, Names({"(Intercept)", "group[Patient]", "sex[M]", "age", "age:site",
                                     "group[Patient]:sex[M]", "group[Patient]:age", "sex[M]:age",
                                     "group[Patient]:sex[M]:age"}));
    EXPECT_EQ(design.matrix(0, 4), 40.0);
    EXPECT_EQ(design.matrix(2, 8), 40.0);
    EXPECT_EQ(design.matrix(0, 8), 0.0);
    EXPECT_EQ(make_design("group + sex:age", people).columns,
              Names({"(Intercept)", "group[Patient]", "sex[F]:age", "sex[M]:age"}))
        << "':' binds tighter than '+'";
    EXPECT_EQ(make_design("site * sex:age", people).columns,
              Names({"(Intercept)", "site", "sex[F]:age", "sex[M]:age", "site:sex[F]:age",
                     "site:sex[M]:age"}))
        << "':' binds tighter than '*'";
}

TEST(Formula, InteractionsWithoutTheirMarginsSpanTheSameSpace)
{
    // As many columns as cells, and independent.
    const auto rank = [](const std::string &formula) {
        const Design design = make_design(formula, people);
        EXPECT_EQ(Eigen::FullPivLU<Eigen::MatrixXd>(design.matrix).rank(), design.matrix.cols())
            << formula;
        return design.matrix.cols();
    };
    EXPECT_EQ(rank("group:sex"), 4);
    EXPECT_EQ(rank("0 + group:sex"), 4);
    EXPECT_EQ(rank("group + group:sex"), 4);
    EXPECT_EQ(rank("0 + group + group:sex"), 4);
    EXPECT_EQ(rank("age + group:age"), 3);
    EXPECT_EQ(rank("group:age"), 3);
    EXPECT_EQ(rank("0 + group:age"), 2);
    EXPECT_EQ(make_design("0 + group:sex", people).columns,
              Names({"group[Control]:sex[F]", "group[Patient]:sex[F]", "group[Control]:sex[M]",
                     "group[Patient]:sex[M]"}));
    EXPECT_EQ(
        make_design("group + group:sex", people).columns,
        Names({"(Intercept)", "group[Patient]", "group[Control]:sex[M]", "group[Patient]:sex[M]"}));
    EXPECT_EQ(make_design("age:group", people).columns,
              Names({"(Intercept)", "age:group[Control]", "age:group[Patient]"}));
}

TEST(Formula, CentringIsOverTheIncludedRows)
{
    const Table some = table("group age\nA 10\nB 20\nA n/a\nB 60\nA 30\n");
    EXPECT_EQ(design_of("center(age)", some), "(Intercept) center(age)\n1 -20\n1 -10\n1 30\n1 0\n");
    EXPECT_EQ(design_of("group:center(age) + group + center(age)", some),
              "(Intercept) group[B] center(age) group[B]:center(age)\n"
              "1 0 -20 0\n"
              "1 1 -10 -10\n"
              "1 1 30 30\n"
              "1 0 0 0\n");
    EXPECT_EQ(design_of("age", some), "(Intercept) age\n1 10\n1 20\n1 60\n1 30\n")
        << "nothing is centred by itself";
}

TEST(Formula, RowsWithMissingValuesLeaveAndAreListed)
{
    const Table some = table("group age iq block\nA 10 n/a x\nB 20 1 x\nA NaN 1 y\nB NA 1 y\n"
                             "A 30 1 n/a\nB 40 1 y\nA 50 1 y\nn/a N/A 1 y\n");
    const Design design = make_design("group + age", some);
    EXPECT_EQ(design.rows, std::vector<Index>({0, 1, 4, 5, 6}));
    ASSERT_EQ(design.missing.size(), 4U);
    EXPECT_EQ(design.missing[0].row, 2);
    EXPECT_EQ(design.missing[0].column, "age");
    EXPECT_EQ(design.missing[1].row, 3);
    EXPECT_EQ(design.missing[2].row, 7);
    EXPECT_EQ(design.missing[2].column, "age");
    EXPECT_EQ(design.missing[3].row, 7);
    EXPECT_EQ(design.missing[3].column, "group");
    EXPECT_EQ(make_design("group + age", some, {"block"}).rows, std::vector<Index>({0, 1, 5, 6}));
    ASSERT_EQ(design.categories.size(), 1U);
    EXPECT_EQ(design.categories[0].levels, Names({"A", "B"}));
    EXPECT_EQ(design.categories[0].counts, std::vector<Index>({3, 2}));
    // "(Intercept) group[B] age", one line per included row
    EXPECT_EQ(design.matrix.rows(), 5);
    EXPECT_EQ(design.matrix(4, 2), 50.0);
}

TEST(Formula, NumbersInEveryWriting)
{
    const Table some = table("x\n-1.5\n+2\n1e3\n.5\n07\n");
    EXPECT_EQ(design_of("x", some), "(Intercept) x\n1 -1.5\n1 2\n1 1000\n1 0.5\n1 7\n");
}

TEST(Formula, BlanksAndInterceptsInEveryWriting)
{
    const Table some = table("mean_fd x\n1 5\n2 6\n4 8\n");
    const std::string wanted = design_of("mean_fd", some);
    for (const char *formula : {"\tmean_fd ", "+mean_fd", "1\t+\tmean_fd", "1 - 0 + mean_fd",
                                "mean_fd - 0", "0 + mean_fd + 1"}) {
        EXPECT_EQ(design_of(formula, some), wanted) << formula;
    }
    for (const char *formula : {"0 + mean_fd", "0 - 1 + mean_fd", "-1 + mean_fd", "mean_fd - 1"}) {
        EXPECT_EQ(design_of(formula, some), "mean_fd\n1\n2\n4\n") << formula;
    }
}

TEST(Formula, NamesBetweenBackquotes)
{
    Table some;
    some.columns = {{"age (years)", {"1", "2", "4"}}, {"größe.1", {"3", "5", "4"}}};
    EXPECT_EQ(make_design("`age (years)` + größe.1", some).columns,
              Names({"(Intercept)", "age (years)", "größe.1"}));
    EXPECT_EQ(make_design("center(`age (years)`)", some).columns,
              Names({"(Intercept)", "center(age (years))"}));
}

struct Refusal {
    const char *formula;
    const char *text;
};

class RefusedFormula : public testing::TestWithParam<Refusal>
{
};

TEST_P(RefusedFormula, SaysWhatIsWrong)
{
    EXPECT_EQ(error_text([] { make_design(GetParam().formula, people); }), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Formula, RefusedFormula,
    testing::Values(
        Refusal{"", "the formula is empty"}, Refusal{"  ", "the formula is empty"},
        Refusal{"0", "the formula leaves no column: it has no term and no intercept"},
        Refusal{"weight", "the table has no column weight; it has id, group, sex, age, site"},
        Refusal{"group + C(site, ref=4)", "site has no level 4; it has 1, 2, 3"},
        Refusal{"group +", "the formula has its end at character 8 where the name of a column is "
                           "expected"},
        Refusal{"~ group", "the formula has '~' at character 1 where the name of a column is "
                           "expected"},
        Refusal{"group age", "the formula has 'a' at character 7 where '+', '-', '*', ':' or the "
                             "end is expected"},
        Refusal{"group / age", "the formula has '/' at character 7 where '+', '-', '*', ':' or "
                               "the end is expected"},
        Refusal{"2 + age", "the formula has '2' at character 1 where the name of a column is "
                           "expected"},
        Refusal{"1:age", "the formula has ':' at character 2 where '+', '-' or the end is "
                         "expected"},
        Refusal{"age:1", "the formula has '1' at character 5 where the name of a column is "
                         "expected"},
        Refusal{"group - age", "the formula subtracts a term; only - 1 can be subtracted"},
        Refusal{"age:age", "the formula has age twice in one term"},
        Refusal{"age*age", "the formula has age twice in one term"},
        Refusal{"log(age)", "the formula has log(...); it can have C(column), C(column, "
                            "ref=level) and center(column)"},
        Refusal{"C(site", "the formula has its end at character 7 where ')' is expected"},
        Refusal{"C(site, base=1)", "after the comma of C(site, ...) stands ref=level"},
        Refusal{"C(site, ref=)", "the formula has ')' at character 13 where a level is expected"},
        Refusal{"C(site, ref='1)", "the formula has its end at character 16 where ''' is "
                                   "expected"},
        Refusal{"`age", "the formula has its end at character 5 where '`' is expected"},
        Refusal{"center(group)", "center(group): the column holds text, not numbers"},
        Refusal{"center(site) + C(site)", "the formula has the column site in two ways"},
        Refusal{"C(site, ref=1):age + C(site, ref=2)",
                "the formula has the column site in two ways"},
        Refusal{"id", "only one subject has id = s1; a group needs at least two"},
        Refusal{"group*sex*C(site)", "only one subject has group[Patient]:site[3]; a group needs "
                                     "at least two"}));

TEST(Formula, CellsOfReferenceLevelsCountAsWell)
{
    const Table lonely = table("group sex age\nA x 1\nB x 2\nB y 3\nB x 4\nA y 5\nB y 6\nA y 7\n");
    EXPECT_EQ(error_text([&] { make_design("group * sex", lonely); }),
              "only one subject has group[A]:sex[x]; a group needs at least two");
    EXPECT_EQ(error_text([&] { make_design("group:age:sex", lonely); }),
              "only one subject has group[A]:sex[x]; a group needs at least two");
    EXPECT_EQ(make_design("group + sex * age", lonely).columns.size(), 5U);
}

TEST(Formula, RefusesWhatTheTableLacks)
{
    EXPECT_EQ(error_text([] { make_design("x", table("x y\nn/a 1\nn/a 2\n")); }),
              "no row of the table has all of x");
    EXPECT_EQ(error_text([] { make_design("x + y", table("x y\nn/a 1\n2 n/a\n")); }),
              "no row of the table has all of x, y");
    EXPECT_EQ(error_text([] { make_design("x", table("x\na\na\na\n")); }),
              "all subjects have x = a; a category needs at least two levels");
    EXPECT_EQ(error_text([] { make_design("x", table("x\n1\n2\n3O\n")); }),
              "only one subject has x = 1; a group needs at least two (x is a category, since 3O "
              "in row 2 is no number)");
    EXPECT_EQ(error_text([] { make_design("C(x)", table("x\n1\n1\n2\n")); }),
              "only one subject has x = 2; a group needs at least two");
    Table nameless = table("x y\n1 2\n3 4\n");
    nameless.columns[1].name.clear();
    EXPECT_EQ(error_text([&] { make_design("x", nameless); }), "a column of the table has no name");
    Table uneven = table("x y\n1 2\n3 4\n");
    uneven.columns[1].values.pop_back();
    EXPECT_EQ(error_text([&] { make_design("x", uneven); }),
              "the column y has 1 row, the column x has 2");
    Table doubled = table("x y\n1 2\n3 4\n");
    doubled.columns[1].name = "x";
    EXPECT_EQ(error_text([&] { make_design("x", doubled); }), "the table has two columns named x");
}

TEST(Formula, RefusesInteractionsOfMoreCategoriesThanADesignHolds)
{
    // Of ten there are 1,024 products, of eleven the table would have 2,048 columns.
    Table alike;
    std::string product;
    for (const char name : std::string("abcdefghijk")) {
        alike.columns.push_back({std::string(1, name), {"x", "y", "x", "y"}});
        product += (product.empty() ? "" : ":") + std::string(1, name);
        EXPECT_EQ(error_text([&] { make_design("0 + " + product, alike); }),
                  name < 'k' ? "no error"
                             : "an interaction of 11 categories is more than a design can hold");
    }
}

TEST(Table, CellsWithoutAValue)
{
    for (const char *cell : {"", "  ", "n/a", "N/A", "na", "NA", "nan", " NaN\t"}) {
        EXPECT_TRUE(is_missing(cell)) << cell;
    }
    for (const char *cell : {"0", "no", "n", "none", "-", "n / a", "[na]"}) {
        EXPECT_FALSE(is_missing(cell)) << cell;
    }
}

TEST(Table, RowsOfIt)
{
    const Table part = people.with_rows({3, 0});
    EXPECT_EQ(part.rows(), 2);
    EXPECT_EQ(part.column("id").values, Names({"s4", "s1"}));
    EXPECT_EQ(Table().rows(), 0);
}

} // namespace
