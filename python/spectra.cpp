// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/distances.h>

#include "python/arrays.h"
#include "python/module.h"
#include "statistics/parallel.h"

namespace bindings
{
namespace
{

/// Of two graphs, of two stacks of equal length pair by pair, or of a stack and one graph.
py::object spectral_distance(const py::object &first, const py::object &second, int size,
                             int threads)
{
    const Graphs a(first, "a");
    const Graphs b(second, "b");
    if (a.is_stack() && b.is_stack() && a.count() != b.count()) {
        throw py::value_error("a is a stack of " + std::to_string(a.count()) +
                              " graphs, b one of " + std::to_string(b.count()) +
                              ": expected as many");
    }
    const bool is_stack = a.is_stack() || b.is_stack();
    Eigen::ArrayXf values(a.is_stack() ? a.count() : b.count());
    {
        const py::gil_scoped_release release;
        statistics::for_each_chunk(values.size(), threads, [&](Index pair, int) {
            Eigen::MatrixXf one = a.graph(a.is_stack() ? pair : 0);
            Eigen::MatrixXf other = b.graph(b.is_stack() ? pair : 0);
            values(pair) = nodalis::distances::spectral_euclidean(one, other, size);
        });
    }
    if (!is_stack) {
        return py::float_(values(0));
    }
    return to_numpy(std::move(values));
}

/// k x nodes of a stack, else nodes.
py::array spectrum(const py::object &matrix, int threads)
{
    const Graphs graphs(matrix, "matrix");
    if (!graphs.is_stack()) {
        Eigen::VectorXd values;
        {
            const py::gil_scoped_release release;
            values = nodalis::distances::spectrum(graphs.graph(0));
        }
        return to_numpy(std::move(values));
    }
    RowMajor<double> values(graphs.count(), graphs.nodes());
    {
        const py::gil_scoped_release release;
        statistics::for_each_chunk(graphs.count(), threads, [&](Index graph, int) {
            values.row(graph) = nodalis::distances::spectrum(graphs.graph(graph)).transpose();
        });
    }
    return to_numpy(std::move(values));
}

/// One spectrum, or a row for each of several.
struct Spectra {
    Eigen::MatrixXd columns; ///< nodes x spectra
    bool are_several = false;

    Eigen::VectorXd at(Index index) const { return columns.col(are_several ? index : 0); }
};

Spectra spectra_of(const py::object &object, const std::string &name)
{
    const char *const expected = "n, or k x n for the spectra of k graphs";
    const Numbers numbers(object, name);
    Spectra spectra;
    spectra.are_several = numbers.dimensions() == 2;
    if (spectra.are_several) {
        spectra.columns = numbers.matrix(expected).transpose();
    } else {
        spectra.columns = numbers.vector(expected);
    }
    for (const auto &column : spectra.columns.colwise()) {
        if (!column.allFinite() || !std::is_sorted(column.begin(), column.end())) {
            throw py::value_error(name + " is not in ascending order: expected a spectrum");
        }
    }
    return spectra;
}

/// Of two spectra, of two lists of them pair by pair, or of a list and one.
py::object between_spectra(const py::object &first, const py::object &second, int size)
{
    const Spectra a = spectra_of(first, "a");
    const Spectra b = spectra_of(second, "b");
    if (a.are_several && b.are_several && a.columns.cols() != b.columns.cols()) {
        throw py::value_error("a holds " + std::to_string(a.columns.cols()) + " spectra, b " +
                              std::to_string(b.columns.cols()) + ": expected as many");
    }
    Eigen::ArrayXf values(a.are_several ? a.columns.cols() : b.columns.cols());
    {
        const py::gil_scoped_release release;
        for (Index pair = 0; pair < values.size(); ++pair) {
            values(pair) = nodalis::distances::between_spectra(a.at(pair), b.at(pair), size);
        }
    }
    if (!a.are_several && !b.are_several) {
        return py::float_(values(0));
    }
    return to_numpy(std::move(values));
}

} // namespace

void add_spectra(py::module_ &module)
{
    module.def("spectral_euclidean", spectral_distance, py::arg("a"), py::arg("b"), py::arg("size"),
               py::arg("threads"));
    module.def("spectrum", spectrum, py::arg("matrix"), py::arg("threads"));
    module.def("between_spectra", between_spectra, py::arg("a"), py::arg("b"), py::arg("size"));
}

} // namespace bindings
