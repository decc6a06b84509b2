// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

#include "statistics/edges.h"
#include "statistics/hypothesis.h"
#include "statistics/kernels/kernels.h"

namespace statistics::detail
{

/// One or more doubles at an address that is a multiple of 64.
class AlignedValues
{
public:
    explicit AlignedValues(std::size_t count = 0) : m_lines((count + 7) / 8) {}

    double *data() { return m_lines.front().values; }
    const double *data() const { return m_lines.front().values; }

private:
    struct alignas(64) Line {
        double values[8] = {};
    };
    std::vector<Line> m_lines;
};

/// The residuals e of the reduced model at all edges, in panels of 24 edges, and the t or F of any
/// rearrangement of them. As much memory as the data again.
class EdgeStatistics
{
public:
    /// \param signs whether rearrangements will change signs. Permutations leave the sum of the
    ///        residuals alone, so that the constant needs no product.
    EdgeStatistics(const EdgeData &data, const Hypothesis &hypothesis, bool signs);

    Index edges() const { return m_edges; }
    Index panels() const { return m_panels; }
    /// Edges of a panel; the last one may have fewer than panel_size.
    Index edges_in(Index panel) const;
    /// Edges that the reduced model explains (e'e <= 1e-20 y'y) or that are the same in all
    /// subjects: their statistic is 0 under every rearrangement.
    const std::vector<Index> &constant_edges() const { return m_constant; }
    /// For each of them a'e of a t, which the statistic does not tell.
    const std::vector<double> &constant_products() const { return m_constant_products; }

    /// How many doubles the weights of a batch take, and the products of a panel with them.
    std::size_t weights_size() const;
    std::size_t products_size() const;

    /// Puts the rearrangement that gives subject i the data of subject source[i], times sign[i], at
    /// `place` of a batch.
    void set_weights(double *weights, int place, const int *source, const double *sign) const;

    /// The statistics of a batch at a panel's edges: a tile of values. Those of edges beyond the
    /// last one are 0. The products hold a'e of a t first.
    void values(double *values, double *products, const double *weights, Index panel) const;

private:
    void load(const EdgeData &data, const Hypothesis &hypothesis);

    const Kernels &m_kernels;
    Index m_edges;
    Index m_panels;
    int m_subjects;
    int m_tested;
    bool m_is_f;
    double m_scale;
    /// Subjects x tiles: what the residuals are multiplied with, tested directions first.
    Eigen::MatrixXd m_directions;
    AlignedValues m_residuals;
    AlignedValues m_totals;
    AlignedValues m_floors;
    std::vector<Index> m_constant;
    std::vector<double> m_constant_products;
};

} // namespace statistics::detail
