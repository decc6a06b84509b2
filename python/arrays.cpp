// SPDX-License-Identifier: GPL-3.0-or-later
#include "python/arrays.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace bindings
{
namespace
{

std::string text(const py::object &object)
{
    return py::cast<std::string>(py::str(object));
}

bool is_readable_in_place(const py::array &array)
{
    const bool is_float = py::isinstance<py::array_t<float>>(array);
    const bool is_double = py::isinstance<py::array_t<double>>(array);
    return (is_float || is_double) &&
           (array.flags() & py::detail::npy_api::NPY_ARRAY_ALIGNED_) != 0;
}

template <typename Source, typename Matrix>
void copy_as(const Plane &plane, Matrix &copied)
{
    using Scalar = typename Matrix::Scalar;
    copied.resize(plane.rows, plane.columns);
    // A tile and its mirror image fit the first cache together, whichever way the rows lie.
    constexpr Index tile = 32;
    for (Index j0 = 0; j0 < plane.columns; j0 += tile) {
        for (Index i0 = 0; i0 < plane.rows; i0 += tile) {
            for (Index j = j0; j < std::min(j0 + tile, plane.columns); ++j) {
                const char *at = plane.data + i0 * plane.row_step + j * plane.column_step;
                for (Index i = i0; i < std::min(i0 + tile, plane.rows); ++i) {
                    copied(i, j) = static_cast<Scalar>(*reinterpret_cast<const Source *>(at));
                    at += plane.row_step;
                }
            }
        }
    }
}

template <typename Matrix>
void copy_any(const Plane &plane, Matrix &copied)
{
    if (plane.is_double) {
        copy_as<double>(plane, copied);
    } else {
        copy_as<float>(plane, copied);
    }
}

} // namespace

Numbers::Numbers(const py::object &object, std::string name) : m_name(std::move(name))
{
    const py::module_ numpy = py::module_::import("numpy");
    if (py::isinstance(object, numpy.attr("ma").attr("MaskedArray"))) {
        throw py::value_error(m_name + " is a masked array: fill what is masked first");
    }
    py::array array = numpy.attr("asarray")(object);
    if (std::string("biuf").find(array.dtype().kind()) == std::string::npos) {
        throw py::value_error(m_name + " holds " + text(array.dtype()) +
                              ": expected real numbers, best float32 or float64");
    }
    m_array = is_readable_in_place(array) ? array : py::array(array.attr("astype")("float64"));
}

Plane Numbers::plane(Index index) const
{
    const int first = dimensions() - 2;
    Plane plane;
    plane.data = static_cast<const char *>(m_array.data());
    if (first == 1) {
        plane.data += index * m_array.strides(0);
    }
    plane.rows = m_array.shape(first);
    plane.columns = m_array.shape(first + 1);
    plane.row_step = m_array.strides(first);
    plane.column_step = m_array.strides(first + 1);
    plane.is_double = m_array.itemsize() == sizeof(double);
    return plane;
}

void Numbers::refuse(const std::string &expected) const
{
    throw py::value_error(m_name + " has shape " + text(m_array.attr("shape")) + ": expected " +
                          expected);
}

Eigen::VectorXd Numbers::vector(const std::string &expected) const
{
    if (dimensions() != 1) {
        refuse(expected);
    }
    Plane plane;
    plane.data = static_cast<const char *>(m_array.data());
    plane.rows = size(0);
    plane.columns = 1;
    plane.row_step = m_array.strides(0);
    plane.is_double = m_array.itemsize() == sizeof(double);
    Eigen::MatrixXd copied;
    copy(plane, copied);
    return copied;
}

Eigen::MatrixXd Numbers::matrix(const std::string &expected) const
{
    if (dimensions() != 2) {
        refuse(expected);
    }
    Eigen::MatrixXd copied;
    copy(plane(), copied);
    return copied;
}

void copy(const Plane &plane, const std::string &name, Eigen::MatrixXf &copied)
{
    copy_any(plane, copied);
    if (!plane.is_double || copied.allFinite()) {
        return;
    }
    for (Index j = 0; j < plane.columns; ++j) {
        for (Index i = 0; i < plane.rows; ++i) {
            const double value = *reinterpret_cast<const double *>(plane.data + i * plane.row_step +
                                                                   j * plane.column_step);
            if (std::isfinite(value) && !std::isfinite(copied(i, j))) {
                throw std::invalid_argument(
                    name + " has an entry in row " + std::to_string(i) + ", column " +
                    std::to_string(j) +
                    " beyond the range of single precision, 3.4e38: expected smaller numbers");
            }
        }
    }
}

void copy(const Plane &plane, Eigen::MatrixXd &copied)
{
    copy_any(plane, copied);
}

void copy(const Plane &plane, RowMajor<double> &copied)
{
    copy_any(plane, copied);
}

Graphs::Graphs(const py::object &object, const std::string &name) : m_numbers(object, name)
{
    const int last = m_numbers.dimensions() - 1;
    if ((last != 1 && last != 2) || m_numbers.size(last) != m_numbers.size(last - 1)) {
        m_numbers.refuse("n x n, or k x n x n for a stack of them");
    }
}

Eigen::MatrixXf Graphs::graph(Index index) const
{
    Eigen::MatrixXf copied;
    copy(m_numbers.plane(index), m_numbers.name(), copied);
    return copied;
}

Eigen::Array<bool, Eigen::Dynamic, 1> flags(const py::object &object, const std::string &name,
                                            Index count)
{
    if (object.is_none()) {
        return Eigen::Array<bool, Eigen::Dynamic, 1>::Constant(count, false);
    }
    const Numbers numbers(object, name);
    const std::string expected = std::to_string(count) + " values, one per volume";
    const Eigen::VectorXd values = numbers.vector(expected);
    if (values.size() != count) {
        numbers.refuse(expected);
    }
    if (!(values.array() == 0.0 || values.array() == 1.0).all()) {
        throw py::value_error(name + " holds other values than 0 and 1: expected one flag per "
                                     "volume, not the numbers of volumes");
    }
    return values.array() == 1.0;
}

Eigen::MatrixXi integers(const py::object &object, const std::string &name,
                         const std::string &expected)
{
    const Eigen::MatrixXd values = Numbers(object, name).matrix(expected);
    Eigen::MatrixXi whole = values.cwiseMax(-2e9).cwiseMin(2e9).cast<int>();
    if (!(whole.cast<double>().array() == values.array()).all()) {
        throw py::value_error(name + " holds what are no whole numbers");
    }
    return whole;
}

py::array to_numpy(const std::vector<Index> &positions)
{
    return py::array_t<Index>(static_cast<Index>(positions.size()), positions.data());
}

} // namespace bindings
