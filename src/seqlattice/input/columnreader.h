// Reads a transaction log held as columns, one entry per (customer, time,
// item) row, into the miner's SequenceDatabase: the form in which a data frame
// hands its log over, and the form the CSV reader reduces its text to.
//
// Customers and items come as dense indexes into label lists (a factorised or
// categorical column), times as numbers. The grouping is the CSV reader's:
// rows with the same customer and time form one transaction, a customer's
// transactions are ordered by time, and customers are numbered by their index,
// so indexes given in order of first appearance keep the rows' order. Item
// labels become codes as ItemLabels assigns them, over the labels some row
// uses (an unused category takes no code).
//
// The columns are values a caller passes, not text read from a file: an index
// out of range or a time that is not finite throws std::invalid_argument
// naming the row (from 0). A database that outgrows ColumnOptions::memoryLimit
// throws the database's mining::MiningError. The columns are only read.
#ifndef SEQLATTICE_INPUT_COLUMNREADER_H_
#define SEQLATTICE_INPUT_COLUMNREADER_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "seqlattice/input/itemlabels.h"
#include "seqlattice/input/skippedrows.h"
#include "seqlattice/mining/sequencedatabase.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

// A customer database with the labels of its customers and items.
struct LabelledDatabase {
  mining::SequenceDatabase database;
  std::vector<std::string> customers;  // label of customer c of database
  ItemLabels items;
  // The times are dates, as seconds since the epoch (set by the CSV reader;
  // a caller of readColumns sets it when its times are).
  bool datedTimes = false;
  // The rows a forgiving reader dropped (none for columns, which have no bad
  // rows to forgive: they throw).
  SkippedRows skipped;
};

// Three columns of `rows` entries each, and the labels the indexes name.
struct LogColumns {
  std::size_t rows = 0;
  const std::int32_t* customer = nullptr;  // index into customerLabels
  const double* time = nullptr;
  const std::int32_t* item = nullptr;  // index into itemLabels
  std::vector<std::string> customerLabels;
  std::vector<std::string> itemLabels;
};

struct ColumnOptions {
  std::size_t memoryLimit = 0;  // bytes for the database; 0: no limit
  // When set, gives the code of each item label in place of ItemLabels::
  // assign (to read new data with a model's codes); the result's items are
  // then left empty.
  std::function<int(const std::string&)> itemCode;
};

// Consumes the label lists of columns; the result's customers are its
// customerLabels.
LabelledDatabase readColumns(LogColumns columns, const ColumnOptions& options);

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_INPUT_COLUMNREADER_H_
