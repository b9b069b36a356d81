#include "seqlattice/input/columnreader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "seqlattice/input/csvreader.h"
#include "seqlattice/input/input_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

// Columns over vectors that outlive the read.
struct ColumnData {
  std::vector<std::int32_t> customer;
  std::vector<double> time;
  std::vector<std::int32_t> item;
  std::vector<std::string> customerLabels;
  std::vector<std::string> itemLabels;

  input::LogColumns columns() const {
    input::LogColumns result;
    result.rows = time.size();
    result.customer = customer.data();
    result.time = time.data();
    result.item = item.data();
    result.customerLabels = customerLabels;
    result.itemLabels = itemLabels;
    return result;
  }
};

inline std::string errorOf(const ColumnData& data) {
  try {
    input::readColumns(data.columns(), input::ColumnOptions());
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "no error";
}

}  // namespace test

TEST(ColumnReaderTest, GroupsRowsAsTheCsvReaderDoes) {
  // Rows out of time order, a repeated item, a numeric item label and
  // equal times that merge into one transaction.
  test::ColumnData data{{0, 1, 0, 1, 0, 0},
                        {5, 3, 4, 3, 5, 4},
                        {0, 1, 2, 0, 1, 2},
                        {"cy", "dee"},
                        {"rye", "12", "oat"}};
  input::LabelledDatabase log =
      input::readColumns(data.columns(), input::ColumnOptions());
  EXPECT_EQ(test::describeLog(log),
            "cy: (oat)@4 (rye 12)@5\n"
            "dee: (rye 12)@3\n");

  std::istringstream csv(
      "item,customer,time\n"
      "rye,cy,5\n12,dee,3\noat,cy,4\nrye,dee,3\n12,cy,5\noat,cy,4\n");
  input::LabelledDatabase fromCsv =
      input::readCsv(csv, "orders.csv", input::CsvOptions());
  EXPECT_EQ(test::describeLog(fromCsv), test::describeLog(log));
  EXPECT_EQ(fromCsv.items.stringLabels(), log.items.stringLabels());
  EXPECT_EQ(fromCsv.database.items(), log.database.items());
}

TEST(ColumnReaderTest, UnusedLabelsTakeNoCode) {
  test::ColumnData data{
      {0, 0}, {1, 2}, {2, 0}, {"ann"}, {"tea", "unsold", "milk"}};
  input::LabelledDatabase log =
      input::readColumns(data.columns(), input::ColumnOptions());
  EXPECT_EQ(log.items.stringLabels(), (std::vector<std::pair<int, std::string>>{
                                          {0, "milk"}, {1, "tea"}}));
  EXPECT_EQ(test::describeLog(log), "ann: (milk)@1 (tea)@2\n");
}

TEST(ColumnReaderTest, ItemCodeGivesTheCodesAndLeavesTheLabelsEmpty) {
  test::ColumnData data{{0, 0}, {1, 2}, {0, 1}, {"7"}, {"milk", "tea"}};
  input::ColumnOptions options;
  options.itemCode = [](const std::string& label) {
    return label == "milk" ? 40 : 41;
  };
  input::LabelledDatabase log = input::readColumns(data.columns(), options);
  EXPECT_TRUE(log.items.stringLabels().empty());
  EXPECT_EQ(log.database.items(), (std::vector<int>{40, 41}));
  EXPECT_EQ(log.customers, (std::vector<std::string>{"7"}));
}

TEST(ColumnReaderTest, CustomersWithoutRowsAreKept) {
  test::ColumnData data{{1}, {3}, {0}, {"ann", "bob"}, {"milk"}};
  input::LabelledDatabase log =
      input::readColumns(data.columns(), input::ColumnOptions());
  EXPECT_EQ(test::describeLog(log), "ann:\nbob: (milk)@3\n");
}

TEST(ColumnReaderTest, RefusesIndexesOutOfRangeAndTimesNotFinite) {
  test::ColumnData data{{0, 1}, {1, 2}, {0, 0}, {"ann"}, {"milk"}};
  EXPECT_EQ(test::errorOf(data), "row 1: customer index 1 outside [0, 1)");
  data.customer = {0, 0};
  data.item = {0, -1};
  EXPECT_EQ(test::errorOf(data), "row 1: item index -1 outside [0, 1)");
  data.item = {0, 0};
  data.time = {1, NAN};
  EXPECT_EQ(test::errorOf(data), "row 1: time is not finite");
  data.time = {INFINITY, 1};
  EXPECT_EQ(test::errorOf(data), "row 0: time is not finite");
}

}  // namespace SEQUENCE_NAMESPACE_800
