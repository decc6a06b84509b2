// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/leave_one_out.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <string>

#include "statistics/components.h"
#include "statistics/error.h"
#include "statistics/parallel.h"

namespace statistics
{
namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// The edges of the largest component on any side.
std::vector<Index> largest_network(const Eigen::ArrayXd &t, double threshold, Sides sides)
{
    std::vector<Component> candidates;
    const auto add = [&](const Eigen::ArrayXd &values) {
        std::vector<Component> found = find_components(values, threshold);
        if (!found.empty()) {
            candidates.push_back(std::move(found.front()));
        }
    };
    if (sides == Sides::both) {
        add(t.abs());
    }
    if (sides == Sides::greater || sides == Sides::each) {
        add(t);
    }
    if (sides == Sides::less || sides == Sides::each) {
        add(-t);
    }
    const auto largest = std::max_element(
        candidates.begin(), candidates.end(), [](const Component &a, const Component &b) {
            return a.edges.size() != b.edges.size() ? a.edges.size() < b.edges.size()
                                                    : a.intensity < b.intensity;
        });
    return largest == candidates.end() ? std::vector<Index>() : largest->edges;
}

double jaccard(const std::vector<Index> &a, const std::vector<Index> &b)
{
    std::vector<Index> shared;
    std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(shared));
    const std::size_t either = a.size() + b.size() - shared.size();
    return either == 0 ? 1.0 : static_cast<double>(shared.size()) / static_cast<double>(either);
}

/// The entry that is largest in absolute value; -1 if there is none.
Index largest_at(const Eigen::ArrayXd &changes)
{
    Index at = -1;
    for (Index e = 0; e < changes.size(); ++e) {
        if (std::isfinite(changes(e)) && (at < 0 || std::abs(changes(e)) > std::abs(changes(at)))) {
            at = e;
        }
    }
    return at;
}

} // namespace

LeaveOneOut::LeaveOneOut(const EdgeData &data, const Hypothesis &hypothesis)
    : m_tested(hypothesis.tested.col(0)), m_scale(hypothesis.estimate_scale), m_df(hypothesis.df),
      m_leverage(hypothesis.tested.rowwise().squaredNorm() +
                 hypothesis.nuisance.rowwise().squaredNorm())
{
    if (hypothesis.is_f()) {
        throw Error("contrast " + hypothesis.name +
                    " is an F; the influence of subjects is that on a t");
    }
    if (m_df < 2.0) {
        throw Error("with one degree of freedom no subject can be left out");
    }
    m_all = glm(data, hypothesis);
    m_residuals = data;
    for (int pass = 0; pass < 2; ++pass) {
        for (const Eigen::MatrixXd *basis : {&hypothesis.tested, &hypothesis.nuisance}) {
            const EdgeData products = basis->transpose() * m_residuals;
            m_residuals.noalias() -= *basis * products;
        }
    }
    m_rss = m_residuals.colwise().squaredNorm().transpose();
    m_floor = 1e-14 * (m_rss + (m_all.estimate / m_scale).square());
}

WithoutSubject LeaveOneOut::without(Index subject) const
{
    if (subject < 0 || subject >= m_residuals.rows()) {
        throw Error("there is no subject " + std::to_string(subject));
    }
    WithoutSubject result;
    result.df = m_df - 1.0;
    const double rest = 1.0 - m_leverage(subject);
    if (rest < 1e-10) {
        result.estimate = result.t = Eigen::ArrayXd::Constant(m_rss.size(), nan);
        return result;
    }
    const Eigen::ArrayXd e = m_residuals.row(subject).transpose();
    const double a = m_tested(subject);
    result.estimate = m_all.estimate - m_scale * a / rest * e;
    const Eigen::ArrayXd rss = (m_rss - e.square() / rest).max(m_floor);
    const double variance = m_scale * m_scale * (1.0 + a * a / rest);
    result.t = result.estimate / (rss * (variance / result.df)).sqrt();
    for (const Index edge : m_all.constant_edges) {
        result.t(edge) = 0.0;
    }
    return result;
}

Influence LeaveOneOut::influence(Index subject, std::optional<double> threshold, Sides sides,
                                 const std::vector<Index> &largest) const
{
    const WithoutSubject left = without(subject);
    Influence result;
    result.leverage = m_leverage(subject);
    const Eigen::ArrayXd t_changes = left.t.abs() - m_all.statistic.abs();
    const Eigen::ArrayXd estimate_changes = left.estimate - m_all.estimate;
    result.t_edge = largest_at(t_changes);
    result.t_change = result.t_edge < 0 ? nan : t_changes(result.t_edge);
    result.estimate_edge = largest_at(estimate_changes);
    result.estimate_change =
        result.estimate_edge < 0 ? nan : estimate_changes(result.estimate_edge);
    if (threshold) {
        const std::vector<Index> network =
            result.t_edge < 0 ? std::vector<Index>() : largest_network(left.t, *threshold, sides);
        result.extent = static_cast<Index>(network.size());
        result.jaccard = result.t_edge < 0 ? nan : jaccard(network, largest);
    }
    return result;
}

std::vector<Influence> LeaveOneOut::influences(std::optional<double> threshold, Sides sides,
                                               int threads) const
{
    if (threshold && !(*threshold >= 0.0)) {
        throw Error("the threshold of a network is a t of 0 or above");
    }
    const std::vector<Index> largest =
        threshold ? largest_network(m_all.statistic, *threshold, sides) : std::vector<Index>();
    std::vector<Influence> all(static_cast<std::size_t>(m_residuals.rows()));
    for_each_chunk(m_residuals.rows(), threads, [&](Index subject, int) {
        all[subject] = influence(subject, threshold, sides, largest);
    });
    return all;
}

} // namespace statistics
