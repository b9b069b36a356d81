#include "seqlattice/input/inputerror.h"

#include <gtest/gtest.h>

namespace SEQUENCE_NAMESPACE_800 {
namespace input {
namespace {

TEST(InputErrorTest, NamesFileLineAndProblem) {
  InputError error("orders.csv", 17, "expected 3 columns, found 2");
  EXPECT_STREQ(error.what(), "orders.csv:17: expected 3 columns, found 2");
  EXPECT_EQ(error.file(), "orders.csv");
  EXPECT_EQ(error.line(), 17);
  EXPECT_EQ(error.problem(), "expected 3 columns, found 2");
}

TEST(InputErrorTest, ProblemOfTheWholeFileHasNoLine) {
  InputError error("orders.csv", 0, "no data rows after the header");
  EXPECT_STREQ(error.what(), "orders.csv: no data rows after the header");
  EXPECT_EQ(error.line(), 0);
}

}  // namespace
}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
