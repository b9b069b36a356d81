#include "seqlattice/input/csvreader.h"

#include <algorithm>
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
  std::uint32_t indexOf(const std::string& text) {
    auto [at, added] =
        index_.emplace(text, static_cast<std::uint32_t>(texts_.size()));
    if (added) texts_.push_back(text);
    return at->second;
  }
  std::vector<std::string>& texts() { return texts_; }

 private:
  std::unordered_map<std::string, std::uint32_t> index_;
  std::vector<std::string> texts_;
};

struct Row {
  std::uint32_t customer;
  std::uint32_t label;
  double time;
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
  std::vector<Row> rows;
  long firstTimeLine = 0;
  bool datesInFile = false;
  const std::string& timeFormat = options.timeFormat;
  if (!timeFormat.empty()) {
    std::string problem = checkTimeFormat(timeFormat);
    if (!problem.empty()) {
      fail(fileName, 0, "time format " + quoted(timeFormat) + ": " + problem);
    }
  }
  LabelledDatabase result;
  // A bad row is dropped under skipInvalid (counted by reason), else fatal.
  auto reject = [&](long line, const char* reason, const std::string& problem) {
    if (!options.skipInvalid) fail(fileName, line, problem);
    result.skipped.add(reason, line);
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
    rows.push_back(
        Row{customers.indexOf(customer), labels.indexOf(item), time->value});
  }
  if (rows.empty()) {
    fail(fileName, 0,
         result.skipped.total() > 0
             ? "no valid data rows (skipped " + result.skipped.summary() + ")"
             : std::string("no data rows after the header"));
  }

  if (!options.itemCode) result.items = ItemLabels::assign(labels.texts());
  std::vector<int> codes;
  codes.reserve(labels.texts().size());
  for (const std::string& label : labels.texts()) {
    codes.push_back(options.itemCode ? options.itemCode(label)
                                     : *result.items.codeOf(label));
  }

  // Group the rows by customer (stable, so equal times keep file order);
  // the database orders each customer's transactions and merges equal times.
  const std::size_t customerCount = customers.texts().size();
  std::vector<std::size_t> start(customerCount + 1, 0);
  for (const Row& row : rows) ++start[row.customer + 1];
  for (std::size_t c = 0; c < customerCount; ++c) start[c + 1] += start[c];
  std::vector<std::uint32_t> order(rows.size());
  std::vector<std::size_t> fill(start.begin(), start.end() - 1);
  for (std::size_t r = 0; r < rows.size(); ++r) {
    order[fill[rows[r].customer]++] = static_cast<std::uint32_t>(r);
  }

  mining::SequenceDatabase& database = result.database;
  database.setMemoryLimit(options.memoryLimit);
  for (std::size_t c = 0; c < customerCount; ++c) {
    database.beginCustomer();
    for (std::size_t k = start[c]; k < start[c + 1]; ++k) {
      const Row& row = rows[order[k]];
      database.addTransaction(row.time, &codes[row.label], 1);
    }
    database.endCustomer();
  }
  result.customers = std::move(customers.texts());
  return result;
}

void SkippedRows::add(const std::string& what, long line) {
  auto at = std::find_if(reasons_.begin(), reasons_.end(),
                         [&what](const Reason& r) { return r.what == what; });
  if (at == reasons_.end()) at = reasons_.insert(at, Reason{what, 0, {}});
  ++at->count;
  if (at->firstLines.size() < kLinesKept) at->firstLines.push_back(line);
}

long SkippedRows::total() const {
  long total = 0;
  for (const Reason& reason : reasons_) total += reason.count;
  return total;
}

std::string SkippedRows::summary() const {
  std::string text;
  for (const Reason& reason : reasons_) {
    if (!text.empty()) text += ", ";
    text += std::to_string(reason.count) + " " + reason.what +
            (reason.firstLines.size() > 1 ? " (lines " : " (line ");
    for (std::size_t i = 0; i < reason.firstLines.size(); ++i) {
      text += (i > 0 ? ", " : "") + std::to_string(reason.firstLines[i]);
    }
    text += reason.count > static_cast<long>(reason.firstLines.size())
                ? ", ...)"
                : ")";
  }
  return text;
}

LabelledDatabase readCsvFile(const std::string& path,
                             const CsvOptions& options) {
  std::ifstream in(path, std::ios::binary);
  if (!in) fail(path, 0, std::string("cannot open: ") + std::strerror(errno));
  return readCsv(in, path, options);
}

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
