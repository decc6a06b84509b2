// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nodalis/csv.h>

namespace fs = std::filesystem;

inline std::string contents(const fs::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Each test has an empty folder of its own.
class Csv : public testing::Test
{
protected:
    void SetUp() override
    {
        m_folder =
            fs::temp_directory_path() / ("nodalis_csv_" + std::to_string(std::random_device{}()));
        fs::create_directories(m_folder);
    }
    void TearDown() override { fs::remove_all(m_folder); }

    std::string path(const std::string &name) const { return (m_folder / name).string(); }
    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const fs::directory_entry &entry : fs::directory_iterator(m_folder)) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }
    std::string written(const Eigen::MatrixXf &matrix) const
    {
        EXPECT_TRUE(nodalis::to_csv(matrix, path("matrix.csv")));
        return contents(path("matrix.csv"));
    }

private:
    fs::path m_folder;
};

using Names = std::vector<std::string>;
