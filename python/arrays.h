// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <Eigen/Core>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

/// \file
/// Between arrays of numpy and Eigen, for all bindings. What comes in is copied once, into the form
/// that the libraries take; what goes out is handed over with its memory.

namespace bindings
{

namespace py = pybind11;
using Eigen::Index;

/// Subjects x edges, images x nodes: rows that lie side by side in memory.
template <typename Scalar>
using RowMajor = Eigen::Matrix<Scalar, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

/// A matrix within an array, wherever its numbers lie. It keeps nothing alive.
struct Plane {
    const char *data = nullptr;
    Index rows = 0;
    Index columns = 0;
    Index row_step = 0; ///< in bytes
    Index column_step = 0;
    bool is_double = false; ///< else float
};

/// An array of real numbers that a caller gave, under the name that messages call it by.
///
/// float32 and float64 are read where they are: in C or Fortran order, with gaps, read-only.
/// Booleans, integers and other floating-point numbers become float64 first.
class Numbers
{
public:
    /// \throws ValueError for what is no array of real numbers.
    Numbers(const py::object &object, std::string name);

    int dimensions() const { return static_cast<int>(m_array.ndim()); }
    Index size(int axis) const { return m_array.shape(axis); }
    const std::string &name() const { return m_name; }

    /// The matrix itself, or number \p index of a stack. No lock of the interpreter is needed.
    Plane plane(Index index = 0) const;

    /// "matrix has shape (3, 4): expected n x n", as a ValueError.
    [[noreturn]] void refuse(const std::string &expected) const;

    /// A list, or a matrix, of any size. \throws ValueError for other shapes.
    Eigen::VectorXd vector(const std::string &expected) const;
    Eigen::MatrixXd matrix(const std::string &expected) const;

private:
    py::array m_array;
    std::string m_name;
};

/// Copies a plane; a double is rounded to the nearest float.
/// \throws std::invalid_argument if a number lies beyond the range of a float.
void copy(const Plane &plane, const std::string &name, Eigen::MatrixXf &copied);
void copy(const Plane &plane, Eigen::MatrixXd &copied);
void copy(const Plane &plane, RowMajor<double> &copied);

/// One graph, n x n, or a stack of them, k x n x n.
class Graphs
{
public:
    /// \throws ValueError for other shapes.
    Graphs(const py::object &object, const std::string &name);

    bool is_stack() const { return m_numbers.dimensions() == 3; }
    Index count() const { return is_stack() ? m_numbers.size(0) : 1; }
    Index nodes() const { return m_numbers.size(m_numbers.dimensions() - 1); }
    /// A copy of a graph, from any thread.
    Eigen::MatrixXf graph(Index index) const;

private:
    Numbers m_numbers;
};

/// One truth value for each of \p count volumes; all false for None.
/// \throws ValueError for another length, or for values other than 0 and 1.
Eigen::Array<bool, Eigen::Dynamic, 1> flags(const py::object &object, const std::string &name,
                                            Index count);

/// Whole numbers in two dimensions. \throws ValueError if they are none.
Eigen::MatrixXi integers(const py::object &object, const std::string &name,
                         const std::string &expected);

/// An array that takes over the memory of a matrix or list of Eigen.
template <typename Dense>
py::array to_numpy(Dense value)
{
    using Scalar = typename Dense::Scalar;
    constexpr bool is_list = Dense::ColsAtCompileTime == 1 || Dense::RowsAtCompileTime == 1;
    auto kept = std::make_unique<Dense>(std::move(value));
    const Dense &dense = *kept;
    const py::capsule owner(kept.release(),
                            [](void *memory) { delete static_cast<Dense *>(memory); });
    const auto bytes = static_cast<Index>(sizeof(Scalar));
    if constexpr (is_list) {
        return py::array_t<Scalar>(std::vector<Index>{dense.size()}, std::vector<Index>{bytes},
                                   dense.data(), owner);
    } else {
        return py::array_t<Scalar>(
            std::vector<Index>{dense.rows(), dense.cols()},
            std::vector<Index>{dense.rowStride() * bytes, dense.colStride() * bytes}, dense.data(),
            owner);
    }
}

/// Numbers from 0 as an array.
py::array to_numpy(const std::vector<Index> &positions);

} // namespace bindings
