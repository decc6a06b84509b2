// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/distances.h>

#include <algorithm>
#include <cmath>

#include <Eigen/Eigenvalues>

#include "graph.h"

namespace nodalis
{
namespace
{

/// Ascending eigenvalues.
Eigen::VectorXd spectrum(const Eigen::MatrixXf &matrix)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "distances::spectral_euclidean");
    if (weights.size() == 0) {
        return {};
    }
    return Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd>(weights.cast<double>(),
                                                          Eigen::EigenvaluesOnly)
        .eigenvalues();
}

/// The spectrum of the graph with unconnected nodes added up to \p size nodes, ascending.
Eigen::VectorXd padded(const Eigen::VectorXd &spectrum, Eigen::Index size)
{
    const double *const end = spectrum.data() + spectrum.size();
    const Eigen::Index negative = std::lower_bound(spectrum.data(), end, 0.0) - spectrum.data();
    Eigen::VectorXd result = Eigen::VectorXd::Zero(size);
    result.head(negative) = spectrum.head(negative);
    result.tail(spectrum.size() - negative) = spectrum.tail(spectrum.size() - negative);
    return result;
}

} // namespace

inline namespace NODALIS_ABI
{

namespace distances
{

float spectral_euclidean(Eigen::MatrixXf &a, Eigen::MatrixXf &b, int size)
{
    const Eigen::VectorXd spectrum_a = spectrum(a);
    const Eigen::VectorXd spectrum_b = spectrum(b);
    // From n_a + n_b nodes on, further padding pairs zeros with zeros only.
    const Eigen::Index common = std::max({a.rows(), b.rows(), Eigen::Index{size}});
    const Eigen::Index m = std::min(common, a.rows() + b.rows());
    return static_cast<float>((padded(spectrum_a, m) - padded(spectrum_b, m)).norm());
}

} // namespace distances

} // namespace NODALIS_ABI
} // namespace nodalis
