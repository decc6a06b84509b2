// SPDX-License-Identifier: GPL-3.0-or-later

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <thread>

#include "tests/nodalis/csv_fixture.h"

namespace
{

namespace fs = std::filesystem;

TEST_F(Csv, HasALinePerRowAndACommaBetweenValues)
{
    Eigen::MatrixXf matrix(2, 3);
    matrix << 1.0F, -0.5F, 0.1F, 0.0F, 1e-20F, 16777216.0F;
    EXPECT_EQ(written(matrix), "1,-0.5,0.1\n0,1e-20,16777216\n");
    EXPECT_EQ(files(), Names{"matrix.csv"});
}

TEST_F(Csv, SpellsWhatIsNotFinite)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    Eigen::MatrixXf matrix(1, 5);
    matrix << nan, std::copysign(nan, -1.0F), infinity, -infinity, -0.0F;
    EXPECT_EQ(written(matrix), "nan,nan,inf,-inf,-0\n");
}

TEST_F(Csv, WritesEmptyMatrices)
{
    EXPECT_EQ(written(Eigen::MatrixXf(0, 0)), "");
    EXPECT_EQ(written(Eigen::MatrixXf(0, 3)), "");
    EXPECT_EQ(written(Eigen::MatrixXf(2, 0)), "\n\n");
}

TEST_F(Csv, ReadsBackAsTheSameBits)
{
    // Any pattern of bits that is a number: subnormal, huge, neighbouring.
    std::mt19937 random(3);
    Eigen::MatrixXf matrix(200, 50);
    for (float &value : matrix.reshaped()) {
        do {
            const std::uint32_t bits = static_cast<std::uint32_t>(random());
            std::memcpy(&value, &bits, sizeof value);
        } while (!std::isfinite(value));
    }
    std::istringstream text(written(matrix));
    std::string line;
    for (int row = 0; row < matrix.rows(); ++row) {
        ASSERT_TRUE(std::getline(text, line));
        const char *cell = line.c_str();
        for (int column = 0; column < matrix.cols(); ++column) {
            char *end = nullptr;
            const float value = std::strtof(cell, &end);
            EXPECT_EQ(std::memcmp(&value, &matrix(row, column), sizeof value), 0) << cell;
            cell = end + 1;
        }
    }
    EXPECT_FALSE(std::getline(text, line));
}

TEST_F(Csv, AddsTheEndingUnlessItIsThere)
{
    const Eigen::MatrixXf matrix = Eigen::MatrixXf::Ones(1, 1);
    EXPECT_TRUE(nodalis::to_csv(matrix, path("plain")));
    EXPECT_TRUE(nodalis::to_csv(matrix, path("dotted.txt")));
    EXPECT_TRUE(nodalis::to_csv(matrix, path("there.csv")));
    EXPECT_TRUE(nodalis::to_csv(matrix, path("UPPER.CSV")));
    EXPECT_TRUE(nodalis::to_csv(matrix, path("Mixed.Csv")));
    EXPECT_TRUE(nodalis::to_csv(matrix, path("csv")));
    EXPECT_TRUE(nodalis::to_csv(matrix, path("in.csv.middle")));
    Names names = files();
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (Names{"Mixed.Csv", "UPPER.CSV", "csv.csv", "dotted.txt.csv",
                            "in.csv.middle.csv", "plain.csv", "there.csv"}));
}

TEST_F(Csv, TakesAPathInUtf8)
{
    EXPECT_TRUE(nodalis::to_csv(Eigen::MatrixXf::Ones(1, 1), path("Größe \u03bb \u8133.csv")));
    EXPECT_EQ(contents(fs::u8path(path("Größe \u03bb \u8133.csv"))), "1\n");
}

TEST_F(Csv, TakesANameOfTheLongestLength)
{
    const std::string longest = std::string(251, 'x') + ".csv";
    EXPECT_TRUE(nodalis::to_csv(Eigen::MatrixXf::Ones(1, 1), path(longest)));
    EXPECT_EQ(files(), Names{longest});
}

TEST_F(Csv, TakesAPathRelativeToTheCurrentFolder)
{
    const fs::path before = fs::current_path();
    fs::current_path(path(""));
    EXPECT_TRUE(nodalis::to_csv(Eigen::MatrixXf::Ones(1, 1), "here"));
    EXPECT_TRUE(nodalis::to_csv(Eigen::MatrixXf::Ones(1, 1), "r")) << "shorter than the ending";
    fs::current_path(before);
    Names names = files();
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (Names{"here.csv", "r.csv"}));
}

TEST_F(Csv, ReplacesAnExistingFileAndKeepsItsPermissions)
{
    std::ofstream(path("old.csv")) << "something much longer than the new text";
    fs::permissions(path("old.csv"), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_TRUE(nodalis::to_csv(Eigen::MatrixXf::Ones(1, 1), path("old.csv")));
    EXPECT_EQ(contents(path("old.csv")), "1\n");
    EXPECT_EQ(fs::status(path("old.csv")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(files(), Names{"old.csv"});
}

TEST_F(Csv, IgnoresTheLocale)
{
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new Comma));
    Eigen::MatrixXf matrix(1, 2);
    matrix << 0.5F, 123456.0F;
    EXPECT_EQ(written(matrix), "0.5,123456\n");
    std::locale::global(before);
}

TEST_F(Csv, SaysThatItCannotWrite)
{
    const Eigen::MatrixXf matrix = Eigen::MatrixXf::Ones(2, 2);
    std::ofstream(path("file")) << "text";
    fs::create_directory(path("folder.csv"));
    EXPECT_FALSE(nodalis::to_csv(matrix, path("file/below")));
    EXPECT_FALSE(nodalis::to_csv(matrix, path("missing/folder")));
    EXPECT_FALSE(nodalis::to_csv(matrix, path("folder")));
    EXPECT_FALSE(nodalis::to_csv(matrix, path(std::string(252, 'x'))));
    EXPECT_FALSE(nodalis::to_csv(matrix, path(std::string("a\0b", 3))));
    EXPECT_FALSE(nodalis::to_csv(matrix, path(std::string(300, 'x') + "/below")))
        << "a folder of which the system cannot even tell whether it is there";
    EXPECT_FALSE(nodalis::to_csv(matrix, path("")));
    EXPECT_FALSE(nodalis::to_csv(matrix, ""));
    Names names = files();
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (Names{"file", "folder.csv"}));
    EXPECT_EQ(contents(path("file")), "text");
}

TEST_F(Csv, IsWholeWhoeverWritesLast)
{
    const auto write = [&](float value) {
        for (int round = 0; round < 50; ++round) {
            EXPECT_TRUE(
                nodalis::to_csv(Eigen::MatrixXf::Constant(30, 30, value), path("shared.csv")));
        }
    };
    std::thread other(write, 2.0F);
    write(1.0F);
    other.join();
    const std::string text = contents(path("shared.csv"));
    EXPECT_EQ(text.size(), 30U * 60U);
    EXPECT_TRUE(text.find('1') == std::string::npos || text.find('2') == std::string::npos);
    EXPECT_EQ(files(), Names{"shared.csv"});
}

} // namespace
