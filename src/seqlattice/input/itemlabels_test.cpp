#include "seqlattice/input/itemlabels.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace input {
namespace {

using Pairs = std::vector<std::pair<int, std::string>>;

TEST(ItemLabelsTest, NumericLabelsKeepTheirValue) {
  ItemLabels labels = ItemLabels::assign({"42", "-7", "0", "42"});
  EXPECT_EQ(labels.codeOf("42"), 42);
  EXPECT_EQ(labels.codeOf("-7"), -7);
  EXPECT_EQ(labels.codeOf("0"), 0);
  EXPECT_EQ(labels.labelOf(-7), "-7");
  EXPECT_TRUE(labels.stringLabels().empty());
}

TEST(ItemLabelsTest, StringLabelsTakeFreeCodesInByteOrder) {
  ItemLabels labels = ItemLabels::assign({"milk", "1", "bread", "3", "Eggs"});
  // Byte order puts "Eggs" before "bread" before "milk"; 1 and 3 are taken.
  EXPECT_EQ(labels.stringLabels(),
            (Pairs{{0, "Eggs"}, {2, "bread"}, {4, "milk"}}));
  EXPECT_EQ(labels.codeOf("bread"), 2);
  EXPECT_EQ(labels.labelOf(4), "milk");
  EXPECT_EQ(labels.labelOf(3), "3");
}

TEST(ItemLabelsTest, CodesDoNotDependOnLabelOrder) {
  ItemLabels a = ItemLabels::assign({"tea", "jam", "5", "bun"});
  ItemLabels b = ItemLabels::assign({"bun", "5", "tea", "jam", "tea"});
  EXPECT_EQ(a.stringLabels(), b.stringLabels());
}

TEST(ItemLabelsTest, NonCanonicalNumbersAreStringLabels) {
  ItemLabels labels =
      ItemLabels::assign({"007", "+5", "-0", "1.0", " 3", "2147483648"});
  EXPECT_EQ(labels.stringLabels(), (Pairs{{0, " 3"},
                                          {1, "+5"},
                                          {2, "-0"},
                                          {3, "007"},
                                          {4, "1.0"},
                                          {5, "2147483648"}}));
}

TEST(ItemLabelsTest, ParseNumericAcceptsTheInt32Range) {
  int value = 0;
  EXPECT_TRUE(ItemLabels::parseNumeric("2147483647", &value));
  EXPECT_EQ(value, 2147483647);
  EXPECT_TRUE(ItemLabels::parseNumeric("-2147483648", &value));
  EXPECT_EQ(value, -2147483647 - 1);
  EXPECT_FALSE(ItemLabels::parseNumeric("2147483648", &value));
  EXPECT_FALSE(ItemLabels::parseNumeric("-2147483649", &value));
  EXPECT_FALSE(ItemLabels::parseNumeric("99999999999999999999", &value));
  EXPECT_FALSE(ItemLabels::parseNumeric("", &value));
  EXPECT_FALSE(ItemLabels::parseNumeric("-", &value));
  EXPECT_FALSE(ItemLabels::parseNumeric("12a", &value));
}

TEST(ItemLabelsTest, UnknownStringLabelHasNoCode) {
  ItemLabels labels = ItemLabels::assign({"bread"});
  EXPECT_FALSE(labels.codeOf("butter").has_value());
}

TEST(ItemLabelsTest, NumberShadowedByStringCodeIsUnknown) {
  ItemLabels labels = ItemLabels::assign({"bread", "milk"});
  // "0" would mean the code of "bread": refuse rather than confuse them.
  EXPECT_FALSE(labels.codeOf("0").has_value());
  EXPECT_EQ(labels.codeOf("2"), 2);
  EXPECT_EQ(labels.labelOf(2), "2");
}

TEST(ItemLabelsTest, RestoresFromStringLabels) {
  ItemLabels original = ItemLabels::assign({"b", "a", "1"});
  ItemLabels restored = ItemLabels::fromStringLabels(original.stringLabels());
  EXPECT_EQ(restored.stringLabels(), (Pairs{{0, "a"}, {2, "b"}}));
  EXPECT_EQ(restored.codeOf("b"), 2);
  EXPECT_EQ(restored.codeOf("1"), 1);
}

TEST(ItemLabelsTest, RejectsInconsistentStringLabels) {
  EXPECT_THROW(ItemLabels::fromStringLabels({{0, "a"}, {0, "b"}}),
               std::invalid_argument);
  EXPECT_THROW(ItemLabels::fromStringLabels({{0, "a"}, {1, "a"}}),
               std::invalid_argument);
  EXPECT_THROW(ItemLabels::fromStringLabels({{-1, "a"}}),
               std::invalid_argument);
  EXPECT_THROW(ItemLabels::fromStringLabels({{4, "4"}}), std::invalid_argument);
}

}  // namespace
}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800
