#include "seqlattice/input/csvreader.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "seqlattice/input/input_test_util.h"
#include "seqlattice/input/inputerror.h"
#include "seqlattice/mining/miningerror.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace input {
namespace {

LabelledDatabase read(const std::string& text,
                      const CsvOptions& options = CsvOptions()) {
  std::istringstream in(text);
  return readCsv(in, "orders.csv", options);
}

std::string errorOf(const std::string& text,
                    const CsvOptions& options = CsvOptions()) {
  try {
    read(text, options);
  } catch (const InputError& error) {
    return error.what();
  }
  return "no error";
}

TEST(CsvReaderTest, GroupsUnsortedRowsIntoTransactions) {
  LabelledDatabase log = read(
      "customer,time,item\n"
      "ann,2,milk\n"
      "bob,1,tea\n"
      "ann,1,bread\n"
      "ann,2,bread\n"
      "ann,1,bread\n");
  EXPECT_EQ(test::describeLog(log),
            "ann: (bread)@1 (bread milk)@2\n"
            "bob: (tea)@1\n");
  EXPECT_EQ(log.database.transactionCount(), 3u);
  EXPECT_EQ(log.database.distinctItemCount(), 3u);
}

TEST(CsvReaderTest, ItemCodesFollowItemLabels) {
  LabelledDatabase log =
      read("customer,time,item\nc,1,milk\nc,1,7\nc,2,bread\n");
  EXPECT_EQ(log.items.codeOf("bread"), 0);
  EXPECT_EQ(log.items.codeOf("milk"), 1);
  EXPECT_EQ(log.items.codeOf("7"), 7);
  const auto& db = log.database;
  EXPECT_EQ(std::vector<int>(db.itemsBegin(0), db.itemsEnd(0)),
            (std::vector<int>{1, 7}));
}

TEST(CsvReaderTest, ItemCodesFromTheCaller) {
  CsvOptions options;
  options.itemCode = [](const std::string& label) {
    return label == "tea" ? 40 : -1;
  };
  LabelledDatabase log =
      read("customer,time,item\nc,1,tea\nc,1,cake\nc,2,jam\n", options);
  EXPECT_TRUE(log.items.stringLabels().empty());
  const auto& db = log.database;
  EXPECT_EQ(std::vector<int>(db.itemsBegin(0), db.itemsEnd(0)),
            (std::vector<int>{-1, 40}));
  EXPECT_EQ(std::vector<int>(db.itemsBegin(1), db.itemsEnd(1)),
            (std::vector<int>{-1}));
}

TEST(CsvReaderTest, ColumnsAreFoundByNameAmongOthers) {
  CsvOptions options;
  options.customerColumn = "client";
  options.timeColumn = "date";
  options.itemColumn = "product";
  LabelledDatabase log = read(
      "store,product,price,client,date\n"
      "north,jam,2.5,c9,2024-01-02\n"
      "south,\"tea, green\",3,c9,2024-01-01\n",
      options);
  EXPECT_EQ(test::describeLog(log),
            "c9: (tea, green)@1704067200 (jam)@1704153600\n");
}

TEST(CsvReaderTest, DatesAndDateTimesMixWithinOneFile) {
  LabelledDatabase log = read(
      "customer,time,item\n"
      "c,2024-01-01T00:00:00Z,a\n"
      "c,2024-01-01,b\n"
      "c,2024-01-01T12:00,c\n");
  EXPECT_EQ(test::describeLog(log), "c: (a b)@1704067200 (c)@1704110400\n");
}

TEST(CsvReaderTest, TabSeparatedWithCrlfAndQuotes) {
  CsvOptions options;
  options.delimiter = '\t';
  LabelledDatabase log = read(
      "customer\ttime\titem\r\n"
      "\r\n"
      "x\t1\t\"a\"\"b\"\r\n"
      "x\t3\tc d\r\n",
      options);
  EXPECT_EQ(test::describeLog(log), "x: (a\"b)@1 (c d)@3\n");
}

TEST(CsvReaderTest, CustomersKeepTheirFirstAppearanceOrder) {
  LabelledDatabase log =
      read("customer,time,item\nz,1,a\ny,1,a\nz,2,a\nx,1,a\n");
  EXPECT_EQ(log.customers, (std::vector<std::string>{"z", "y", "x"}));
}

TEST(CsvReaderTest, WrongColumnCountNamesFileAndLine) {
  EXPECT_EQ(errorOf("customer,time,item\n"
                    "a,1,x\n"
                    "\n"
                    "a,2\n"),
            "orders.csv:4: expected 3 columns, found 2");
  EXPECT_EQ(errorOf("customer,time,item\na,1,x,y\n"),
            "orders.csv:2: expected 3 columns, found 4");
}

TEST(CsvReaderTest, LineNumbersCountBreaksInsideQuotes) {
  EXPECT_EQ(errorOf("customer,time,item\n"
                    "a,1,\"two\nlines\"\n"
                    "a,x,y\n"),
            "orders.csv:4: bad time \"x\": expected a number or an ISO-8601 "
            "date");
}

TEST(CsvReaderTest, EmptyCustomerOrItem) {
  EXPECT_EQ(errorOf("customer,time,item\n,1,x\n"),
            "orders.csv:2: empty customer");
  EXPECT_EQ(errorOf("customer,time,item\na,1,\"\"\n"),
            "orders.csv:2: empty item");
}

TEST(CsvReaderTest, BadDates) {
  EXPECT_EQ(errorOf("customer,time,item\na,2023-02-29,x\n"),
            "orders.csv:2: bad time \"2023-02-29\": expected a number or an "
            "ISO-8601 date");
  EXPECT_EQ(errorOf("customer,time,item\na,\"\",x\n"),
            "orders.csv:2: bad time \"\": expected a number or an ISO-8601 "
            "date");
}

TEST(CsvReaderTest, NumbersAndDatesDoNotMix) {
  EXPECT_EQ(errorOf("customer,time,item\na,3,x\na,2024-01-01,y\n"),
            "orders.csv:3: time \"2024-01-01\" is a date but line 2 has a "
            "number");
  EXPECT_EQ(errorOf("customer,time,item\n\na,2024-01-01,x\na,3,y\n"),
            "orders.csv:4: time \"3\" is a number but line 3 has a date");
}

TEST(CsvReaderTest, HeaderProblems) {
  EXPECT_EQ(errorOf(""), "orders.csv: no header line");
  EXPECT_EQ(errorOf("\n\n"), "orders.csv: no header line");
  EXPECT_EQ(errorOf("\ncustomer,date,item\n"),
            "orders.csv:2: no column \"time\" in the header (columns: "
            "\"customer\", \"date\", \"item\")");
  EXPECT_EQ(errorOf("customer,time,item,item\n"),
            "orders.csv:1: column \"item\" appears twice in the header");
  EXPECT_EQ(errorOf("customer,time,item\n"),
            "orders.csv: no data rows after the header");
}

TEST(CsvReaderTest, TheThreeColumnsMustDiffer) {
  CsvOptions options;
  options.timeColumn = "item";
  EXPECT_EQ(errorOf("customer,time,item\n", options),
            "orders.csv: the customer, time and item columns must be three "
            "different columns, not \"customer\", \"item\" and \"item\"");
}

TEST(CsvReaderTest, MemoryLimitRefusesALargeDatabase) {
  CsvOptions options;
  options.memoryLimit = 64;
  std::string text = "customer,time,item\n";
  for (int i = 0; i < 100; ++i) text += "c,1," + std::to_string(i) + "\n";
  try {
    read(text, options);
    FAIL() << "no error";
  } catch (const mining::MiningError& error) {
    std::string message = error.what();
    EXPECT_EQ(
        message.rfind("the database does not fit in the memory budget", 0), 0u)
        << message;
  }
}

TEST(CsvReaderTest, MissingFileNamesThePath) {
  try {
    readCsvFile("/nonexistent/orders.csv", CsvOptions());
    FAIL() << "no error";
  } catch (const InputError& error) {
    EXPECT_STREQ(error.what(),
                 "/nonexistent/orders.csv: cannot open: No such file or "
                 "directory");
  }
}

TEST(CsvReaderTest, ReadsAFile) {
  std::string path = ::testing::TempDir() + std::to_string(getpid()) +
                     "_csvreader_test_orders.csv";
  {
    std::ofstream out(path);
    out << "customer,time,item\nc,1,a\n";
  }
  LabelledDatabase log = readCsvFile(path, CsvOptions());
  EXPECT_EQ(test::describeLog(log), "c: (a)@1\n");
  std::remove(path.c_str());
}

}  // namespace
}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
