// The extension's side of seqlattice.dask: what a worker does with its
// partition of the customers (mine it at the partition's share of the
// minimum support; count the union of all partitions' candidates in it) and
// what the driver does with the counted patterns (build the model). The
// work runs without the GIL, so a worker's other threads go on meanwhile.
//
// A partition comes as the columns of a data frame's log
// (logcolumns.h): customers numbered 0 .. n-1 in the order in which the
// whole log numbers them, items as the codes the whole log gives them, so
// that a partition's first customer of a pattern maps back to the log's.
#ifndef SEQLATTICE_PYTHON_SRC_DISTRIBUTED_H_
#define SEQLATTICE_PYTHON_SRC_DISTRIBUTED_H_

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <string>
#include <utility>
#include <vector>

#include "logcolumns.h"
#include "support/minemodel.h"
#include "support/modelfile.h"

namespace seqlattice_python {

using Records = pybind11::array_t<std::int32_t, pybind11::array::c_style>;

// What the driver knows of the whole log when it builds the model.
struct PatternModelParts {
  seqlattice_cli::MineSettings settings;  // min_support, max_items, sequences
  long customers = 0;
  long minCount = 0;
  long transactions = 0;
  long itemOccurrences = 0;
  int maxItemsPerTransaction = 0;
  std::string inputName;
  std::string inputFormat;
  std::vector<std::string> itemLabels;  // every label of the log
  // The customers' sequences in the index's flat form, when kept.
  std::vector<int> sequenceItems;
  std::vector<std::uint32_t> setStarts, customerStarts;
};

// The model of the patterns of records, counted over the whole log.
seqlattice_cli::Model modelFromRecords(const Records& records,
                                       const PatternModelParts& parts);

// Binds the partition functions, item_codes and PatternModelParts.
void bindDistributed(pybind11::module_& m);

}  // namespace seqlattice_python

#endif  // SEQLATTICE_PYTHON_SRC_DISTRIBUTED_H_
