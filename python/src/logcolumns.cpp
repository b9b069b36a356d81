#include "logcolumns.h"

#include <utility>

#include "seqlattice/mining/memorybudget.h"

namespace seqlattice_python {

SEQUENCE_NAMESPACE_800::input::LogColumns logColumns(
    const Codes& customer, const Times& time, const Codes& item,
    std::size_t customers, std::vector<std::string> itemLabels) {
  const auto rows = static_cast<std::size_t>(customer.size());
  if (static_cast<std::size_t>(time.size()) != rows ||
      static_cast<std::size_t>(item.size()) != rows) {
    throw pybind11::value_error(
        "the customer, time and item columns differ in "
        "length");
  }
  SEQUENCE_NAMESPACE_800::input::LogColumns columns;
  columns.rows = rows;
  columns.customer = customer.data();
  columns.time = time.data();
  columns.item = item.data();
  columns.customerLabels.reserve(customers);
  for (std::size_t c = 0; c < customers; ++c) {
    columns.customerLabels.push_back(std::to_string(c));
  }
  columns.itemLabels = std::move(itemLabels);
  return columns;
}

std::size_t inputMemoryLimit() {
  return SEQUENCE_NAMESPACE_800::mining::availableMemoryBytes() / 2;
}

}  // namespace seqlattice_python
