#include "seqlattice/input/csvreader.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <optional>
#include <unordered_map>
#include <utility>

#include "seqlattice/input/csvrecords.h"
#include "seqlattice/input/inputerror.h"
#include "seqlattice/input/timeparse.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

namespace {

[[noreturn]] void fail(const std::string& file, long line,
                       const std::string& problem) {
  throw InputError(file, line, problem);
}

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

// Index of the column named `name` in the header.
std::size_t findColumn(const std::vector<std::string>& header,
                       const std::string& name, const CsvRecords& records) {
  std::optional<std::size_t> found;
  for (std::size_t i = 0; i < header.size(); ++i) {
    if (header[i] != name) continue;
    if (found) {
      fail(records.fileName(), records.line(),
           "column " + quoted(name) + " appears twice in the header");
    }
    found = i;
  }
  if (!found) {
    std::string columns;
    for (const std::string& column : header) {
      columns += (columns.empty() ? "" : ", ") + quoted(column);
    }
    fail(records.fileName(), records.line(),
         "no column " + quoted(name) + " in the header (columns: " + columns +
             ")");
  }
  return *found;
}

// Interns strings as dense indexes in order of first appearance.
class Interner {
 public:
  std::int32_t indexOf(const std::string& text) {
    auto [at, added] =
        index_.emplace(text, static_cast<std::int32_t>(texts_.size()));
    if (added) texts_.push_back(text);
    return at->second;
  }
  std::vector<std::string>& texts() { return texts_; }

 private:
  std::unordered_map<std::string, std::int32_t> index_;
  std::vector<std::string> texts_;
};

}  // namespace

LabelledDatabase readCsv(std::istream& in, const std::string& fileName,
                         const CsvOptions& options) {
  const std::string& customerName = options.customerColumn;
  const std::string& timeName = options.timeColumn;
  const std::string& itemName = options.itemColumn;
  if (customerName == timeName || customerName == itemName ||
      timeName == itemName) {
    fail(fileName, 0,
         "the customer, time and item columns must be three different "
         "columns, not " +
             quoted(customerName) + ", " + quoted(timeName) + " and " +
             quoted(itemName));
  }

  CsvRecords records(in, fileName, options.delimiter);
  std::vector<std::string> fields;
  if (!records.next(fields)) fail(fileName, 0, "no header line");
  const std::size_t columns = fields.size();
  const std::size_t customerAt = findColumn(fields, customerName, records);
  const std::size_t timeAt = findColumn(fields, timeName, records);
  const std::size_t itemAt = findColumn(fields, itemName, records);

  Interner customers;
  Interner labels;
  std::vector<std::int32_t> customerColumn;
  std::vector<std::int32_t> itemColumn;
  std::vector<double> timeColumn;
  long firstTimeLine = 0;
  bool datesInFile = false;
  const std::string& timeFormat = options.timeFormat;
  if (!timeFormat.empty()) {
    std::string problem = checkTimeFormat(timeFormat);
    if (!problem.empty()) {
      fail(fileName, 0, "time format " + quoted(timeFormat) + ": " + problem);
    }
  }
  SkippedRows skipped;
  // A bad row is dropped under skipInvalid (counted by reason), else fatal.
  auto reject = [&](long line, const char* reason, const std::string& problem) {
    if (!options.skipInvalid) fail(fileName, line, problem);
    skipped.add(reason, line);
  };
  while (records.next(fields)) {
    const long line = records.line();
    if (fields.size() != columns) {
      reject(line, "wrong column count",
             "expected " + std::to_string(columns) + " columns, found " +
                 std::to_string(fields.size()));
      continue;
    }
    const std::string& customer = fields[customerAt];
    const std::string& item = fields[itemAt];
    const std::string& timeText = fields[timeAt];
    if (customer.empty()) {
      reject(line, "blank customer", "empty customer");
      continue;
    }
    if (item.empty()) {
      reject(line, "blank item", "empty item");
      continue;
    }
    std::optional<TransactionTime> time =
        timeFormat.empty() ? parseTransactionTime(timeText)
                           : parseFormattedTime(timeText, timeFormat);
    if (!time) {
      reject(line, "bad time",
             "bad time " + quoted(timeText) +
                 (timeFormat.empty()
                      ? ": expected a number or an ISO-8601 date"
                      : ": does not match the format " + quoted(timeFormat)));
      continue;
    }
    if (firstTimeLine == 0) {
      firstTimeLine = line;
      datesInFile = time->isDate;
    } else if (time->isDate != datesInFile) {
      reject(line, "bad time",
             "time " + quoted(timeText) + " is " +
                 (time->isDate ? "a date" : "a number") + " but line " +
                 std::to_string(firstTimeLine) + " has " +
                 (datesInFile ? "a date" : "a number"));
      continue;
    }
    customerColumn.push_back(customers.indexOf(customer));
    itemColumn.push_back(labels.indexOf(item));
    timeColumn.push_back(time->value);
  }
  if (timeColumn.empty()) {
    fail(fileName, 0,
         skipped.total() > 0
             ? "no valid data rows (skipped " + skipped.summary() + ")"
             : std::string("no data rows after the header"));
  }

  LogColumns log;
  log.rows = timeColumn.size();
  log.customer = customerColumn.data();
  log.time = timeColumn.data();
  log.item = itemColumn.data();
  log.customerLabels = std::move(customers.texts());
  log.itemLabels = std::move(labels.texts());
  LabelledDatabase result = readColumns(
      std::move(log), ColumnOptions{options.memoryLimit, options.itemCode});
  result.skipped = std::move(skipped);
  result.datedTimes = datesInFile;
  return result;
}

LabelledDatabase readCsvFile(const std::string& path,
                             const CsvOptions& options) {
  std::ifstream in(path, std::ios::binary);
  if (!in) fail(path, 0, std::string("cannot open: ") + std::strerror(errno));
  return readCsv(in, path, options);
}

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
