// A data frame's log as the extension receives it: three NumPy columns
// (customer index, time, item index) and the item labels. Shared by mining,
// predicting and the distributed miner's partitions.
#ifndef SEQLATTICE_PYTHON_SRC_LOGCOLUMNS_H_
#define SEQLATTICE_PYTHON_SRC_LOGCOLUMNS_H_

#include <pybind11/numpy.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "seqlattice/input/columnreader.h"

namespace seqlattice_python {

using Codes = pybind11::array_t<std::int32_t, pybind11::array::c_style>;
using Times = pybind11::array_t<double, pybind11::array::c_style>;

// The three columns of a data frame's log; customers are labelled by their
// index, which the package maps back to its own values. Throws ValueError
// when the columns differ in length. The arrays must outlive the result.
SEQUENCE_NAMESPACE_800::input::LogColumns logColumns(
    const Codes& customer, const Times& time, const Codes& item,
    std::size_t customers, std::vector<std::string> itemLabels);

// What a database may hold, as for the tool's input files.
std::size_t inputMemoryLimit();

}  // namespace seqlattice_python

#endif  // SEQLATTICE_PYTHON_SRC_LOGCOLUMNS_H_
