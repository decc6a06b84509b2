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

/// \p function is the one that was called.
Eigen::VectorXd eigenvalues(const Eigen::MatrixXf &matrix, const char *function)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, function);
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
    constexpr auto function = "distances::spectral_euclidean";
    return between_spectra(eigenvalues(a, function), eigenvalues(b, function), size);
}

Eigen::VectorXd spectrum(const Eigen::MatrixXf &matrix)
{
    return eigenvalues(matrix, "distances::spectrum");
}

float between_spectra(const Eigen::VectorXd &a, const Eigen::VectorXd &b, int size)
{
    // From n_a + n_b nodes on, further padding pairs zeros with zeros only.
    const Eigen::Index common = std::max({a.size(), b.size(), Eigen::Index{size}});
    const Eigen::Index m = std::min(common, a.size() + b.size());
    return static_cast<float>((padded(a, m) - padded(b, m)).norm());
}

} // namespace distances

} // namespace NODALIS_ABI
} // namespace nodalis
