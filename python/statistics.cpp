// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cstdint>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include <pybind11/stl.h>

#include "python/arrays.h"
#include "python/module.h"
#include "statistics/design.h"
#include "statistics/distance_anova.h"
#include "statistics/error.h"
#include "statistics/false_discovery.h"
#include "statistics/fingerprint.h"
#include "statistics/fisher_z.h"
#include "statistics/icc.h"
#include "statistics/parallel.h"
#include "statistics/permutation_test.h"
#include "statistics/qcfc.h"
#include "statistics/text.h"

namespace bindings
{
namespace
{

using statistics::EdgeData;

// ---- what comes in

/// Does what is to be done for one subject, whose number an error then tells.
template <typename Work>
void for_subject(const std::string &name, Index subject, Work work)
{
    try {
        work();
    } catch (const statistics::Error &error) {
        throw statistics::Error(name + ", subject " + std::to_string(subject) + ": " +
                                error.what());
    }
}

/// Subjects x edges; of matrices their upper triangles.
EdgeData edge_data(const py::object &object, const std::string &name)
{
    const char *const expected = "subjects x edges, or subjects x nodes x nodes";
    EdgeData data;
    const Numbers numbers(object, name);
    if (numbers.dimensions() == 2) {
        copy(numbers.plane(), data);
        return data;
    }
    if (numbers.dimensions() != 3 || numbers.size(1) != numbers.size(2)) {
        numbers.refuse(expected);
    }
    std::vector<Index> nodes(numbers.size(1));
    std::iota(nodes.begin(), nodes.end(), Index(0));
    data.resize(numbers.size(0), statistics::edge_count(numbers.size(1)));
    Eigen::MatrixXd matrix;
    for (Index subject = 0; subject < data.rows(); ++subject) {
        copy(numbers.plane(subject), matrix);
        for_subject(name, subject,
                    [&] { data.row(subject) = statistics::edges_of(matrix, nodes); });
    }
    return data;
}

statistics::Sides sides_named(const std::string &text)
{
    if (text == "each") {
        return statistics::Sides::each;
    }
    if (text == "both") {
        return statistics::Sides::both;
    }
    if (text == "greater") {
        return statistics::Sides::greater;
    }
    if (text == "less") {
        return statistics::Sides::less;
    }
    throw py::value_error("sides is \"" + text + "\": expected one of each, both, greater, less");
}

statistics::Exchange exchange_named(const std::string &text)
{
    if (text == "automatic") {
        return statistics::Exchange::automatic;
    }
    if (text == "permutations") {
        return statistics::Exchange::permutations;
    }
    if (text == "signs") {
        return statistics::Exchange::signs;
    }
    throw py::value_error("exchange is \"" + text +
                          "\": expected one of automatic, permutations, signs");
}

/// A text as the command reads it, or weights of the columns: a list for t, rows of them for F.
statistics::Contrast contrast_of(const py::object &object, const std::vector<std::string> &columns)
{
    if (py::isinstance<py::str>(object)) {
        return statistics::read_contrast(py::cast<std::string>(object), columns);
    }
    const Numbers numbers(object, "contrast");
    const std::string expected = statistics::counted(std::ptrdiff_t(columns.size()), "weight") +
                                 ", one per column of the design, or rows of them";
    statistics::Contrast contrast{"(weights)", {}};
    if (numbers.dimensions() == 1) {
        contrast.weights = numbers.vector(expected).transpose();
    } else {
        contrast.weights = numbers.matrix(expected);
    }
    if (contrast.weights.cols() != Index(columns.size())) {
        numbers.refuse(expected);
    }
    return contrast;
}

statistics::Hypothesis hypothesis_of(const py::object &design,
                                     const std::vector<std::string> &columns,
                                     const py::object &contrast, Index subjects)
{
    const Numbers numbers(design, "design");
    const std::string expected = std::to_string(subjects) + " subjects x " +
                                 std::to_string(columns.size()) + " columns, as the data and names";
    const Eigen::MatrixXd matrix = numbers.matrix(expected);
    if (matrix.rows() != subjects || matrix.cols() != Index(columns.size())) {
        numbers.refuse(expected);
    }
    return statistics::make_hypothesis(matrix, columns, contrast_of(contrast, columns));
}

struct RearrangementChoice {
    Index permutations;
    std::uint64_t seed;
    std::string exchange;
    std::vector<std::string> blocks;
    py::object given;
};

statistics::Rearrangements rearrangements_of(const RearrangementChoice &choice,
                                             const statistics::Hypothesis &hypothesis)
{
    statistics::RearrangementOptions options;
    options.count = choice.permutations;
    options.seed = choice.seed;
    options.exchange = exchange_named(choice.exchange);
    options.blocks = choice.blocks;
    if (!choice.given.is_none()) {
        options.given = integers(choice.given, "given", "permutations x subjects");
    }
    const py::gil_scoped_release release;
    return {hypothesis, options};
}

// ---- edges

py::array edges(const py::object &matrices)
{
    const Numbers numbers(matrices, "matrices");
    if (numbers.dimensions() != 3) {
        numbers.refuse("subjects x nodes x nodes");
    }
    return to_numpy(edge_data(matrices, "matrices"));
}

py::tuple fisher_z(const py::object &correlations)
{
    EdgeData data = edge_data(correlations, "correlations");
    std::vector<std::pair<Index, Index>> clipped;
    Eigen::RowVectorXd row;
    for (Index subject = 0; subject < data.rows(); ++subject) {
        row = data.row(subject);
        for_subject("correlations", subject, [&] {
            for (const Index edge : statistics::fisher_z(row)) {
                clipped.emplace_back(subject, edge);
            }
        });
        data.row(subject) = row;
    }
    RowMajor<Index> places(clipped.size(), 2);
    for (std::size_t i = 0; i < clipped.size(); ++i) {
        places.row(static_cast<Index>(i)) << clipped[i].first, clipped[i].second;
    }
    return py::make_tuple(to_numpy(std::move(data)), to_numpy(std::move(places)));
}

// ---- design

py::dict design(const std::string &formula,
                const std::vector<std::pair<std::string, std::vector<std::string>>> &table,
                const std::vector<std::string> &other_columns)
{
    statistics::Table texts;
    for (const auto &[name, values] : table) {
        texts.columns.push_back({name, values});
    }
    statistics::require_rectangular(texts);
    statistics::Design made = statistics::make_design(formula, texts, other_columns);
    std::vector<std::pair<Index, std::string>> missing;
    for (const statistics::MissingValue &value : made.missing) {
        missing.emplace_back(value.row, value.column);
    }
    py::dict categories;
    for (const statistics::Category &category : made.categories) {
        py::dict counts;
        for (std::size_t level = 0; level < category.levels.size(); ++level) {
            counts[py::str(category.levels[level])] = category.counts[level];
        }
        categories[py::str(category.column)] = counts;
    }
    py::dict result;
    result["matrix"] = to_numpy(std::move(made.matrix));
    result["columns"] = made.columns;
    result["rows"] = to_numpy(made.rows);
    result["missing"] = missing;
    result["categories"] = categories;
    return result;
}

// ---- edges by a model

void add_model(py::dict &result, statistics::GlmResult model)
{
    result["estimate"] = to_numpy(std::move(model.estimate));
    result["statistic"] = to_numpy(std::move(model.statistic));
    result["p"] = to_numpy(std::move(model.p));
    result["df"] = model.df;
    result["tested"] = model.tested;
    result["constant_edges"] = to_numpy(model.constant_edges);
}

py::list networks_as_list(std::vector<statistics::NetworkResult> networks, Index edge_count)
{
    py::list list;
    if (networks.empty()) {
        return list;
    }
    const std::vector<statistics::NodePair> pairs =
        statistics::node_pairs(statistics::node_count(edge_count));
    for (statistics::NetworkResult &network : networks) {
        py::list components;
        for (const statistics::Component &component : network.components) {
            RowMajor<Index> nodes(component.edges.size(), 2);
            for (std::size_t e = 0; e < component.edges.size(); ++e) {
                const statistics::NodePair &pair = pairs[component.edges[e]];
                nodes.row(static_cast<Index>(e)) << pair.first, pair.second;
            }
            const char *const side = component.side == statistics::Side::greater ? "greater"
                                     : component.side == statistics::Side::less  ? "less"
                                                                                 : "both";
            components.append(py::make_tuple(side, to_numpy(std::move(nodes)), component.intensity,
                                             component.p_extent, component.p_intensity));
        }
        list.append(py::make_tuple(components, to_numpy(std::move(network.null_extent)),
                                   to_numpy(std::move(network.null_intensity))));
    }
    return list;
}

/// Lets Ctrl-C end a long test.
void heed_signals(Index, Index)
{
    const py::gil_scoped_acquire acquire;
    if (PyErr_CheckSignals() != 0) {
        throw py::error_already_set();
    }
}

py::dict permutation_test(const py::object &data, const py::object &design,
                          const std::vector<std::string> &columns, const py::object &contrast,
                          const std::string &sides, const std::vector<double> &thresholds,
                          Index permutations, std::uint64_t seed, const std::string &exchange,
                          const std::vector<std::string> &blocks, const py::object &given,
                          int threads)
{
    const EdgeData edges = edge_data(data, "data");
    const statistics::Hypothesis hypothesis =
        hypothesis_of(design, columns, contrast, edges.rows());
    statistics::PermutationTestOptions options;
    options.sides = sides_named(sides);
    options.thresholds = thresholds;
    options.threads = threads;
    options.progress = heed_signals;
    const statistics::Rearrangements rearrangements =
        rearrangements_of({permutations, seed, exchange, blocks, given}, hypothesis);
    statistics::PermutationTestResult found;
    {
        const py::gil_scoped_release release;
        found = statistics::permutation_test(edges, hypothesis, rearrangements, options);
    }
    py::dict result;
    add_model(result, std::move(found.model));
    result["p_perm"] = to_numpy(std::move(found.p_permuted));
    result["p_fwe"] = to_numpy(std::move(found.p_fwe));
    result["q"] = to_numpy(std::move(found.q));
    result["null_maximum"] = to_numpy(std::move(found.null_maximum));
    result["rearrangements"] = found.rearrangements;
    result["exhaustive"] = found.is_exhaustive;
    result["networks"] = networks_as_list(std::move(found.networks), edges.cols());
    return result;
}

py::dict glm(const py::object &data, const py::object &design,
             const std::vector<std::string> &columns, const py::object &contrast,
             const std::string &sides)
{
    const EdgeData edges = edge_data(data, "data");
    const statistics::Hypothesis hypothesis =
        hypothesis_of(design, columns, contrast, edges.rows());
    const statistics::Sides wanted = sides_named(sides);
    statistics::GlmResult model;
    Eigen::ArrayXd q;
    {
        const py::gil_scoped_release release;
        model = statistics::glm(edges, hypothesis, wanted);
        q = statistics::benjamini_hochberg(model.p);
    }
    py::dict result;
    add_model(result, std::move(model));
    result["q"] = to_numpy(std::move(q));
    return result;
}

// ---- reliability, motion, distances

py::tuple icc(const std::vector<py::object> &sessions)
{
    std::vector<EdgeData> data;
    for (std::size_t s = 0; s < sessions.size(); ++s) {
        data.push_back(edge_data(sessions[s], "session " + std::to_string(s)));
    }
    statistics::Icc found;
    {
        const py::gil_scoped_release release;
        found = statistics::icc(data);
    }
    return py::make_tuple(to_numpy(std::move(found.icc_1_1)), to_numpy(std::move(found.icc_2_1)),
                          to_numpy(std::move(found.icc_3_1)));
}

py::tuple fingerprint(const py::object &session_1, const py::object &session_2, Index permutations,
                      std::uint64_t seed)
{
    const EdgeData first = edge_data(session_1, "session_1");
    const EdgeData second = edge_data(session_2, "session_2");
    statistics::Fingerprint found;
    {
        const py::gil_scoped_release release;
        found = statistics::fingerprint(first, second, permutations, seed);
    }
    return py::make_tuple(to_numpy(std::move(found.similarity)), found.rate_1_to_2,
                          found.rate_2_to_1, found.p_1_to_2, found.p_2_to_1, found.idiff,
                          to_numpy(std::move(found.null_1_to_2)),
                          to_numpy(std::move(found.null_2_to_1)));
}

py::tuple qcfc(const py::object &data, const py::object &mean_fd, const py::object &covariates,
               const std::vector<std::string> &names, const py::object &distances)
{
    const EdgeData edges = edge_data(data, "data");
    const Eigen::VectorXd motion = Numbers(mean_fd, "mean_fd").vector("one value per subject");
    Eigen::MatrixXd others(edges.rows(), 0);
    if (!covariates.is_none()) {
        others = Numbers(covariates, "covariates").matrix("subjects x columns");
    }
    Eigen::ArrayXd lengths;
    if (!distances.is_none()) {
        const Numbers numbers(distances, "distances");
        if (numbers.dimensions() == 2) { // of nodes: as far as the upper triangle tells
            Eigen::MatrixXd matrix = numbers.matrix("one value per edge, or nodes x nodes");
            if (matrix.rows() != matrix.cols() ||
                statistics::edge_count(matrix.rows()) != edges.cols()) {
                numbers.refuse("one value per edge, or nodes x nodes");
            }
            lengths.resize(edges.cols());
            Index edge = 0;
            for (Index i = 0; i < matrix.rows(); ++i) {
                for (Index j = i + 1; j < matrix.cols(); ++j) {
                    lengths(edge++) = matrix(i, j);
                }
            }
        } else {
            lengths = numbers.vector("one value per edge, or nodes x nodes").array();
        }
    }
    statistics::QcFc found;
    {
        const py::gil_scoped_release release;
        found = statistics::qcfc(edges, motion, others, names, lengths);
    }
    return py::make_tuple(to_numpy(std::move(found.r)), to_numpy(std::move(found.p)),
                          to_numpy(std::move(found.q)), found.df, found.share_p_below_05,
                          found.share_q_below_05, found.median_absolute_r,
                          found.distance_dependence, found.distances);
}

py::tuple distance_anova(const py::object &distances, const py::object &design,
                         const std::vector<std::string> &columns, const py::object &contrast,
                         Index permutations, std::uint64_t seed,
                         const std::vector<std::string> &blocks, const py::object &given,
                         int threads)
{
    const Eigen::MatrixXd matrix = Numbers(distances, "distances").matrix("subjects x subjects");
    const statistics::Hypothesis hypothesis =
        hypothesis_of(design, columns, contrast, matrix.rows());
    const statistics::Rearrangements rearrangements =
        rearrangements_of({permutations, seed, "automatic", blocks, given}, hypothesis);
    statistics::DistanceAnova found;
    {
        const py::gil_scoped_release release;
        found = statistics::distance_anova(matrix, hypothesis, rearrangements, threads);
    }
    return py::make_tuple(found.f, found.df_tested, found.df_residual, found.r_squared, found.p,
                          to_numpy(std::move(found.null_f)));
}

} // namespace

void add_statistics(py::module_ module)
{
    module.def("edges", edges);
    module.def("fisher_z", fisher_z);
    module.def("design", design);
    module.def("permutation_test", permutation_test);
    module.def("glm", glm);
    module.def("icc", icc);
    module.def("fingerprint", fingerprint);
    module.def("qcfc", qcfc);
    module.def("distance_anova", distance_anova);
}

} // namespace bindings
