// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <gtest/gtest.h>

#include <limits>
#include <vector>

/// @file
/// Runs the program as a user does, and reads the tables that it writes.

namespace corvane
{

struct ProgramRun {
    int status; ///< -1 when it crashed or never started
    QByteArray output;
    QByteArray errors;

    /// Lines on standard error.
    int errorLines() const { return errors.count('\n'); }
};

/// What a program prints, with the ends of its lines as here.
inline QByteArray printed(QByteArray text)
{
    return text.replace("\r\n", "\n");
}

/// Runs `program` with the arguments until it ends. Programs under a sanitizer end with a status
/// of their own, which no test expects.
inline ProgramRun runProgram(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    const bool ended = process.waitForStarted() && process.waitForFinished(120000);
    const bool normally = ended && process.exitStatus() == QProcess::NormalExit;
    return {normally ? process.exitCode() : -1, printed(process.readAllStandardOutput()),
            printed(process.readAllStandardError())};
}

inline ProgramRun runCorvane(const QStringList &arguments)
{
    return runProgram(QStringLiteral(CORVANE_PROGRAM), arguments);
}

/// A CSV file of numbers without a header.
inline Eigen::MatrixXf readTable(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    std::vector<std::vector<float>> rows;
    while (!file.atEnd()) {
        std::vector<float> row;
        for (const QByteArray &field : file.readLine().trimmed().split(',')) {
            bool isNumber = false;
            row.push_back(field.toFloat(&isNumber));
            EXPECT_TRUE(isNumber || field == "nan") << field.constData();
            if (field == "nan")
                row.back() = std::numeric_limits<float>::quiet_NaN();
        }
        rows.push_back(row);
    }
    const auto columns = rows.empty() ? 0 : static_cast<Eigen::Index>(rows.front().size());
    Eigen::MatrixXf table(static_cast<Eigen::Index>(rows.size()), columns);
    for (std::size_t r = 0; r < rows.size(); ++r) {
        EXPECT_EQ(static_cast<Eigen::Index>(rows[r].size()), columns);
        for (std::size_t c = 0; c < rows[r].size(); ++c)
            table(static_cast<Eigen::Index>(r), static_cast<Eigen::Index>(c)) = rows[r][c];
    }
    return table;
}

/// Textbook correlation of rows a and b over columns from `first` on, in double precision.
inline double pearson(const Eigen::MatrixXd &series, Eigen::Index a, Eigen::Index b,
                      Eigen::Index first, Eigen::Index count)
{
    const Eigen::ArrayXd x = series.row(a).segment(first, count).transpose().array();
    const Eigen::ArrayXd y = series.row(b).segment(first, count).transpose().array();
    const Eigen::ArrayXd dx = x - x.mean();
    const Eigen::ArrayXd dy = y - y.mean();
    return (dx * dy).sum() / std::sqrt(dx.square().sum() * dy.square().sum());
}

} // namespace corvane
