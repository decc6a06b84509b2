// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/tangent.h"

#include <cmath>
#include <limits>
#include <string>

#include <Eigen/Eigenvalues>

#include "statistics/error.h"

namespace statistics
{
namespace
{

constexpr int most_steps = 30;
constexpr double small_enough = 1e-7;

/// The symmetric matrix with a function applied to its eigenvalues.
template <typename Function>
Eigen::MatrixXd of_eigenvalues(const Eigen::MatrixXd &matrix, Function function)
{
    const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver(matrix);
    const Eigen::MatrixXd &vectors = solver.eigenvectors();
    const Eigen::MatrixXd result =
        vectors * solver.eigenvalues().unaryExpr(function).asDiagonal() * vectors.transpose();
    return (result + result.transpose()) / 2.0;
}

Eigen::MatrixXd symmetric_product(const Eigen::MatrixXd &outer, const Eigen::MatrixXd &inner)
{
    const Eigen::MatrixXd product = outer * inner * outer;
    return (product + product.transpose()) / 2.0;
}

void require_covariances(const std::vector<Eigen::MatrixXd> &covariances)
{
    if (covariances.empty() || covariances.front().rows() == 0) {
        throw Error("there are no covariances");
    }
    for (std::size_t i = 0; i < covariances.size(); ++i) {
        const Eigen::MatrixXd &matrix = covariances[i];
        const std::string which = "the covariance of subject " + std::to_string(i);
        if (matrix.rows() != matrix.cols() || matrix.rows() != covariances.front().rows()) {
            throw Error(which + " has " + std::to_string(matrix.rows()) + " x " +
                        std::to_string(matrix.cols()) + " entries, the first one has " +
                        std::to_string(covariances.front().rows()) + " rows");
        }
        const double largest = matrix.cwiseAbs().maxCoeff();
        if (!matrix.allFinite() ||
            (matrix - matrix.transpose()).cwiseAbs().maxCoeff() > 1e-9 * largest) {
            throw Error(which + " is not symmetric or not finite");
        }
        const Eigen::VectorXd values =
            Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd>(matrix, Eigen::EigenvaluesOnly)
                .eigenvalues();
        if (!(values.minCoeff() > 1e-12 * values.maxCoeff())) {
            throw Error(which + " is not positive definite; shrinkage makes it so");
        }
    }
}

} // namespace

TangentSpace tangent_space(const std::vector<Eigen::MatrixXd> &covariances)
{
    require_covariances(covariances);
    const auto nodes = static_cast<double>(covariances.front().rows());
    const auto subjects = static_cast<double>(covariances.size());
    TangentSpace space;
    space.mean = covariances.front();
    for (std::size_t i = 1; i < covariances.size(); ++i) {
        space.mean += covariances[i];
    }
    space.mean /= subjects;

    double step = 1.0;
    double before = std::numeric_limits<double>::infinity();
    while (true) {
        const Eigen::MatrixXd root =
            of_eigenvalues(space.mean, [](double value) { return std::sqrt(value); });
        const Eigen::MatrixXd inverse_root =
            of_eigenvalues(space.mean, [](double value) { return 1.0 / std::sqrt(value); });
        Eigen::MatrixXd direction = Eigen::MatrixXd::Zero(root.rows(), root.cols());
        space.tangent.clear();
        for (const Eigen::MatrixXd &covariance : covariances) {
            space.tangent.push_back(of_eigenvalues(symmetric_product(inverse_root, covariance),
                                                   [](double value) { return std::log(value); }));
            direction += space.tangent.back() / subjects;
        }
        const double length = direction.norm();
        space.rest = length / (nodes * nodes);
        if (space.rest < small_enough) {
            return space;
        }
        if (space.steps == most_steps || !std::isfinite(length)) {
            throw Error("the geometric mean of the covariances was not found in " +
                        std::to_string(most_steps) + " steps");
        }
        if (length > before) {
            step /= 2.0;
        }
        before = length;
        space.mean = symmetric_product(
            root, of_eigenvalues(step * direction, [](double value) { return std::exp(value); }));
        ++space.steps;
    }
}

} // namespace statistics
