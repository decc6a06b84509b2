// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/example_confounds.h"

#include <Eigen/Eigenvalues>
#include <cmath>

namespace corvane::example
{

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

void ConfoundsText::add(const QByteArray &name, const VectorXd &values)
{
    m_names += name;
    m_columns.push_back(values);
}

void ConfoundsText::addExpanded(const QByteArray &name, const VectorXd &values)
{
    VectorXd change(values.size());
    change[0] = NAN;
    for (Index t = 1; t < values.size(); ++t)
        change[t] = values[t] - values[t - 1];
    add(name, values);
    add(name + "_derivative1", change);
    add(name + "_derivative1_power2", change.array().square());
    add(name + "_power2", values.array().square());
}

QByteArray ConfoundsText::text() const
{
    QByteArray table = m_names.join('\t') + '\n';
    const Index volumes = m_columns.empty() ? 0 : m_columns.front().size();
    for (Index t = 0; t < volumes; ++t) {
        QList<QByteArray> cells;
        for (const VectorXd &values : m_columns)
            cells += std::isnan(values[t]) ? QByteArray("n/a")
                                           : QByteArray::number(values[t], 'g', m_digits);
        table += cells.join('\t') + '\n';
    }
    return table;
}

QByteArray numbered(const char *stem, Index number)
{
    return stem + QByteArray::number(qlonglong(number)).rightJustified(2, '0');
}

namespace
{

/// series * series^T. Products of long matrices are summed in pieces that depend on the processor;
/// these are not.
MatrixXd productsOf(const MatrixXd &series)
{
    const MatrixXd volumes = series.transpose();
    MatrixXd products(volumes.cols(), volumes.cols());
    for (Index a = 0; a < volumes.cols(); ++a)
        for (Index b = 0; b <= a; ++b)
            products(a, b) = products(b, a) = volumes.col(a).dot(volumes.col(b));
    return products;
}

} // namespace

MainComponents mainComponents(MatrixXd series, const MatrixXd &cosines, Index count)
{
    series.rowwise() -= series.colwise().mean().eval();
    series -= cosines * (cosines.transpose() * series);
    const Eigen::SelfAdjointEigenSolver<MatrixXd> solver(productsOf(series));
    const VectorXd values = solver.eigenvalues().tail(count).reverse().cwiseMax(0);
    MainComponents components{solver.eigenvectors().rightCols(count).rowwise().reverse(),
                              values.cwiseSqrt(), values / solver.eigenvalues().sum()};
    for (auto component : components.series.colwise())
        if (component.sum() < 0)
            component = -component;
    return components;
}

} // namespace corvane::example
