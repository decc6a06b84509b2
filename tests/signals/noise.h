// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <random>

#include <Eigen/Core>

/// Random numbers that are the same with every standard library.
class Noise
{
public:
    explicit Noise(unsigned seed) : m_generator(seed) {}

    /// Even over (0, 1).
    double uniform() { return (double(m_generator()) + 0.5) / 4294967296.0; }
    /// Of mean 0 and variance 1, by Box and Muller.
    double normal()
    {
        const double length = std::sqrt(-2 * std::log(uniform()));
        return length * std::cos(6.283185307179586 * uniform());
    }
    Eigen::MatrixXd white(Eigen::Index rows, Eigen::Index columns)
    {
        return Eigen::MatrixXd::NullaryExpr(rows, columns, [this] { return normal(); });
    }
    /// Columns of variance 1 whose values are correlated by phi from row to row.
    Eigen::MatrixXd serial(Eigen::Index rows, Eigen::Index columns, double phi)
    {
        Eigen::MatrixXd values = white(rows, columns);
        for (Eigen::Index row = 1; row < rows; ++row) {
            values.row(row) =
                phi * values.row(row - 1) + std::sqrt(1 - phi * phi) * values.row(row);
        }
        return values;
    }

private:
    std::mt19937 m_generator;
};
