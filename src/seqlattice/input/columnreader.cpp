#include "seqlattice/input/columnreader.h"

#include <cmath>
#include <stdexcept>
#include <utility>

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

namespace {

[[noreturn]] void badRow(std::size_t row, const std::string& problem) {
  throw std::invalid_argument("row " + std::to_string(row) + ": " + problem);
}

void checkIndex(std::int32_t index, std::size_t labels, std::size_t row,
                const char* column) {
  if (index < 0 || static_cast<std::size_t>(index) >= labels) {
    badRow(row, std::string(column) + " index " + std::to_string(index) +
                    " outside [0, " + std::to_string(labels) + ")");
  }
}

// The item code of each label index; labels that no row uses get none.
std::vector<int> itemCodes(const LogColumns& columns,
                           const ColumnOptions& options, ItemLabels* items) {
  const std::size_t labelCount = columns.itemLabels.size();
  std::vector<bool> used(labelCount, false);
  for (std::size_t r = 0; r < columns.rows; ++r) used[columns.item[r]] = true;
  std::vector<std::string> usedLabels;
  for (std::size_t i = 0; i < labelCount; ++i) {
    if (used[i]) usedLabels.push_back(columns.itemLabels[i]);
  }
  if (!options.itemCode) *items = ItemLabels::assign(usedLabels);
  std::vector<int> codes(labelCount, 0);
  for (std::size_t i = 0; i < labelCount; ++i) {
    if (!used[i]) continue;
    const std::string& label = columns.itemLabels[i];
    codes[i] =
        options.itemCode ? options.itemCode(label) : *items->codeOf(label);
  }
  return codes;
}

}  // namespace

LabelledDatabase readColumns(LogColumns columns, const ColumnOptions& options) {
  const std::size_t customerCount = columns.customerLabels.size();
  for (std::size_t r = 0; r < columns.rows; ++r) {
    checkIndex(columns.customer[r], customerCount, r, "customer");
    checkIndex(columns.item[r], columns.itemLabels.size(), r, "item");
    if (!std::isfinite(columns.time[r])) badRow(r, "time is not finite");
  }
  LabelledDatabase result;
  std::vector<int> codes = itemCodes(columns, options, &result.items);

  // Group the rows by customer (stable, so equal times keep row order); the
  // database orders each customer's transactions and merges equal times.
  std::vector<std::size_t> start(customerCount + 1, 0);
  for (std::size_t r = 0; r < columns.rows; ++r) {
    ++start[static_cast<std::size_t>(columns.customer[r]) + 1];
  }
  for (std::size_t c = 0; c < customerCount; ++c) start[c + 1] += start[c];
  std::vector<std::uint32_t> order(columns.rows);
  std::vector<std::size_t> fill(start.begin(), start.end() - 1);
  for (std::size_t r = 0; r < columns.rows; ++r) {
    order[fill[static_cast<std::size_t>(columns.customer[r])]++] =
        static_cast<std::uint32_t>(r);
  }

  mining::SequenceDatabase& database = result.database;
  database.setMemoryLimit(options.memoryLimit);
  for (std::size_t c = 0; c < customerCount; ++c) {
    database.beginCustomer();
    for (std::size_t k = start[c]; k < start[c + 1]; ++k) {
      const std::uint32_t r = order[k];
      database.addTransaction(columns.time[r], &codes[columns.item[r]], 1);
    }
    database.endCustomer();
  }
  result.customers = std::move(columns.customerLabels);
  return result;
}

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
