// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/centrality.h>

#include <Eigen/Eigenvalues>

#include "graph.h"

namespace nodalis
{
inline namespace NODALIS_ABI
{

Eigen::ArrayXf eigenvector_centrality(const Eigen::MatrixXf &matrix)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "eigenvector_centrality");
    const Eigen::Index n = weights.rows();
    if (n == 0 || weights.isZero(0.0F)) {
        return Eigen::ArrayXf::Zero(n);
    }
    const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver(weights.cast<double>());
    const double top = solver.eigenvalues()[n - 1];
    const Eigen::Index shared = (solver.eigenvalues().array() >= top * (1.0 - 1e-12)).count();
    const auto basis = solver.eigenvectors().rightCols(shared);
    Eigen::VectorXd vector = basis * (basis.transpose() * Eigen::VectorXd::Ones(n));
    if (vector.norm() < 1e-9) {
        vector = basis.rowwise().norm();
    }
    return vector.normalized().cwiseAbs().cast<float>();
}

} // namespace NODALIS_ABI
} // namespace nodalis
