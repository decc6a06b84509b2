// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/nodalis/igraph_graph.h"

#include <cmath>
#include <vector>

namespace
{

/// A vector of igraph that frees itself.
struct Vector {
    Vector() { igraph_vector_init(&data, 0); }
    ~Vector() { igraph_vector_destroy(&data); }
    Vector(const Vector &) = delete;
    Vector &operator=(const Vector &) = delete;

    Eigen::ArrayXd values() const
    {
        return Eigen::Map<const Eigen::ArrayXd>(VECTOR(data), igraph_vector_size(&data));
    }

    igraph_vector_t data;
};

struct IntVector {
    IntVector() { igraph_vector_int_init(&data, 0); }
    ~IntVector() { igraph_vector_int_destroy(&data); }
    IntVector(const IntVector &) = delete;
    IntVector &operator=(const IntVector &) = delete;

    igraph_vector_int_t data;
};

struct Matrix {
    Matrix() { igraph_matrix_init(&data, 0, 0); }
    ~Matrix() { igraph_matrix_destroy(&data); }
    Matrix(const Matrix &) = delete;
    Matrix &operator=(const Matrix &) = delete;

    igraph_matrix_t data;
};

template <typename Function>
void init_from(igraph_vector_t *target, const igraph_vector_t &source, Function function)
{
    igraph_vector_init(target, igraph_vector_size(&source));
    for (igraph_integer_t i = 0; i < igraph_vector_size(&source); ++i) {
        VECTOR(*target)[i] = function(VECTOR(source)[i]);
    }
}

double off_diagonal_inverse_sum(const igraph_matrix_t &d)
{
    double sum = 0.0;
    for (igraph_integer_t j = 0; j < igraph_matrix_ncol(&d); ++j) {
        for (igraph_integer_t i = 0; i < igraph_matrix_nrow(&d); ++i) {
            sum += i == j ? 0.0 : 1.0 / MATRIX(d, i, j);
        }
    }
    return sum;
}

} // namespace

IgraphGraph::IgraphGraph(const Eigen::MatrixXf &matrix)
{
    IntVector ends;
    igraph_vector_init(&m_weights, 0);
    for (int j = 0; j < matrix.cols(); ++j) {
        for (int i = 0; i < j; ++i) {
            if (matrix(i, j) > 0.0F) {
                igraph_vector_int_push_back(&ends.data, i);
                igraph_vector_int_push_back(&ends.data, j);
                igraph_vector_push_back(&m_weights, double{matrix(i, j)});
            }
        }
    }
    igraph_create(&m_graph, &ends.data, matrix.rows(), IGRAPH_UNDIRECTED);
    init_from(&m_lengths, m_weights, [](double w) { return 1.0 / w; });
    init_from(&m_root_lengths, m_weights, [](double w) { return std::cbrt(1.0 / w); });
    init_from(&m_negative, m_weights, [](double w) { return -w; });
}

IgraphGraph::~IgraphGraph()
{
    igraph_vector_destroy(&m_negative);
    igraph_vector_destroy(&m_root_lengths);
    igraph_vector_destroy(&m_lengths);
    igraph_vector_destroy(&m_weights);
    igraph_destroy(&m_graph);
}

Eigen::ArrayXd IgraphGraph::degree() const
{
    IntVector result;
    igraph_degree(&m_graph, &result.data, igraph_vss_all(), IGRAPH_ALL, IGRAPH_NO_LOOPS);
    Eigen::ArrayXd values(size());
    for (igraph_integer_t i = 0; i < size(); ++i) {
        values[i] = static_cast<double>(VECTOR(result.data)[i]);
    }
    return values;
}

Eigen::ArrayXd IgraphGraph::strength() const
{
    Vector result;
    igraph_strength(&m_graph, &result.data, igraph_vss_all(), IGRAPH_ALL, IGRAPH_NO_LOOPS,
                    &m_weights);
    return result.values();
}

Eigen::ArrayXd IgraphGraph::binary_clustering() const
{
    Vector result;
    igraph_transitivity_local_undirected(&m_graph, &result.data, igraph_vss_all(),
                                         IGRAPH_TRANSITIVITY_ZERO);
    return result.values();
}

Eigen::ArrayXd IgraphGraph::barrat_clustering() const
{
    Vector result;
    igraph_transitivity_barrat(&m_graph, &result.data, igraph_vss_all(), &m_weights,
                               IGRAPH_TRANSITIVITY_ZERO);
    return result.values();
}

double IgraphGraph::global_efficiency() const
{
    igraph_real_t result = 0.0;
    igraph_global_efficiency(&m_graph, &result, &m_lengths, false);
    return result;
}

Eigen::ArrayXd IgraphGraph::harmonic_centrality() const
{
    Vector result;
    igraph_harmonic_centrality(&m_graph, &result.data, igraph_vss_all(), IGRAPH_ALL, &m_lengths,
                               true);
    return result.values();
}

Eigen::ArrayXd IgraphGraph::open_local_efficiency() const
{
    Vector result;
    igraph_local_efficiency(&m_graph, &result.data, igraph_vss_all(), &m_lengths, false,
                            IGRAPH_ALL);
    return result.values();
}

Eigen::ArrayXd IgraphGraph::local_efficiency() const
{
    Eigen::ArrayXd values = Eigen::ArrayXd::Zero(size());
    // igraph's subgraphs carry no weights: the other nodes' edges are made infinitely long.
    for (igraph_integer_t node = 0; node < size(); ++node) {
        IntVector near;
        igraph_neighbors(&m_graph, &near.data, node, IGRAPH_ALL);
        const igraph_integer_t k = igraph_vector_int_size(&near.data);
        if (k < 2) {
            continue;
        }
        std::vector<bool> inside(size(), false);
        std::vector<double> link(size(), 0.0);
        for (igraph_integer_t a = 0; a < k; ++a) {
            const igraph_integer_t j = VECTOR(near.data)[a];
            igraph_integer_t edge = 0;
            igraph_get_eid(&m_graph, &edge, node, j, IGRAPH_UNDIRECTED, true);
            inside[j] = true;
            link[j] = VECTOR(m_weights)[edge];
        }
        Vector lengths;
        igraph_vector_update(&lengths.data, &m_root_lengths);
        for (igraph_integer_t edge = 0; edge < igraph_ecount(&m_graph); ++edge) {
            if (!inside[IGRAPH_FROM(&m_graph, edge)] || !inside[IGRAPH_TO(&m_graph, edge)]) {
                VECTOR(lengths.data)[edge] = IGRAPH_INFINITY;
            }
        }
        Matrix d;
        igraph_distances_dijkstra(&m_graph, &d.data, igraph_vss_vector(&near.data),
                                  igraph_vss_vector(&near.data), &lengths.data, IGRAPH_ALL);
        for (igraph_integer_t a = 0; a < k; ++a) {
            for (igraph_integer_t b = 0; b < k; ++b) {
                if (a != b) {
                    values[node] +=
                        std::cbrt(link[VECTOR(near.data)[a]] * link[VECTOR(near.data)[b]]) /
                        MATRIX(d.data, a, b);
                }
            }
        }
        values[node] /= static_cast<double>(k) * static_cast<double>(k - 1);
    }
    return values;
}

Eigen::ArrayXd IgraphGraph::eigenvector_centrality() const
{
    Vector result;
    igraph_arpack_options_t options;
    igraph_arpack_options_init(&options);
    igraph_eigenvector_centrality(&m_graph, &result.data, nullptr, false, true, &m_weights,
                                  &options);
    return result.values() / result.values().matrix().norm();
}

std::pair<double, int> IgraphGraph::spanning_forest() const
{
    IntVector edges;
    igraph_minimum_spanning_tree(&m_graph, &edges.data, &m_negative);
    double total = 0.0;
    for (igraph_integer_t i = 0; i < igraph_vector_int_size(&edges.data); ++i) {
        total += VECTOR(m_weights)[VECTOR(edges.data)[i]];
    }
    return {total, static_cast<int>(igraph_vector_int_size(&edges.data))};
}

double IgraphGraph::floyd_warshall_efficiency() const
{
    Matrix d;
    igraph_distances_floyd_warshall(&m_graph, &d.data, &m_lengths, IGRAPH_ALL);
    const double n = static_cast<double>(size());
    return off_diagonal_inverse_sum(d.data) / (n * (n - 1.0));
}
