// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pybind11/pybind11.h>

/// \file
/// The parts of the extension module `nodalis._nodalis`. What users see are the functions of the
/// package in python/nodalis, which have the docstrings and name the results.

namespace bindings
{

void add_measures(pybind11::module_ &module);
void add_spectra(pybind11::module_ &module);
void add_trees(pybind11::module_ &module);
void add_signals(pybind11::module_ module);
void add_statistics(pybind11::module_ module);

} // namespace bindings
