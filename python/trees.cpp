// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/mst.h>

#include "python/arrays.h"
#include "python/module.h"
#include "statistics/parallel.h"

namespace bindings
{
namespace
{

/// The weights of the tree's edges, and 1 for each of them: n x n, or k x n x n.
py::tuple minimum_spanning_tree(const py::object &matrix, bool weights_are_lengths, bool mirrored,
                                int threads)
{
    const Graphs graphs(matrix, "matrix");
    if (!graphs.is_stack()) {
        Eigen::MatrixXf weights;
        Eigen::MatrixXi edges;
        {
            const py::gil_scoped_release release;
            std::tie(weights, edges) =
                nodalis::mst::minimum_spanning_tree(graphs.graph(0), weights_are_lengths, mirrored);
        }
        return py::make_tuple(to_numpy(std::move(weights)), to_numpy(std::move(edges)));
    }
    const Index n = graphs.nodes();
    py::array_t<float> all_weights({graphs.count(), n, n});
    py::array_t<int> all_edges({graphs.count(), n, n});
    float *const weights_data = all_weights.mutable_data();
    int *const edges_data = all_edges.mutable_data();
    {
        const py::gil_scoped_release release;
        statistics::for_each_chunk(graphs.count(), threads, [&](Index graph, int) {
            const auto [weights, edges] = nodalis::mst::minimum_spanning_tree(
                graphs.graph(graph), weights_are_lengths, mirrored);
            Eigen::Map<RowMajor<float>>(weights_data + graph * n * n, n, n) = weights;
            Eigen::Map<RowMajor<int>>(edges_data + graph * n * n, n, n) = edges;
        });
    }
    return py::make_tuple(all_weights, all_edges);
}

} // namespace

void add_trees(py::module_ &module)
{
    module.def("minimum_spanning_tree", minimum_spanning_tree, py::arg("matrix"),
               py::arg("weights_are_lengths"), py::arg("mirrored"), py::arg("threads"));
}

} // namespace bindings
