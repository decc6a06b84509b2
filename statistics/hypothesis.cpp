// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/hypothesis.h"

#include <cmath>

#include <Eigen/Dense>

#include "statistics/error.h"
#include "statistics/text.h"

namespace statistics
{
namespace
{

constexpr double collinear = 1e-9;

/// An orthonormal basis of all of R^n that begins with one of the columns.
Eigen::MatrixXd completed(const Eigen::MatrixXd &columns)
{
    const Eigen::HouseholderQR<Eigen::MatrixXd> qr(columns);
    return qr.householderQ() * Eigen::MatrixXd::Identity(columns.rows(), columns.rows());
}

/// Turns the basis so that the constant, which it spans, becomes its first column.
void turn_to_constant(Eigen::MatrixXd &basis)
{
    const double entry = 1.0 / std::sqrt(static_cast<double>(basis.rows()));
    basis = basis * completed(basis.colwise().sum().transpose() * entry);
    basis.col(0).setConstant(entry);
}

void require_usable(const Eigen::MatrixXd &design, const std::vector<std::string> &columns,
                    const Contrast &contrast)
{
    if (static_cast<Eigen::Index>(columns.size()) != design.cols()) {
        throw Error(counted(static_cast<Eigen::Index>(columns.size()), "name") + " for " +
                    counted(design.cols(), "column") + " of the design");
    }
    if (contrast.weights.rows() == 0) {
        throw Error("contrast " + contrast.name + " has no row");
    }
    if (contrast.weights.cols() != design.cols()) {
        throw Error("contrast " + contrast.name + " has " +
                    counted(contrast.weights.cols(), "weight") + " for " +
                    counted(design.cols(), "column") + " of the design");
    }
    if (!design.allFinite() || !contrast.weights.allFinite()) {
        throw Error("contrast " + contrast.name + " or its design holds what is no finite number");
    }
    if ((contrast.weights.rowwise().squaredNorm().array() == 0.0).any()) {
        throw Error("contrast " + contrast.name + ": all weights of a row are 0");
    }
    if (design.rows() <= design.cols()) {
        throw Error(counted(design.rows(), "subject") + " for " + counted(design.cols(), "column") +
                    " of the design leave no degree of freedom");
    }
}

} // namespace

Eigen::MatrixXd orthonormal_basis(const Eigen::MatrixXd &matrix,
                                  const std::vector<std::string> &columns)
{
    Eigen::MatrixXd basis(matrix.rows(), matrix.cols());
    for (Eigen::Index c = 0; c < matrix.cols(); ++c) {
        const double length = matrix.col(c).norm();
        if (!(length > 0.0)) {
            throw Error("the column " + columns[c] + " of the design is 0 in all rows");
        }
        const auto before = basis.leftCols(c);
        Eigen::VectorXd rest = matrix.col(c) / length;
        for (int pass = 0; pass < 2; ++pass) {
            rest -= before * (before.transpose() * rest);
        }
        if (!(rest.norm() > collinear)) {
            const Eigen::MatrixXd earlier =
                matrix.leftCols(c) *
                matrix.leftCols(c).colwise().norm().cwiseInverse().asDiagonal();
            const Eigen::VectorXd weights =
                earlier.colPivHouseholderQr().solve(matrix.col(c) / length);
            std::vector<std::string> names;
            for (Eigen::Index other = 0; other < c; ++other) {
                if (std::abs(weights(other)) > 1e-7) {
                    names.push_back(columns[other]);
                }
            }
            throw Error("the design is collinear: " + columns[c] + " follows from " +
                        joined(names, " and "));
        }
        basis.col(c) = rest.normalized();
    }
    return basis;
}

bool spans_constant(const Eigen::MatrixXd &basis)
{
    const auto n = static_cast<double>(basis.rows());
    return std::abs(basis.colwise().sum().squaredNorm() / n - 1.0) < collinear;
}

Hypothesis make_hypothesis(const Eigen::MatrixXd &design, const std::vector<std::string> &columns,
                           const Contrast &contrast)
{
    require_usable(design, columns, contrast);
    const Eigen::MatrixXd basis = orthonormal_basis(design, columns);
    const Eigen::Index p = design.cols();
    const Eigen::Index k = contrast.weights.rows();

    // M = basis R, so M (M'M)^-1 C' = basis W with R'W = C'.
    const Eigen::MatrixXd r = basis.transpose() * design;
    const Eigen::MatrixXd w =
        r.transpose().triangularView<Eigen::Lower>().solve(contrast.weights.transpose());
    if (w.colwise().normalized().colPivHouseholderQr().rank() < k) {
        throw Error("the rows of contrast " + contrast.name + " depend on each other");
    }
    const Eigen::MatrixXd turned = completed(w);

    Hypothesis hypothesis;
    hypothesis.name = contrast.name;
    hypothesis.columns = columns;
    hypothesis.design = design;
    hypothesis.contrast = contrast.weights;
    hypothesis.tested = basis * turned.leftCols(k);
    hypothesis.nuisance = basis * turned.rightCols(p - k);
    hypothesis.df = static_cast<double>(design.rows() - p);
    if (k == 1) {
        hypothesis.estimate_scale = w.norm();
        hypothesis.tested = basis * (w / w.norm());
    }
    hypothesis.has_constant = p > k && spans_constant(hypothesis.nuisance);
    if (hypothesis.has_constant) {
        turn_to_constant(hypothesis.nuisance);
    }
    return hypothesis;
}

} // namespace statistics
