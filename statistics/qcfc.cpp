// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/qcfc.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "statistics/correlation.h"
#include "statistics/distributions.h"
#include "statistics/error.h"
#include "statistics/false_discovery.h"
#include "statistics/hypothesis.h"
#include "statistics/text.h"

namespace statistics
{
namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// An orthonormal basis of the constant and the covariates.
Eigen::MatrixXd nuisance_basis(const Eigen::MatrixXd &covariates,
                               const std::vector<std::string> &names, Index subjects)
{
    if (covariates.cols() > 0 && covariates.rows() != subjects) {
        throw Error("covariates of " + counted(covariates.rows(), "subject") + ", data of " +
                    std::to_string(subjects));
    }
    if (static_cast<Index>(names.size()) != covariates.cols()) {
        throw Error(counted(static_cast<Index>(names.size()), "name") + " for " +
                    counted(covariates.cols(), "covariate"));
    }
    Eigen::MatrixXd basis = orthonormal_basis(covariates, names);
    if (covariates.cols() > 0 && spans_constant(basis)) {
        return basis;
    }
    Eigen::MatrixXd with_constant(subjects, covariates.cols() + 1);
    with_constant.col(0).setOnes();
    if (covariates.cols() > 0) {
        with_constant.rightCols(covariates.cols()) = covariates;
    }
    std::vector<std::string> all = {"(Intercept)"};
    all.insert(all.end(), names.begin(), names.end());
    return orthonormal_basis(with_constant, all);
}

Eigen::VectorXd residual(const Eigen::VectorXd &values, const Eigen::MatrixXd &basis)
{
    const Eigen::VectorXd once = values - basis * (basis.transpose() * values);
    return once - basis * (basis.transpose() * once);
}

bool is_nothing(const Eigen::VectorXd &rest, const Eigen::VectorXd &of)
{
    return rest.squaredNorm() <= 1e-20 * of.squaredNorm();
}

std::vector<Index> finite_entries(const Eigen::ArrayXd &values)
{
    std::vector<Index> entries;
    for (Index i = 0; i < values.size(); ++i) {
        if (std::isfinite(values(i))) {
            entries.push_back(i);
        }
    }
    return entries;
}

double median(std::vector<double> values)
{
    if (values.empty()) {
        return nan;
    }
    std::sort(values.begin(), values.end());
    const std::size_t half = values.size() / 2;
    return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2.0;
}

double share_below(const Eigen::ArrayXd &values, double limit, std::size_t of)
{
    return of == 0 ? nan : static_cast<double>((values < limit).count()) / static_cast<double>(of);
}

void summarise(const Eigen::ArrayXd &distances, QcFc &result)
{
    const std::vector<Index> known = finite_entries(result.r);
    result.share_p_below_05 = share_below(result.p, 0.05, known.size());
    result.share_q_below_05 = share_below(result.q, 0.05, known.size());
    std::vector<double> sizes;
    for (const Index e : known) {
        sizes.push_back(std::abs(result.r(e)));
    }
    result.median_absolute_r = median(std::move(sizes));
    result.distance_dependence = nan;
    if (distances.size() > 0) {
        std::vector<Index> both = finite_entries(result.r + distances);
        result.distances = static_cast<Index>(both.size());
        result.distance_dependence =
            spearman(Eigen::ArrayXd(result.r(both)), Eigen::ArrayXd(distances(both)));
    }
}

} // namespace

QcFc qcfc(const EdgeData &data, const Eigen::VectorXd &mean_fd, const Eigen::MatrixXd &covariates,
          const std::vector<std::string> &names, const Eigen::ArrayXd &distances)
{
    require_finite(data);
    if (mean_fd.size() != data.rows() || !mean_fd.allFinite() || !covariates.allFinite()) {
        throw Error(
            "mean FD or a covariate is missing for a subject: " + counted(mean_fd.size(), "value") +
            " of FD for " + counted(data.rows(), "subject"));
    }
    if (distances.size() != 0 && distances.size() != data.cols()) {
        throw Error(counted(distances.size(), "distance") + " for " + counted(data.cols(), "edge"));
    }
    const Eigen::MatrixXd basis = nuisance_basis(covariates, names, data.rows());
    QcFc result;
    result.df = static_cast<double>(data.rows() - 1 - basis.cols());
    if (result.df < 1.0) {
        throw Error(counted(data.rows(), "subject") + " with " + counted(basis.cols(), "column") +
                    " beside motion leave no degree of freedom for QC-FC");
    }
    const Eigen::VectorXd motion = residual(mean_fd, basis);
    if (is_nothing(motion, mean_fd)) {
        throw Error("mean FD is the same in all subjects, or follows from the covariates");
    }
    result.r.resize(data.cols());
    result.p.resize(data.cols());
    for (Index e = 0; e < data.cols(); ++e) {
        const Eigen::VectorXd values = data.col(e);
        const Eigen::VectorXd rest = residual(values, basis);
        if (is_nothing(rest, values)) {
            result.r(e) = result.p(e) = nan;
            continue;
        }
        const double r = std::clamp(motion.normalized().dot(rest.normalized()), -1.0, 1.0);
        result.r(e) = r;
        result.p(e) = std::abs(r) == 1.0
                          ? 0.0
                          : t_two_sided(r * std::sqrt(result.df / (1.0 - r * r)), result.df);
    }
    result.q = benjamini_hochberg(result.p);
    summarise(distances, result);
    return result;
}

} // namespace statistics
