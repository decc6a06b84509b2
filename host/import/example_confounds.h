// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QByteArray>
#include <QList>
#include <vector>

/// @file
/// What the examples' tables of confounds are made of.

namespace corvane::example
{

/// A table of confounds as it grows.
class ConfoundsText
{
public:
    /// With that many digits of each number.
    explicit ConfoundsText(int digits) : m_digits(digits) {}

    void add(const QByteArray &name, const Eigen::VectorXd &values);
    /// With derivative and squares, as a pipeline does: _derivative1, _derivative1_power2, _power2.
    void addExpanded(const QByteArray &name, const Eigen::VectorXd &values);

    /// NaN is told as n/a.
    QByteArray text() const;

private:
    int m_digits;
    QList<QByteArray> m_names;
    std::vector<Eigen::VectorXd> m_columns;
};

/// "cosine03"
QByteArray numbered(const char *stem, Eigen::Index number);

struct MainComponents {
    Eigen::MatrixXd series;         ///< volumes x count, each of norm 1
    Eigen::VectorXd singularValues; ///< of the series without mean and drift
    Eigen::VectorXd shares;         ///< of their variance
};

/// The main components of series without mean and drift, by the eigenvectors of their products
/// (Behzadi et al. 2007, doi:10.1016/j.neuroimage.2007.04.042). `series` is volumes x voxels.
MainComponents mainComponents(Eigen::MatrixXd series, const Eigen::MatrixXd &cosines,
                              Eigen::Index count);

} // namespace corvane::example
