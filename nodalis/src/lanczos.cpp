// SPDX-License-Identifier: GPL-3.0-or-later
#include "lanczos.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <Eigen/Eigenvalues>

#include "kernels/kernels.h"

namespace nodalis::detail
{
namespace
{

constexpr double epsilon = std::numeric_limits<double>::epsilon();

/// The product of a symmetric matrix with a vector, from the half above the diagonal.
Eigen::VectorXd product(const Eigen::MatrixXf &matrix, const Eigen::VectorXd &x)
{
    const Kernels &wide = kernels();
    Eigen::VectorXd result(x.size());
    for (Eigen::Index j = 0; j < x.size(); ++j) {
        const float *const column = matrix.data() + j * matrix.rows();
        result[j] = wide.half_product(result.data(), x.data(), x[j], column, static_cast<int>(j));
    }
    return result;
}

/// A symmetric tridiagonal matrix whose entries beside the diagonal are positive.
struct Tridiagonal {
    Eigen::VectorXd diagonal;
    Eigen::VectorXd beside;
};

/// Its spectrum's ends and the eigenvector of the upper one.
struct UpperEnd {
    double value;
    double extent; ///< largest absolute eigenvalue
    Eigen::VectorXd vector;
};

/// The eigenvector of an eigenvalue at the upper end of the spectrum, from a twisted factorization
/// of T - value (Dhillon 1997): recurrences from both ends meet where they fit best.
Eigen::VectorXd upper_vector(const Tridiagonal &t, double value, double smallest_pivot)
{
    const Eigen::Index k = t.diagonal.size();
    // Below the spectrum's end all pivots before the twist are negative.
    const auto pivot = [&](Eigen::Index i, double beside, double previous) {
        return std::min(t.diagonal[i] - value - beside * beside / previous, -smallest_pivot);
    };
    Eigen::VectorXd down(k);
    Eigen::VectorXd up(k);
    for (Eigen::Index i = 0; i < k; ++i) {
        down[i] = i == 0 ? pivot(0, 0.0, 1.0) : pivot(i, t.beside[i - 1], down[i - 1]);
    }
    for (Eigen::Index i = k; i-- > 0;) {
        up[i] = i == k - 1 ? pivot(i, 0.0, 1.0) : pivot(i, t.beside[i], up[i + 1]);
    }
    Eigen::Index twist = 0;
    (down + up - (t.diagonal.array() - value).matrix()).cwiseAbs().minCoeff(&twist);
    Eigen::VectorXd vector(k);
    vector[twist] = 1.0;
    for (Eigen::Index i = twist; i-- > 0;) {
        vector[i] = -t.beside[i] / down[i] * vector[i + 1];
    }
    for (Eigen::Index i = twist + 1; i < k; ++i) {
        vector[i] = -t.beside[i - 1] / up[i] * vector[i - 1];
    }
    return vector.normalized();
}

/// Eigenvalues, ascending.
Eigen::VectorXd spectrum(const Tridiagonal &t)
{
    // The solver compares entries with the square root of others: bring them near 1, by a power of
    // two, which rounds nothing.
    const double largest =
        std::max(t.diagonal.lpNorm<Eigen::Infinity>(), t.beside.lpNorm<Eigen::Infinity>());
    const double unit = largest > 0.0 ? std::ldexp(1.0, std::ilogb(largest)) : 1.0;
    Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver;
    solver.computeFromTridiagonal(t.diagonal / unit, t.beside / unit, Eigen::EigenvaluesOnly);
    return solver.eigenvalues() * unit;
}

UpperEnd upper_end(const Tridiagonal &t)
{
    const Eigen::Index k = t.diagonal.size();
    const Eigen::VectorXd values = spectrum(t);
    const double extent = std::max(-values[0], values[k - 1]);
    const double smallest_pivot =
        std::max(epsilon * epsilon * extent, std::numeric_limits<double>::min());
    return {values[k - 1], extent, upper_vector(t, values[k - 1], smallest_pivot)};
}

/// Steps after which to look whether the end of the spectrum is there: ever more rarely, since
/// looking takes longer.
bool is_time_to_look(Eigen::Index steps, Eigen::Index &next)
{
    if (steps < next) {
        return false;
    }
    next = steps + 2 + steps / 4;
    return true;
}

} // namespace

std::optional<EigenPair> leading_pair(const Eigen::MatrixXf &matrix, const Eigen::VectorXd &start,
                                      Eigen::Index most_steps)
{
    const Eigen::Index n = matrix.rows();
    Eigen::MatrixXd basis(n, std::min<Eigen::Index>(most_steps, 16));
    Eigen::VectorXd diagonal(most_steps);
    Eigen::VectorXd beside(most_steps);
    Eigen::VectorXd next = start.normalized();
    Eigen::Index next_look = 2;
    double extent = 0.0;
    for (Eigen::Index step = 0; step < most_steps; ++step) {
        if (step == basis.cols()) {
            basis.conservativeResize(Eigen::NoChange, std::min(2 * step, most_steps));
        }
        basis.col(step) = next;
        next = product(matrix, basis.col(step));
        diagonal[step] = next.dot(basis.col(step));
        const auto used = basis.leftCols(step + 1);
        for (int round = 0; round < 2; ++round) {
            next -= used * (used.transpose() * next);
        }
        beside[step] = next.norm();
        extent = std::max({extent, std::abs(diagonal[step]), beside[step]});

        const bool exhausted = beside[step] <= 8.0 * epsilon * extent || step + 1 == n;
        if (exhausted || step + 1 == most_steps || is_time_to_look(step + 1, next_look)) {
            const UpperEnd end = upper_end({diagonal.head(step + 1), beside.head(step)});
            if (exhausted || beside[step] * std::abs(end.vector[step]) <= accuracy * end.extent) {
                return EigenPair{end.value, (used * end.vector).normalized()};
            }
        }
        next /= beside[step];
    }
    return std::nullopt;
}

} // namespace nodalis::detail
