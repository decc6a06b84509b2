// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/icc.h"

#include <limits>

#include "statistics/error.h"
#include "statistics/text.h"

namespace statistics
{
namespace
{

void require_sessions(const std::vector<EdgeData> &sessions)
{
    if (sessions.size() < 2) {
        throw Error(counted(static_cast<Index>(sessions.size()), "session") +
                    "; an intraclass correlation needs at least two");
    }
    for (const EdgeData &session : sessions) {
        if (session.rows() != sessions.front().rows() ||
            session.cols() != sessions.front().cols()) {
            throw Error("the sessions differ in their subjects or edges");
        }
        require_finite(session);
    }
    if (sessions.front().rows() < 2) {
        throw Error("an intraclass correlation needs at least two subjects");
    }
}

/// Subjects x sessions of one edge.
struct MeanSquares {
    double rows = 0.0;
    double columns = 0.0;
    double within = 0.0;
    double error = 0.0;
    bool varies = false;
};

MeanSquares mean_squares(const Eigen::MatrixXd &x)
{
    const auto n = static_cast<double>(x.rows());
    const auto k = static_cast<double>(x.cols());
    const double mean = x.mean();
    const Eigen::VectorXd of_row = x.rowwise().mean();
    const Eigen::RowVectorXd of_column = x.colwise().mean();
    const Eigen::MatrixXd within = x.colwise() - of_row;
    const Eigen::MatrixXd error = within.rowwise() - (of_column.array() - mean).matrix();
    MeanSquares result;
    result.rows = k * (of_row.array() - mean).square().sum() / (n - 1.0);
    result.columns = n * (of_column.array() - mean).square().sum() / (k - 1.0);
    result.within = within.squaredNorm() / (n * (k - 1.0));
    result.error = error.squaredNorm() / ((n - 1.0) * (k - 1.0));
    result.varies = (x.array() - mean).square().sum() > 1e-20 * x.squaredNorm();
    return result;
}

double ratio(double above, double below, bool varies)
{
    return varies && !(above == 0.0 && below == 0.0) ? above / below
                                                     : std::numeric_limits<double>::quiet_NaN();
}

} // namespace

Icc icc(const std::vector<EdgeData> &sessions)
{
    require_sessions(sessions);
    const Index edges = sessions.front().cols();
    const auto n = static_cast<double>(sessions.front().rows());
    const auto k = static_cast<double>(sessions.size());
    Icc result{Eigen::ArrayXd(edges), Eigen::ArrayXd(edges), Eigen::ArrayXd(edges)};
    Eigen::MatrixXd x(sessions.front().rows(), static_cast<Index>(sessions.size()));
    for (Index e = 0; e < edges; ++e) {
        for (Index j = 0; j < x.cols(); ++j) {
            x.col(j) = sessions[j].col(e);
        }
        const MeanSquares ms = mean_squares(x);
        result.icc_1_1(e) = ratio(ms.rows - ms.within, ms.rows + (k - 1.0) * ms.within, ms.varies);
        result.icc_2_1(e) =
            ratio(ms.rows - ms.error,
                  ms.rows + (k - 1.0) * ms.error + k * (ms.columns - ms.error) / n, ms.varies);
        result.icc_3_1(e) = ratio(ms.rows - ms.error, ms.rows + (k - 1.0) * ms.error, ms.varies);
    }
    return result;
}

} // namespace statistics
