// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/fingerprint.h"

#include <string>
#include <vector>

#include "statistics/error.h"
#include "statistics/rearrangements.h"
#include "statistics/text.h"

namespace statistics
{
namespace
{

/// Each row less its mean and of length 1.
EdgeData standardised(const EdgeData &session, const char *name)
{
    EdgeData rows = session.colwise() - session.rowwise().mean();
    for (Index i = 0; i < rows.rows(); ++i) {
        if (rows.row(i).squaredNorm() <= 1e-20 * session.row(i).squaredNorm()) {
            throw Error("all edges of subject " + std::to_string(i) + " are the same in the " +
                        name + " session");
        }
        rows.row(i).normalize();
    }
    return rows;
}

/// For each row the column of its strictly largest entry, -1 where two are equal.
std::vector<Index> best_of_rows(const Eigen::MatrixXd &similarity)
{
    std::vector<Index> best;
    for (Index i = 0; i < similarity.rows(); ++i) {
        Index at = 0;
        const double largest = similarity.row(i).maxCoeff(&at);
        best.push_back((similarity.row(i).array() == largest).count() == 1 ? at : -1);
    }
    return best;
}

/// Hits if subject i is called source[i] in session 2.
double rate_of_rows(const std::vector<Index> &best, const std::vector<int> &source)
{
    Index hits = 0;
    for (std::size_t i = 0; i < best.size(); ++i) {
        hits += best[i] == source[i] ? 1 : 0;
    }
    return static_cast<double>(hits) / static_cast<double>(best.size());
}

double rate_of_columns(const std::vector<Index> &best, const std::vector<int> &source)
{
    Index hits = 0;
    for (std::size_t i = 0; i < best.size(); ++i) {
        hits += best[source[i]] == static_cast<Index>(i) ? 1 : 0;
    }
    return static_cast<double>(hits) / static_cast<double>(best.size());
}

} // namespace

Fingerprint fingerprint(const EdgeData &session_1, const EdgeData &session_2, Index permutations,
                        std::uint64_t seed)
{
    if (session_1.rows() != session_2.rows() || session_1.cols() != session_2.cols()) {
        throw Error("session 1 has " + counted(session_1.rows(), "subject") + " and " +
                    counted(session_1.cols(), "edge") + ", session 2 has " +
                    std::to_string(session_2.rows()) + " and " + std::to_string(session_2.cols()));
    }
    require_finite(session_1);
    require_finite(session_2);
    if (session_1.rows() < 2) {
        throw Error("fingerprinting needs at least two subjects");
    }
    const auto n = static_cast<double>(session_1.rows());
    Fingerprint result;
    result.similarity =
        standardised(session_1, "first") * standardised(session_2, "second").transpose();
    const double own = result.similarity.trace() / n;
    const double others = (result.similarity.sum() - result.similarity.trace()) / (n * (n - 1.0));
    result.idiff = 100.0 * (own - others);

    const std::vector<Index> best_row = best_of_rows(result.similarity);
    const std::vector<Index> best_column = best_of_rows(result.similarity.transpose());
    const Rearrangements shuffles(static_cast<int>(session_1.rows()), permutations, seed,
                                  Purpose::identity);
    std::vector<int> source(best_row.size());
    std::vector<double> sign(source.size());
    result.null_1_to_2.resize(shuffles.count());
    result.null_2_to_1.resize(shuffles.count());
    for (Index p = 0; p < shuffles.count(); ++p) {
        shuffles.get(p, source.data(), sign.data());
        result.null_1_to_2(p) = rate_of_rows(best_row, source);
        result.null_2_to_1(p) = rate_of_columns(best_column, source);
    }
    for (std::size_t i = 0; i < source.size(); ++i) {
        source[i] = static_cast<int>(i);
    }
    result.rate_1_to_2 = rate_of_rows(best_row, source);
    result.rate_2_to_1 = rate_of_columns(best_column, source);
    result.p_1_to_2 = shuffles.p_value(count_reaching(result.null_1_to_2, result.rate_1_to_2));
    result.p_2_to_1 = shuffles.p_value(count_reaching(result.null_2_to_1, result.rate_2_to_1));
    return result;
}

} // namespace statistics
