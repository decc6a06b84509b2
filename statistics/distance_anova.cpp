// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/distance_anova.h"

#include <algorithm>
#include <string>
#include <vector>

#include "statistics/distances.h"
#include "statistics/error.h"
#include "statistics/parallel.h"
#include "statistics/text.h"

namespace statistics
{
namespace
{

/// x less what the orthonormal columns explain of it, from both sides.
Eigen::MatrixXd without_span(const Eigen::MatrixXd &gram, const Eigen::MatrixXd &basis)
{
    const Eigen::MatrixXd left = gram - basis * (basis.transpose() * gram);
    return left - (left * basis) * basis.transpose();
}

/// F of the residuals' Gram matrix, with its rows and columns rearranged.
class DistanceF
{
public:
    DistanceF(const Eigen::MatrixXd &gram, const Hypothesis &hypothesis)
        : m_gram(gram), m_tested(hypothesis.tested),
          m_nuisance(hypothesis.nuisance.rightCols(hypothesis.nuisance.cols() - 1)),
          m_total(gram.trace()), m_df(hypothesis.df)
    {
    }

    double tested(const std::vector<int> &source) const { return explained(m_tested, source); }

    double operator()(const std::vector<int> &source) const
    {
        const double sum = tested(source);
        const double rest =
            std::max(m_total - explained(m_nuisance, source) - sum, 1e-14 * m_total);
        return sum / static_cast<double>(m_tested.cols()) / (rest / m_df);
    }

private:
    /// tr(B'GB): subject i has the data of source[i].
    double explained(const Eigen::MatrixXd &basis, const std::vector<int> &source) const
    {
        double sum = 0.0;
        Eigen::VectorXd moved(basis.rows());
        for (Index c = 0; c < basis.cols(); ++c) {
            for (Index i = 0; i < basis.rows(); ++i) {
                moved(source[i]) = basis(i, c);
            }
            sum += moved.dot(m_gram * moved);
        }
        return sum;
    }

    const Eigen::MatrixXd &m_gram;
    Eigen::MatrixXd m_tested;
    Eigen::MatrixXd m_nuisance; ///< without the constant, which the residuals lack in any order
    double m_total;
    double m_df;
};

void require_fitting(const Eigen::MatrixXd &distances, const Hypothesis &hypothesis,
                     const Rearrangements &rearrangements)
{
    require_distances(distances);
    if (distances.rows() != hypothesis.subjects() ||
        rearrangements.subjects() != hypothesis.subjects()) {
        throw Error("distances of " + counted(distances.rows(), "subject") +
                    ", rearrangements of " + std::to_string(rearrangements.subjects()) +
                    " and a design of " + std::to_string(hypothesis.subjects()));
    }
    if (!hypothesis.has_constant || rearrangements.has_signs()) {
        throw Error("contrast " + hypothesis.name +
                    " asks for a mean; distances tell of differences between subjects only");
    }
}

} // namespace

DistanceAnova distance_anova(const Eigen::MatrixXd &distances, const Hypothesis &hypothesis,
                             const Rearrangements &rearrangements, int threads)
{
    require_fitting(distances, hypothesis, rearrangements);
    const Index n = distances.rows();
    // The reduced model holds the constant, so its residuals are centred: J G J needs no step of
    // its own.
    const Eigen::MatrixXd squares = -0.5 * distances.cwiseAbs2();
    const Eigen::MatrixXd gram = without_span(squares, hypothesis.nuisance);
    const Eigen::MatrixXd centred = without_span(squares, hypothesis.nuisance.leftCols(1));
    if (!(gram.trace() > 1e-12 * centred.trace()) || !(centred.trace() > 0.0)) {
        throw Error("the distances do not differ, or the columns beside the tested one explain all "
                    "of them");
    }

    const DistanceF statistic(gram, hypothesis);
    std::vector<int> identity(static_cast<std::size_t>(n));
    for (Index i = 0; i < n; ++i) {
        identity[i] = static_cast<int>(i);
    }
    DistanceAnova result;
    result.f = statistic(identity);
    result.df_tested = static_cast<double>(hypothesis.tested.cols());
    result.df_residual = hypothesis.df;
    result.r_squared = statistic.tested(identity) / centred.trace();
    result.null_f.resize(rearrangements.count());
    constexpr Index chunk = 32;
    for_each_chunk((rearrangements.count() + chunk - 1) / chunk, threads, [&](Index at, int) {
        std::vector<int> source(static_cast<std::size_t>(n));
        std::vector<double> sign(source.size());
        const Index behind = std::min((at + 1) * chunk, rearrangements.count());
        for (Index p = at * chunk; p < behind; ++p) {
            rearrangements.get(p, source.data(), sign.data());
            result.null_f(p) = statistic(source);
        }
    });
    result.p = rearrangements.p_value(count_reaching(result.null_f, result.f));
    return result;
}

} // namespace statistics
