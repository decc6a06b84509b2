// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include <Eigen/Core>

#include "statistics/glm.h"

namespace statistics
{

/// Estimates and t of all edges without one subject.
struct WithoutSubject {
    Eigen::ArrayXd estimate;
    Eigen::ArrayXd t;
    double df = 0.0;
};

/// What a subject does to the result.
struct Influence {
    double leverage = 0.0; ///< h, 0 to 1
    /// The largest change of |t| and of the estimate at any edge, without the subject less with
    /// all, and where. NaN and -1 if the model cannot do without the subject.
    double t_change = 0.0;
    Index t_edge = -1;
    double estimate_change = 0.0;
    Index estimate_edge = -1;
    /// With a threshold: edges of the largest network without the subject, and how many of them and
    /// of the largest with all are in both, as a share of those in either (Jaccard; 1 if neither
    /// has one).
    Index extent = 0;
    double jaccard = 0.0;
};

/// The model of all edges without subject i, from the fit of all, without fitting again:
///
///     D = (M'M)^-1, h = m'D m, m the subject's row of M, e its residuals
///     b_-i = b - D m e / (1 - h)           RSS_-i = RSS - e^2 / (1 - h)
///     D_-i = D + D m m'D / (1 - h)         df - 1
///
/// Source: Cook 1977, Technometrics 19:15, doi:10.2307/1268249. No permutations are done. Holds the
/// residuals, as much memory as the data.
class LeaveOneOut
{
public:
    /// \throws Error if the hypothesis is an F, the data have other subjects, something is not
    ///         finite, or there is one degree of freedom only.
    LeaveOneOut(const EdgeData &data, const Hypothesis &hypothesis);

    /// NaN throughout if 1 - h is below 1e-10. Edges that are constant with all subjects have t =
    /// 0.
    WithoutSubject without(Index subject) const;

    /// One per subject.
    /// \param threshold of t, for networks.
    std::vector<Influence> influences(std::optional<double> threshold = std::nullopt,
                                      Sides sides = Sides::each, int threads = 0) const;

private:
    Influence influence(Index subject, std::optional<double> threshold, Sides sides,
                        const std::vector<Index> &largest) const;

    Eigen::VectorXd m_tested; ///< a: c'D m of subject i is scale a_i, c'D c is scale^2
    double m_scale;
    double m_df;
    Eigen::VectorXd m_leverage; ///< h
    EdgeData m_residuals;       ///< e
    Eigen::ArrayXd m_rss;
    Eigen::ArrayXd m_floor; ///< what counts as the least RSS, as with all subjects
    GlmResult m_all;
};

} // namespace statistics
