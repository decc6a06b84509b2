// SPDX-License-Identifier: GPL-3.0-or-later
#include <functional>

#include <nodalis/nodalis.h>

#include "python/arrays.h"
#include "python/module.h"
#include "statistics/parallel.h"

namespace bindings
{
namespace
{

using nodalis::Effort;
using NodeMeasure = std::function<Eigen::ArrayXf(const Eigen::MatrixXf &, const Effort &)>;

/// Of a graph alone all threads are for it, of a stack each graph has one.
Effort effort_of(const Graphs &graphs, int threads)
{
    return {graphs.is_stack() ? 1 : threads, [](double) {
                heed_signals();
                return true;
            }};
}

/// k x nodes of a stack, else nodes.
py::array of_nodes(const NodeMeasure &measure, const py::object &matrix, int threads)
{
    const Graphs graphs(matrix, "matrix");
    const Effort effort = effort_of(graphs, threads);
    if (!graphs.is_stack()) {
        Eigen::ArrayXf values;
        {
            const py::gil_scoped_release release;
            values = measure(graphs.graph(0), effort);
        }
        return to_numpy(std::move(values));
    }
    RowMajor<float> values(graphs.count(), graphs.nodes());
    {
        const py::gil_scoped_release release;
        statistics::for_each_chunk(graphs.count(), threads, [&](Index graph, int) {
            values.row(graph) = measure(graphs.graph(graph), effort).matrix().transpose();
        });
    }
    return to_numpy(std::move(values));
}

/// One number per graph of a stack, else a number.
template <typename Value>
py::object of_graphs(Value (*measure)(const Eigen::MatrixXf &, const Effort &),
                     const py::object &matrix, int threads)
{
    const Graphs graphs(matrix, "matrix");
    const Effort effort = effort_of(graphs, threads);
    Eigen::Array<Value, Eigen::Dynamic, 1> values(graphs.count());
    {
        const py::gil_scoped_release release;
        statistics::for_each_chunk(graphs.count(), threads, [&](Index graph, int) {
            values(graph) = measure(graphs.graph(graph), effort);
        });
    }
    if (!graphs.is_stack()) {
        return py::float_(values(0));
    }
    return to_numpy(std::move(values));
}

double local_efficiency_relaxations(const Eigen::MatrixXf &graph, const Effort & /*takes little*/)
{
    return nodalis::local_efficiency_relaxations(graph);
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
    // These take a moment at most, and one thread.
    using Quick = Eigen::ArrayXf (*)(const Eigen::MatrixXf &);
    const auto add_quick = [&add_of_nodes](const char *name, Quick measure) {
        add_of_nodes(name, [measure](const Eigen::MatrixXf &graph, const Effort &) {
            return measure(graph);
        });
    };
    using Long = Eigen::ArrayXf (*)(const Eigen::MatrixXf &, const Effort &);
    add_quick("degree", nodalis::degree);
    add_quick("strength", nodalis::strength);
    add_quick("clustering_coeff", nodalis::clustering_coeff);
    add_quick("eigenvector_centrality", nodalis::eigenvector_centrality);
    add_of_nodes("local_efficiency", Long{nodalis::local_efficiency});
    add_of_nodes("nodal_global_efficiency", Long{nodalis::nodal_global_efficiency});
    const auto add_of_graphs = [&module](const char *name, auto measure) {
        module.def(
            name,
            [measure](const py::object &matrix, int threads) {
                return of_graphs(measure, matrix, threads);
            },
            py::arg("matrix"), py::arg("threads"));
    };
    using OfGraph = float (*)(const Eigen::MatrixXf &, const Effort &);
    add_of_graphs("global_efficiency", OfGraph{nodalis::global_efficiency});
    add_of_graphs("local_efficiency_relaxations", &local_efficiency_relaxations);
    module.def("treatment", treated, py::arg("matrix"), py::arg("threads"));
    module.def("to_csv", write_csv, py::arg("matrix"), py::arg("path"));
    module.def("version", nodalis::version);
}

} // namespace bindings
