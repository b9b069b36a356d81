// Helpers of the input readers' tests.
#ifndef SEQLATTICE_INPUT_INPUT_TEST_UTIL_H_
#define SEQLATTICE_INPUT_INPUT_TEST_UTIL_H_

#include <iomanip>
#include <sstream>
#include <string>

#include "seqlattice/input/columnreader.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

// "customer: (labels)@time ..." per customer, one line each; times as whole
// numbers.
inline std::string describeLog(const input::LabelledDatabase& log) {
  std::ostringstream out;
  const auto& db = log.database;
  for (std::size_t c = 0; c < db.customerCount(); ++c) {
    out << log.customers[c] << ":";
    for (auto t = db.firstTransaction(c); t < db.endTransaction(c); ++t) {
      out << " (";
      for (const int* item = db.itemsBegin(t); item != db.itemsEnd(t); ++item) {
        out << (item == db.itemsBegin(t) ? "" : " ")
            << log.items.labelOf(*item);
      }
      out << ")@" << std::fixed << std::setprecision(0) << db.time(t);
    }
    out << "\n";
  }
  return out.str();
}

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_INPUT_INPUT_TEST_UTIL_H_
