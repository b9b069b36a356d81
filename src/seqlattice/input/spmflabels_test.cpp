// SPMF files converted from text: item labels from "@ITEM" lines, and a
// UTF-8 byte order mark before the first line.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "seqlattice/input/inputerror.h"
#include "seqlattice/input/spmfreader.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

std::string errorOf(const std::string& text) {
  std::istringstream in(text);
  mining::SequenceDatabase db;
  input::ItemLabels labels;
  try {
    input::readSpmf(in, "shop.txt", db, &labels);
  } catch (const input::InputError& error) {
    return error.what();
  }
  return "no error";
}

TEST(SpmfLabelsTest, ItemLinesLabelTheItems) {
  std::istringstream in(
      "\xEF\xBB\xBF@CONVERTED_FROM_TEXT\n"
      "@ITEM=1=whole milk\r\n"
      "@ITEM=2=rolls=buns\n"
      "1 -1 2 3 -1 -2\n");
  mining::SequenceDatabase db;
  input::ItemLabels labels;
  input::readSpmf(in, "shop.txt", db, &labels);
  EXPECT_EQ(db.customerCount(), 1u);
  EXPECT_EQ(db.transactionCount(), 2u);
  EXPECT_EQ(labels.labelOf(1), "whole milk");
  EXPECT_EQ(labels.labelOf(2), "rolls=buns");
  EXPECT_EQ(labels.labelOf(3), "3");
  EXPECT_EQ(labels.codeOf("whole milk"), 1);
}

TEST(SpmfLabelsTest, ByteOrderMarkBeforeASequence) {
  std::istringstream in(
      "\xEF\xBB\xBF"
      "5 -1 -2\n");
  mining::SequenceDatabase db;
  input::readSpmf(in, "shop.txt", db);
  ASSERT_EQ(db.transactionCount(), 1u);
  EXPECT_EQ(*db.itemsBegin(0), 5);
}

TEST(SpmfLabelsTest, BadItemLinesNameTheLine) {
  EXPECT_EQ(errorOf("@ITEM=x=milk\n"),
            "shop.txt:1: expected @ITEM=code=label with a non-negative code");
  EXPECT_EQ(errorOf("@ITEM=-1=milk\n"),
            "shop.txt:1: expected @ITEM=code=label with a non-negative code");
  EXPECT_EQ(errorOf("@ITEM=4\n"),
            "shop.txt:1: expected @ITEM=code=label with a non-negative code");
  EXPECT_EQ(errorOf("@ITEM=4=12\n"),
            "shop.txt:1: the label of item 4 must be a non-numeric text");
  EXPECT_EQ(errorOf("@ITEM=4=\n"),
            "shop.txt:1: the label of item 4 must be a non-numeric text");
  EXPECT_EQ(errorOf("@ITEM=4=milk\n@ITEM=4=tea\n"),
            "shop.txt:2: item 4 is labelled twice");
  EXPECT_EQ(errorOf("@ITEM=4=milk\n@ITEM=5=milk\n"),
            "shop.txt:2: label \"milk\" names two items");
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
