// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/dbicc.h"

#include <limits>

#include "statistics/distances.h"
#include "statistics/error.h"
#include "statistics/text.h"

namespace statistics
{

Dbicc dbicc(const Eigen::MatrixXd &distances, const std::vector<std::string> &participants)
{
    require_distances(distances);
    if (static_cast<Index>(participants.size()) != distances.rows()) {
        throw Error("distances of " + counted(distances.rows(), "session") + " with " +
                    counted(static_cast<Index>(participants.size()), "participant label"));
    }
    Dbicc result;
    double within = 0.0;
    double between = 0.0;
    for (Index i = 0; i < distances.rows(); ++i) {
        for (Index j = i + 1; j < distances.cols(); ++j) {
            const bool same = participants[i] == participants[j];
            (same ? within : between) += distances(i, j) * distances(i, j);
            ++(same ? result.within : result.between);
        }
    }
    if (result.within == 0 || result.between == 0) {
        throw Error(
            result.within == 0
                ? "no participant has two sessions, so there is no distance within one"
                : "all sessions are of one participant, so there is no distance between two");
    }
    result.value = between > 0.0 ? 1.0 - (within / static_cast<double>(result.within)) /
                                             (between / static_cast<double>(result.between))
                                 : std::numeric_limits<double>::quiet_NaN();
    return result;
}

} // namespace statistics
