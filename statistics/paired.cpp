// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/paired.h"

#include <algorithm>
#include <map>

#include "statistics/error.h"
#include "statistics/text.h"

namespace statistics
{
namespace
{

Index column_named(const std::vector<std::string> &columns, const std::string &name)
{
    const auto found = std::find(columns.begin(), columns.end(), name);
    if (found == columns.end()) {
        throw Error("the design has no column " + name + "; its columns are " + joined(columns));
    }
    return found - columns.begin();
}

/// The two rows of each participant, lower value first.
void find_pairs(const Eigen::VectorXd &tested, const std::string &name,
                const std::vector<std::string> &participants, PairedDesign &pairs)
{
    const double low = tested.minCoeff();
    const double high = tested.maxCoeff();
    if (!(low < high) || !((tested.array() == low) || (tested.array() == high)).all()) {
        throw Error("a paired test needs a column of two values, " + name + " has " +
                    (low < high ? "more" : "one"));
    }
    std::map<std::string, std::vector<Index>> rows;
    for (Index row = 0; row < tested.size(); ++row) {
        std::vector<Index> &own = rows[participants[row]];
        if (own.empty()) {
            pairs.participants.push_back(participants[row]);
        }
        own.push_back(row);
    }
    for (const std::string &participant : pairs.participants) {
        const std::vector<Index> &own = rows[participant];
        if (own.size() != 2) {
            throw Error("participant " + participant + " has " +
                        counted(static_cast<Index>(own.size()), "row") +
                        ", a paired test needs exactly 2 of each");
        }
        if (tested(own[0]) == tested(own[1])) {
            throw Error("both rows of participant " + participant + " have the same " + name);
        }
        const bool in_order = tested(own[0]) < tested(own[1]);
        pairs.lower.push_back(own[in_order ? 0 : 1]);
        pairs.higher.push_back(own[in_order ? 1 : 0]);
    }
}

} // namespace

PairedDesign pair_rows(const Design &design, const std::vector<std::string> &participants,
                       const std::string &tested)
{
    if (static_cast<Index>(participants.size()) != design.matrix.rows()) {
        throw Error(counted(static_cast<Index>(participants.size()), "participant") + " for " +
                    counted(design.matrix.rows(), "row") + " of the design");
    }
    const Index tested_column = column_named(design.columns, tested);
    PairedDesign pairs;
    find_pairs(design.matrix.col(tested_column), tested, participants, pairs);

    const auto count = static_cast<Index>(pairs.lower.size());
    std::vector<Eigen::VectorXd> kept = {Eigen::VectorXd::Ones(count)};
    pairs.columns = {tested};
    for (Index c = 0; c < design.matrix.cols(); ++c) {
        if (c == tested_column || design.columns[c] == "(Intercept)") {
            continue;
        }
        Eigen::VectorXd values(count);
        for (Index pair = 0; pair < count; ++pair) {
            values(pair) = design.matrix(pairs.lower[pair], c);
            if (values(pair) != design.matrix(pairs.higher[pair], c)) {
                throw Error("the column " + design.columns[c] + " changes within participant " +
                            pairs.participants[pair] +
                            "; a paired test takes columns that do not, beside " + tested);
            }
        }
        kept.emplace_back(values.array() - values.mean());
        pairs.columns.push_back(design.columns[c]);
    }
    pairs.matrix.resize(count, static_cast<Index>(kept.size()));
    for (std::size_t c = 0; c < kept.size(); ++c) {
        pairs.matrix.col(static_cast<Index>(c)) = kept[c];
    }
    return pairs;
}

EdgeData differences(const EdgeData &data, const PairedDesign &pairs)
{
    EdgeData result(static_cast<Index>(pairs.lower.size()), data.cols());
    for (Index pair = 0; pair < result.rows(); ++pair) {
        if (std::max(pairs.lower[pair], pairs.higher[pair]) >= data.rows()) {
            throw Error("the data have " + counted(data.rows(), "row") +
                        ", fewer than the paired design");
        }
        result.row(pair) = data.row(pairs.higher[pair]) - data.row(pairs.lower[pair]);
    }
    return result;
}

} // namespace statistics
