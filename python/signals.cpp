// SPDX-License-Identifier: GPL-3.0-or-later
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <pybind11/stl.h>

#include "python/arrays.h"
#include "python/module.h"
#include "signals/butterworth.h"
#include "signals/cleaning.h"
#include "signals/drift.h"
#include "signals/dvars.h"
#include "signals/finite.h"
#include "signals/motion.h"
#include "signals/strategies.h"

namespace bindings
{
namespace
{

constexpr const char *volumes_by_series = "volumes x series";

/// The value of an enumeration that a text names. \throws ValueError listing the names there are.
template <typename Value>
Value named(const std::string &text, const char *parameter,
            const std::vector<std::pair<std::string, Value>> &values)
{
    std::vector<std::string> names;
    for (const auto &[name, value] : values) {
        if (name == text) {
            return value;
        }
        names.push_back(name);
    }
    throw py::value_error(std::string(parameter) + " is \"" + text + "\": expected one of " +
                          signals::listed(names));
}

signals::Order order_named(const std::string &text)
{
    return named<signals::Order>(text, "order",
                                 {{"joint", signals::Order::joint},
                                  {"cosine", signals::Order::cosine},
                                  {"butterworth", signals::Order::butterworth},
                                  {"bandpass-pad", signals::Order::bandpass_pad}});
}

signals::MotionOrder motion_order_named(const std::string &text)
{
    return named<signals::MotionOrder>(text, "motion_order",
                                       {{"fsl", signals::MotionOrder::fsl},
                                        {"spm", signals::MotionOrder::spm},
                                        {"afni", signals::MotionOrder::afni}});
}

void require_positive(double value, const char *name)
{
    if (!(value > 0.0)) {
        throw py::value_error(std::string(name) + " is " + signals::number(value) +
                              ": expected more than 0");
    }
}

// ---- drift and filters

py::array drift(Index volumes, double tr, double high_pass, std::optional<double> low_pass)
{
    require_positive(tr, "tr");
    if (!(high_pass >= 0.0) || !(low_pass.value_or(0.0) >= 0.0)) {
        throw py::value_error("high_pass or low_pass is negative or no number");
    }
    std::vector<Index> numbers = signals::cosines_below(volumes, tr, high_pass);
    if (low_pass) {
        const std::vector<Index> above = signals::cosines_above(volumes, tr, high_pass, *low_pass);
        numbers.insert(numbers.end(), above.begin(), above.end());
    }
    return to_numpy(signals::cosines(volumes, numbers));
}

py::array detrended(const py::object &series)
{
    Eigen::MatrixXd values = Numbers(series, "series").matrix(volumes_by_series);
    {
        const py::gil_scoped_release release;
        signals::require_finite(values, "series");
        values = signals::detrended(std::move(values));
    }
    return to_numpy(std::move(values));
}

py::array butterworth(const py::object &series, double tr, double high_pass, double low_pass,
                      int order, const std::string &extension, std::optional<Index> padding)
{
    const auto extended = named<signals::Extension>(
        extension, "extension",
        {{"odd", signals::Extension::odd}, {"constant", signals::Extension::constant}});
    Eigen::MatrixXd values = Numbers(series, "series").matrix(volumes_by_series);
    {
        const py::gil_scoped_release release;
        signals::require_finite(values, "series");
        const std::vector<signals::Section> sections =
            signals::butterworth(order, tr, {high_pass, low_pass});
        values = signals::forward_backward(sections, values, extended,
                                           padding.value_or(signals::padding(sections)));
    }
    return to_numpy(std::move(values));
}

/// b0 b1 b2 1 a1 a2 in each row.
py::array butterworth_sections(double tr, double high_pass, double low_pass, int order)
{
    const std::vector<signals::Section> sections =
        signals::butterworth(order, tr, {high_pass, low_pass});
    RowMajor<double> rows(sections.size(), 6);
    for (std::size_t s = 0; s < sections.size(); ++s) {
        const signals::Section &section = sections[s];
        rows.row(static_cast<Index>(s)) << section.b0, section.b1, section.b2, 1.0, section.a1,
            section.a2;
    }
    return to_numpy(std::move(rows));
}

// ---- motion

py::array framewise_displacement(const py::object &motion, const std::string &motion_order)
{
    const Numbers numbers(motion, "motion");
    const char *const expected = "volumes x 6";
    const Eigen::MatrixXd values = numbers.matrix(expected);
    if (values.cols() != 6) {
        numbers.refuse(expected);
    }
    return to_numpy(signals::framewise_displacement(
        signals::motion_parameters(values, motion_order_named(motion_order))));
}

py::tuple dvars(const py::object &series)
{
    const Eigen::MatrixXd values = Numbers(series, "series").matrix("volumes x voxels");
    signals::Dvars found;
    {
        const py::gil_scoped_release release;
        found = signals::dvars(values);
    }
    return py::make_tuple(to_numpy(std::move(found.plain)),
                          to_numpy(std::move(found.standardised)));
}

double dvars_scale(const py::object &series)
{
    const Eigen::MatrixXd values = Numbers(series, "series").matrix("volumes x voxels");
    const py::gil_scoped_release release;
    return signals::dvars_scale(values);
}

// ---- strategies

using ComponentFacts = std::tuple<std::string, std::string, std::string, bool>;

py::list strategies()
{
    py::list rows;
    for (const signals::Strategy &strategy : signals::strategies()) {
        rows.append(py::make_tuple(std::string(strategy.name), std::string(strategy.regressors),
                                   std::string(strategy.censoring)));
    }
    return rows;
}

signals::ConfoundsTable table_of(const std::vector<std::string> &names, const py::object &values,
                                 const std::optional<std::vector<ComponentFacts>> &components)
{
    signals::ConfoundsTable table;
    table.names = names;
    table.values = Numbers(values, "values").matrix("volumes x columns");
    if (components) {
        table.components.emplace();
        for (const auto &[name, method, mask, retained] : *components) {
            table.components->push_back({name, method, mask, retained});
        }
    }
    return table;
}

py::dict select(const std::vector<std::string> &names, const py::object &values,
                const std::optional<std::vector<ComponentFacts>> &components,
                const std::string &strategy, const std::string &order,
                std::optional<double> fd_threshold, std::optional<double> dvars_threshold,
                std::optional<Index> min_segment, std::optional<Index> dummy_scans,
                std::optional<Index> most_components, const py::object &censor,
                const std::optional<std::string> &motion_order)
{
    const signals::ConfoundsTable table = table_of(names, values, components);
    signals::StrategyRequest request;
    request.strategy = strategy;
    request.volumes = table.values.rows();
    request.fd_threshold = fd_threshold;
    request.dvars_threshold = dvars_threshold;
    request.min_segment = min_segment;
    request.dummy_scans = dummy_scans;
    request.components = most_components;
    request.censor = flags(censor, "censor", request.volumes);
    request.order = order_named(order);
    if (motion_order) {
        request.motion_order = motion_order_named(*motion_order);
    }
    signals::Selection found = signals::select(table, request);
    py::dict result;
    result["names"] = found.regressors.names;
    result["values"] = to_numpy(std::move(found.regressors.values));
    result["filter_only"] = found.regressors.filter_only;
    result["non_steady"] = to_numpy(std::move(found.volumes.non_steady));
    result["censored"] = to_numpy(std::move(found.volumes.censored));
    result["fd"] = to_numpy(std::move(found.volumes.fd));
    result["fd_threshold"] = found.thresholds.fd;
    result["dvars_threshold"] = found.thresholds.std_dvars;
    result["min_segment"] = found.thresholds.min_segment;
    result["notes"] = found.notes;
    return result;
}

// ---- cleaning

py::dict ledger_as_dict(const signals::Ledger &ledger)
{
    py::dict result;
    result["volumes"] = ledger.volumes;
    result["non_steady"] = ledger.non_steady;
    result["censored"] = ledger.censored;
    result["kept"] = ledger.kept;
    result["rank"] = ledger.rank;
    result["degrees"] = ledger.degrees;
    result["about"] = ledger.about;
    result["seconds"] = ledger.seconds;
    result["mean_fd_before"] = ledger.mean_fd_before;
    result["mean_fd_after"] = ledger.mean_fd_after;
    return result;
}

py::dict clean(const py::object &series, const std::vector<std::string> &names,
               const py::object &regressors, bool filter_only, const py::object &non_steady,
               const py::object &censored, const py::object &fd, double tr,
               const std::string &order, std::optional<double> high_pass,
               std::optional<double> low_pass, bool detrend, const std::string &standardize)
{
    const Eigen::MatrixXd values = Numbers(series, "series").matrix(volumes_by_series);
    signals::Regressors taken;
    taken.names = names;
    taken.filter_only = filter_only;
    taken.values = Eigen::MatrixXd(values.rows(), 0);
    if (!regressors.is_none()) {
        const Numbers numbers(regressors, "confounds");
        const std::string expected =
            std::to_string(values.rows()) + " volumes x regressors, as many as the series";
        taken.values = numbers.matrix(expected);
        if (taken.values.rows() != values.rows()) {
            numbers.refuse(expected);
        }
    }
    signals::Volumes volumes;
    volumes.non_steady = flags(non_steady, "non_steady", values.rows());
    volumes.censored = flags(censored, "censored", values.rows());
    if (!fd.is_none()) {
        volumes.fd = Numbers(fd, "fd").vector("one value per volume").array();
    }
    signals::Settings settings;
    settings.order = order_named(order);
    settings.high_pass = high_pass;
    settings.low_pass = low_pass;
    settings.detrend = detrend;
    settings.standardize = named<signals::Standardize>(standardize, "standardize",
                                                       {{"none", signals::Standardize::none},
                                                        {"zscore", signals::Standardize::zscore},
                                                        {"psc", signals::Standardize::psc}});
    signals::Design design;
    signals::Cleaned cleaned;
    {
        const py::gil_scoped_release release;
        design = signals::make_design(taken, volumes, tr, settings);
        cleaned = signals::clean(values, design);
    }
    py::dict result;
    result["series"] = to_numpy(std::move(cleaned.series));
    result["rows"] = to_numpy(design.rows);
    result["means"] = to_numpy(std::move(cleaned.means));
    result["without_mean"] = to_numpy(cleaned.without_mean);
    result["names"] = design.names;
    result["design"] = to_numpy(std::move(design.columns));
    result["ledger"] = ledger_as_dict(design.ledger);
    result["notes"] = design.notes;
    return result;
}

} // namespace

void add_signals(py::module_ module)
{
    module.def("drift", drift);
    module.def("detrended", detrended);
    module.def("butterworth", butterworth);
    module.def("butterworth_sections", butterworth_sections);
    module.def("framewise_displacement", framewise_displacement);
    module.def("dvars", dvars);
    module.def("dvars_scale", dvars_scale);
    module.def("strategies", strategies);
    module.def("select", select);
    module.def("clean", clean);
}

} // namespace bindings
