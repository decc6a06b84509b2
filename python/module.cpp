// SPDX-License-Identifier: GPL-3.0-or-later
#include "python/module.h"

#include <exception>

#include "signals/error.h"
#include "statistics/error.h"

PYBIND11_MODULE(_nodalis, module)
{
    pybind11::register_exception_translator([](std::exception_ptr thrown) {
        try {
            std::rethrow_exception(std::move(thrown));
        } catch (const signals::Error &error) {
            PyErr_SetString(PyExc_ValueError, error.what());
        } catch (const statistics::Error &error) {
            PyErr_SetString(PyExc_ValueError, error.what());
        }
    });
    bindings::add_measures(module);
    bindings::add_spectra(module);
    bindings::add_trees(module);
    bindings::add_signals(module.def_submodule("signals"));
    bindings::add_statistics(module.def_submodule("statistics"));
}
