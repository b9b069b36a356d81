// A result table of the tool (support/output.h) as Python columns, for the
// package to make a DataFrame of: a dict from column name to a NumPy array
// (a column of integers or of numbers) or a list (labels as str, item
// sequences as tuples of item sets, each a tuple of labels). Equal labels
// share one str object, so a long table of few items stays small.
// Needs the GIL.
#ifndef SEQLATTICE_PYTHON_SRC_RESULTCOLUMNS_H_
#define SEQLATTICE_PYTHON_SRC_RESULTCOLUMNS_H_

#include <pybind11/pybind11.h>

#include "support/output.h"

namespace seqlattice_python {

pybind11::dict resultColumns(const seqlattice_cli::ResultTable& table);

// One cell as a Python value, by the same rules.
pybind11::object cellValue(const seqlattice_cli::Json& cell);

}  // namespace seqlattice_python

#endif  // SEQLATTICE_PYTHON_SRC_RESULTCOLUMNS_H_
