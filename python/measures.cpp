// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/nodalis.h>

#include "python/arrays.h"
#include "python/module.h"
#include "statistics/parallel.h"

namespace bindings
{
namespace
{

using NodeMeasure = Eigen::ArrayXf (*)(const Eigen::MatrixXf &);
using GraphMeasure = float (*)(const Eigen::MatrixXf &);

/// k x nodes of a stack, else nodes.
py::array of_nodes(NodeMeasure measure, const py::object &matrix, int threads)
{
    const Graphs graphs(matrix, "matrix");
    if (!graphs.is_stack()) {
        Eigen::ArrayXf values;
        {
            const py::gil_scoped_release release;
            values = measure(graphs.graph(0));
        }
        return to_numpy(std::move(values));
    }
    RowMajor<float> values(graphs.count(), graphs.nodes());
    {
        const py::gil_scoped_release release;
        statistics::for_each_chunk(graphs.count(), threads, [&](Index graph, int) {
            values.row(graph) = measure(graphs.graph(graph)).matrix().transpose();
        });
    }
    return to_numpy(std::move(values));
}

/// One number per graph of a stack, else a number.
py::object of_graphs(GraphMeasure measure, const py::object &matrix, int threads)
{
    const Graphs graphs(matrix, "matrix");
    Eigen::ArrayXf values(graphs.count());
    {
        const py::gil_scoped_release release;
        statistics::for_each_chunk(graphs.count(), threads, [&](Index graph, int) {
            values(graph) = measure(graphs.graph(graph));
        });
    }
    if (!graphs.is_stack()) {
        return py::float_(values(0));
    }
    return to_numpy(std::move(values));
}

py::array treated(const py::object &matrix, int threads)
{
    const Graphs graphs(matrix, "matrix");
    if (!graphs.is_stack()) {
        Eigen::MatrixXf conditioned;
        {
            const py::gil_scoped_release release;
            conditioned = graphs.graph(0);
            nodalis::treatment(conditioned);
        }
        return to_numpy(std::move(conditioned));
    }
    const Index n = graphs.nodes();
    py::array_t<float> stack({graphs.count(), n, n});
    float *const values = stack.mutable_data();
    {
        const py::gil_scoped_release release;
        statistics::for_each_chunk(graphs.count(), threads, [&](Index graph, int) {
            Eigen::MatrixXf conditioned = graphs.graph(graph);
            nodalis::treatment(conditioned);
            Eigen::Map<RowMajor<float>>(values + graph * n * n, n, n) = conditioned;
        });
    }
    return std::move(stack);
}

bool write_csv(const py::object &matrix, const std::string &path)
{
    const Numbers numbers(matrix, "matrix");
    if (numbers.dimensions() != 2) {
        numbers.refuse("two dimensions");
    }
    const py::gil_scoped_release release;
    Eigen::MatrixXf values;
    copy(numbers.plane(), numbers.name(), values);
    return nodalis::to_csv(values, path);
}

} // namespace

void add_measures(py::module_ &module)
{
    const auto add_of_nodes = [&module](const char *name, NodeMeasure measure) {
        module.def(
            name,
            [measure](const py::object &matrix, int threads) {
                return of_nodes(measure, matrix, threads);
            },
            py::arg("matrix"), py::arg("threads"));
    };
    add_of_nodes("degree", nodalis::degree);
    add_of_nodes("strength", nodalis::strength);
    add_of_nodes("clustering_coeff", nodalis::clustering_coeff);
    add_of_nodes("local_efficiency", nodalis::local_efficiency);
    add_of_nodes("nodal_global_efficiency", nodalis::nodal_global_efficiency);
    add_of_nodes("eigenvector_centrality", nodalis::eigenvector_centrality);
    module.def(
        "global_efficiency",
        [](const py::object &matrix, int threads) {
            return of_graphs(nodalis::global_efficiency, matrix, threads);
        },
        py::arg("matrix"), py::arg("threads"));
    module.def("treatment", treated, py::arg("matrix"), py::arg("threads"));
    module.def("to_csv", write_csv, py::arg("matrix"), py::arg("path"));
    module.def("version", nodalis::version);
}

} // namespace bindings
