// Reads a labelled transaction log, a CSV or TSV file with a header line and
// one row per (customer, time, item), into the miner's SequenceDatabase.
//
// The three columns are found by name in the header (customer, time and item
// unless the options say otherwise); other columns are ignored. Rows need not
// be sorted: rows with the same customer and time form one transaction, a
// customer's transactions are ordered by time, and customers keep the order in
// which they first appear. Times are numbers or ISO-8601 dates and date-times
// (timeparse.h), not both in one file. Item labels become codes as ItemLabels
// assigns them. The record syntax is CsvRecords'.
//
// Bad input throws InputError naming the file, the line and the problem, as
// in "orders.csv:17: expected 3 columns, found 2". With
// CsvOptions::skipInvalid a bad data row is dropped instead and counted in
// LabelledDatabase::skipped (a bad header still throws). A database that
// outgrows CsvOptions::memoryLimit throws the database's mining::MiningError.
// The grouping of the rows is columnreader.h's.
#ifndef SEQLATTICE_INPUT_CSVREADER_H_
#define SEQLATTICE_INPUT_CSVREADER_H_

#include <cstddef>
#include <functional>
#include <istream>
#include <string>

#include "seqlattice/input/columnreader.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

struct CsvOptions {
  std::string customerColumn = "customer";
  std::string timeColumn = "time";
  std::string itemColumn = "item";
  char delimiter = ',';
  std::size_t memoryLimit = 0;  // bytes for the database; 0: no limit
  // When set, gives the code of each item label in place of ItemLabels::
  // assign (to read new data with a model's codes); the result's items are
  // then left empty.
  std::function<int(const std::string&)> itemCode;
  // When not empty, times are dates in this format (parseFormattedTime)
  // rather than numbers or ISO-8601 dates.
  std::string timeFormat;
  // Drop bad data rows (wrong column count, blank customer or item, a time
  // that does not parse or is of the other kind) instead of throwing.
  bool skipInvalid = false;
};

// fileName labels the messages only.
LabelledDatabase readCsv(std::istream& in, const std::string& fileName,
                         const CsvOptions& options);

// Opens and reads the file at path; a file that cannot be opened gives
// "path: cannot open: <reason>".
LabelledDatabase readCsvFile(const std::string& path,
                             const CsvOptions& options);

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_INPUT_CSVREADER_H_
