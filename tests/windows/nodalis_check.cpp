// SPDX-License-Identifier: GPL-3.0-or-later
//
// Nodalis on Windows: closed forms of every measure, and files with names beyond ASCII.
#include <nodalis/nodalis.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace
{

int failures = 0;
int passes = 0;

void check(bool passed, const char *what)
{
    if (passed) {
        ++passes;
        return;
    }
    ++failures;
    std::printf("failed: %s\n", what);
}

bool near(double actual, double expected)
{
    return std::abs(actual - expected) <= 1e-6 * std::max(1.0, std::abs(expected));
}

/// Two triangles of weight 1 with a bridge of weight 0.5 between nodes 2 and 3.
Eigen::MatrixXf twoTriangles()
{
    Eigen::MatrixXf w = Eigen::MatrixXf::Zero(6, 6);
    for (const int first : {0, 3}) {
        for (int i = first; i < first + 3; ++i) {
            for (int j = first; j < first + 3; ++j)
                w(i, j) = i == j ? 0.0f : 1.0f;
        }
    }
    w(2, 3) = w(3, 2) = 0.5f;
    return w;
}

void checkMeasures()
{
    const Eigen::MatrixXf w = twoTriangles();
    check(nodalis::degree(w)(2) == 3.0f && nodalis::degree(w)(0) == 2.0f, "degree");
    check(near(nodalis::strength(w)(2), 2.5), "strength");
    check(near(nodalis::clustering_coeff(w)(0), 1.0), "clustering_coeff of a triangle");
    check(near(nodalis::clustering_coeff(w)(2), 1.0 / 3.0), "clustering_coeff beside the bridge");
    check(near(nodalis::local_efficiency(w)(0), 1.0), "local_efficiency");
    // From node 0: 1 to each of the triangle, then 1 + 2 to node 3, 1 + 2 + 1 to nodes 4 and 5.
    check(near(nodalis::nodal_global_efficiency(w)(0), (1 + 1 + 1.0 / 3 + 0.25 + 0.25) / 5),
          "nodal_global_efficiency");
    check(near(nodalis::global_efficiency(w), nodalis::nodal_global_efficiency(w).mean()),
          "global_efficiency");
    const Eigen::ArrayXf centrality = nodalis::eigenvector_centrality(w);
    check(near(centrality.matrix().norm(), 1.0) && centrality(2) > centrality(0),
          "eigenvector_centrality");
    const auto [kept, tree] = nodalis::mst::minimum_spanning_tree(w, false, true);
    check(tree.sum() == 10 && kept(2, 3) == 0.5f, "minimum_spanning_tree");
    Eigen::MatrixXf a = w;
    Eigen::MatrixXf b = w;
    check(nodalis::distances::spectral_euclidean(a, b, 6) == 0.0f, "spectral_euclidean");
}

void checkFiles()
{
    const std::string name = "Gro\xC3\x9F-\xE6\xA0\xA1.csv";
    Eigen::MatrixXf matrix(2, 2);
    matrix << 0.0f, 0.1f, 1e-20f, -3.0f;
    check(nodalis::to_csv(matrix, name), "to_csv with a name beyond ASCII");
    std::ifstream file(std::filesystem::u8path(name), std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    check(text == "0,0.1\n1e-20,-3\n", "text of to_csv");
    check(!nodalis::to_csv(matrix, "no such folder/a.csv"), "to_csv where there is no folder");
}

} // namespace

int main()
{
    checkMeasures();
    checkFiles();
    std::printf("%d passed, %d failed\n", passes, failures);
    return failures == 0 && passes > 0 ? 0 : 1;
}
