// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/centrality.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include <Eigen/Eigenvalues>

#include "graph.h"
#include "lanczos.h"

namespace nodalis
{
namespace
{

using detail::EigenPair;

/// Eigenvalues closer than this, relative to the largest, are one to a full decomposition.
constexpr double same = 1e-11;

/// The definition by a full decomposition. Unlike iteration it sees all of a shared space.
Eigen::VectorXd decomposed(const Eigen::MatrixXf &weights)
{
    const Eigen::Index n = weights.rows();
    const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver(weights.cast<double>());
    const double top = solver.eigenvalues()[n - 1];
    const Eigen::Index shared = (solver.eigenvalues().array() >= top * (1.0 - same)).count();
    const auto space = solver.eigenvectors().rightCols(shared);
    const Eigen::VectorXd projection = space * (space.transpose() * Eigen::VectorXd::Ones(n));
    return projection.norm() > 1e-7 ? projection : space.rowwise().norm();
}

/// A vector without any symmetry that a graph could have.
Eigen::VectorXd irregular(Eigen::Index n)
{
    return Eigen::VectorXd::NullaryExpr(
        n, [](Eigen::Index i) { return std::sin(1.0 + static_cast<double>(i * i)); });
}

/// Iteration from the vector of ones finds its projection on the leading space, unless the two are
/// at right angles. That takes negative weights: without them the leading vectors are >= 0.
Eigen::VectorXd leading_vector(const Eigen::MatrixXf &weights)
{
    const Eigen::Index n = weights.rows();
    // Beyond this many steps a decomposition is no slower.
    const Eigen::Index most_steps = std::min(n, std::max<Eigen::Index>(32, n / 2));
    const Eigen::VectorXd ones = Eigen::VectorXd::Ones(n);
    const std::optional<EigenPair> found = detail::leading_pair(weights, ones, most_steps);
    if (!found) {
        return decomposed(weights);
    }
    if (weights.minCoeff() < 0.0F) {
        const double part = std::abs(found->vector.sum()) / std::sqrt(static_cast<double>(n));
        const auto other = detail::leading_pair(weights, irregular(n), most_steps);
        if (part < 1e-6 || !other || other->value > found->value + same * std::abs(other->value)) {
            return decomposed(weights);
        }
    }
    return found->vector;
}

} // namespace

inline namespace NODALIS_ABI
{

Eigen::ArrayXf eigenvector_centrality(const Eigen::MatrixXf &matrix)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "eigenvector_centrality");
    if (weights.size() == 0 || (weights.minCoeff() == 0.0F && weights.maxCoeff() == 0.0F)) {
        return Eigen::ArrayXf::Zero(weights.rows());
    }
    const Eigen::ArrayXd vector = leading_vector(weights).cwiseAbs().normalized();
    // What is left of nodes outside the leading components.
    return (vector > detail::accuracy).select(vector, 0.0).cast<float>();
}

} // namespace NODALIS_ABI
} // namespace nodalis
