// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/edge_statistics.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "statistics/error.h"
#include "statistics/text.h"

namespace statistics::detail
{
namespace
{

/// What counts as nothing left of a sum of squares.
constexpr double nothing = 1e-20;
/// The least that a full model leaves of the reduced model's sum of squares: where it fits
/// exactly, t and F stay finite.
constexpr double least_rest = 1e-14;

/// Takes the span of the basis out of a panel, subject by subject. Plain loops: their sums have the
/// same order everywhere.
void remove_span(const Eigen::MatrixXd &basis, double *panel)
{
    for (Index c = 0; c < basis.cols(); ++c) {
        double products[panel_size] = {};
        for (Index s = 0; s < basis.rows(); ++s) {
            for (int e = 0; e < panel_size; ++e) {
                products[e] += basis(s, c) * panel[s * panel_size + e];
            }
        }
        for (Index s = 0; s < basis.rows(); ++s) {
            for (int e = 0; e < panel_size; ++e) {
                panel[s * panel_size + e] -= basis(s, c) * products[e];
            }
        }
    }
}

void sums_of_squares(const double *panel, Index subjects, double *sums)
{
    std::fill(sums, sums + panel_size, 0.0);
    for (Index s = 0; s < subjects; ++s) {
        for (int e = 0; e < panel_size; ++e) {
            sums[e] += panel[s * panel_size + e] * panel[s * panel_size + e];
        }
    }
}

} // namespace

EdgeStatistics::EdgeStatistics(const EdgeData &data, const Hypothesis &hypothesis, bool signs)
    : m_kernels(kernels()), m_edges(data.cols()),
      m_panels((data.cols() + panel_size - 1) / panel_size),
      m_subjects(static_cast<int>(data.rows())),
      m_tested(static_cast<int>(hypothesis.tested.cols())), m_is_f(hypothesis.is_f()),
      m_scale(m_is_f ? hypothesis.df / static_cast<double>(m_tested) : std::sqrt(hypothesis.df))
{
    if (data.rows() != hypothesis.subjects()) {
        throw Error("the data have " + counted(data.rows(), "subject") + ", the design has " +
                    std::to_string(hypothesis.subjects()));
    }
    require_finite(data);
    const Index without = !signs && hypothesis.has_constant ? 1 : 0;
    const Index nuisance = hypothesis.nuisance.cols() - without;
    m_directions.resize(m_subjects, m_tested + nuisance);
    m_directions.leftCols(m_tested) = hypothesis.tested;
    m_directions.rightCols(nuisance) = hypothesis.nuisance.rightCols(nuisance);
    load(data, hypothesis);
}

void EdgeStatistics::load(const EdgeData &data, const Hypothesis &hypothesis)
{
    const auto per_panel = static_cast<std::size_t>(m_subjects) * panel_size;
    m_residuals = AlignedValues(per_panel * static_cast<std::size_t>(m_panels));
    m_totals = AlignedValues(static_cast<std::size_t>(m_panels) * panel_size);
    m_floors = AlignedValues(static_cast<std::size_t>(m_panels) * panel_size);
    const Eigen::MatrixXd constant =
        Eigen::MatrixXd::Constant(m_subjects, 1, 1.0 / std::sqrt(static_cast<double>(m_subjects)));
    AlignedValues centred(per_panel);
    for (Index panel = 0; panel < m_panels; ++panel) {
        double *const residuals = m_residuals.data() + static_cast<std::size_t>(panel) * per_panel;
        for (Index s = 0; s < m_subjects; ++s) {
            std::copy_n(data.row(s).data() + panel * panel_size, edges_in(panel),
                        residuals + s * panel_size);
        }
        double squares[panel_size];
        double variations[panel_size];
        sums_of_squares(residuals, m_subjects, squares);
        std::copy_n(residuals, per_panel, centred.data());
        double *const totals = m_totals.data() + panel * panel_size;
        // A second pass takes out what rounding left of the first.
        for (int pass = 0; pass < 2; ++pass) {
            remove_span(constant, centred.data());
            remove_span(hypothesis.nuisance, residuals);
        }
        sums_of_squares(centred.data(), m_subjects, variations);
        sums_of_squares(residuals, m_subjects, totals);
        for (int e = 0; e < panel_size; ++e) {
            if (totals[e] <= nothing * squares[e] || variations[e] <= nothing * squares[e]) {
                double product = 0.0;
                for (Index s = 0; s < m_subjects; ++s) {
                    product += hypothesis.tested(s, 0) * residuals[s * panel_size + e];
                    residuals[s * panel_size + e] = 0.0;
                }
                totals[e] = 1.0;
                if (e < edges_in(panel)) {
                    m_constant.push_back(panel * panel_size + e);
                    m_constant_products.push_back(product);
                }
            }
            m_floors.data()[panel * panel_size + e] = least_rest * totals[e];
        }
    }
}

Index EdgeStatistics::edges_in(Index panel) const
{
    return std::min<Index>(panel_size, m_edges - panel * panel_size);
}

std::size_t EdgeStatistics::weights_size() const
{
    return static_cast<std::size_t>(m_directions.size()) * batch_size;
}

std::size_t EdgeStatistics::products_size() const
{
    return static_cast<std::size_t>(m_directions.cols()) * tile_size;
}

void EdgeStatistics::set_weights(double *weights, int place, const int *source,
                                 const double *sign) const
{
    for (Index tile = 0; tile < m_directions.cols(); ++tile) {
        double *const of_tile = weights + tile * m_subjects * batch_size + place;
        for (int i = 0; i < m_subjects; ++i) {
            of_tile[std::ptrdiff_t{source[i]} * batch_size] = sign[i] * m_directions(i, tile);
        }
    }
}

void EdgeStatistics::values(double *values, double *products, const double *weights,
                            Index panel) const
{
    const double *const residuals = m_residuals.data() + panel * m_subjects * panel_size;
    const int tiles = static_cast<int>(m_directions.cols());
    for (int tile = 0; tile < tiles; ++tile) {
        m_kernels.multiply(products + std::ptrdiff_t{tile} * tile_size,
                           weights + std::ptrdiff_t{tile} * m_subjects * batch_size, residuals,
                           m_subjects);
    }
    const double *const totals = m_totals.data() + panel * panel_size;
    const double *const floors = m_floors.data() + panel * panel_size;
    if (m_is_f) {
        m_kernels.f_values(values, products, m_tested, tiles, totals, floors, m_scale);
    } else {
        m_kernels.t_values(values, products, tiles, totals, floors, m_scale);
    }
}

} // namespace statistics::detail
