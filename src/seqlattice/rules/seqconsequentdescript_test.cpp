#include "seqlattice/rules/seqconsequentdescript.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <limits>
#include <type_traits>
#include <vector>

#include "seqlattice/rules/coutstate_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

static_assert(std::is_trivially_copyable_v<SeqConsequentDescriptor>);

std::string DisplayText(const SeqConsequentDescriptor& descriptor) {
  testing::internal::CaptureStdout();
  descriptor.display();
  return testing::internal::GetCapturedStdout();
}

using SeqConsequentDescriptorTest = test::FreshCoutTest;

TEST_F(SeqConsequentDescriptorTest, ConstructorTakesSupportBeforeConfidence) {
  const SeqConsequentDescriptor descriptor(7, 0.2, 0.9, 0.5);
  EXPECT_EQ(descriptor.GetItem(), 7);
  EXPECT_EQ(descriptor.GetSupport(), 0.2);
  EXPECT_EQ(descriptor.GetConfidence(), 0.9);
  EXPECT_EQ(descriptor.GetCause(), 0.5);
}

TEST_F(SeqConsequentDescriptorTest, Setters) {
  SeqConsequentDescriptor descriptor(7, 0.2, 0.9, 0.5);
  descriptor.SetItem(-4);
  descriptor.SetSupport(0.01);
  descriptor.SetConfidence(0.02);
  descriptor.SetCause(0.03);
  EXPECT_EQ(descriptor.GetItem(), -4);
  EXPECT_EQ(descriptor.GetSupport(), 0.01);
  EXPECT_EQ(descriptor.GetConfidence(), 0.02);
  EXPECT_EQ(descriptor.GetCause(), 0.03);
}

TEST_F(SeqConsequentDescriptorTest, FirstSupportShowsSixDigitsLaterNumbersTen) {
  const SeqConsequentDescriptor descriptor(12, 1.0 / 3, 2.0 / 3, 1.0 / 7);
  EXPECT_EQ(DisplayText(descriptor),
            "Item 12 Support 0.333333 Confidence 0.6666666667 Cause "
            "0.1428571429\n");
  EXPECT_EQ(DisplayText(descriptor),
            "Item 12 Support 0.3333333333 Confidence 0.6666666667 Cause "
            "0.1428571429\n");
}

TEST_F(SeqConsequentDescriptorTest, DisplayLeavesPrecisionTen) {
  DisplayText(SeqConsequentDescriptor(1, 0.5, 0.5, 0.5));
  EXPECT_EQ(std::cout.precision(), 10);
}

TEST_F(SeqConsequentDescriptorTest, SupportUsesThePrecisionTheStreamHas) {
  std::cout.precision(3);
  EXPECT_EQ(DisplayText(SeqConsequentDescriptor(-2, 0.123456, 0.5, 1)),
            "Item -2 Support 0.123 Confidence 0.5 Cause 1\n");
}

TEST_F(SeqConsequentDescriptorTest, HigherConfidenceComesFirst) {
  const SeqConsequentDescriptor high(1, 0.1, 0.9, 0.1);
  const SeqConsequentDescriptor low(9, 0.9, 0.8, 0.9);
  EXPECT_TRUE(greaterConfidence(high, low));
  EXPECT_FALSE(greaterConfidence(low, high));
}

TEST_F(SeqConsequentDescriptorTest, EqualConfidencePutsTheLargerItemFirst) {
  const SeqConsequentDescriptor three(3, 0.1, 0.5, 0.7);
  const SeqConsequentDescriptor five(5, 0.2, 0.5, 0.1);
  EXPECT_TRUE(greaterConfidence(five, three));
  EXPECT_FALSE(greaterConfidence(three, five));
  const SeqConsequentDescriptor otherFive(5, 0.9, 0.5, 0.9);
  EXPECT_FALSE(greaterConfidence(five, otherFive));
  EXPECT_FALSE(greaterConfidence(otherFive, five));
  // -0 and 0 are equal confidences.
  EXPECT_TRUE(greaterConfidence(SeqConsequentDescriptor(2, 0, -0.0, 0),
                                SeqConsequentDescriptor(1, 0, 0.0, 0)));
}

TEST_F(SeqConsequentDescriptorTest, ConfidencesAreComparedExactly) {
  const SeqConsequentDescriptor sum(1, 0, 0.1 + 0.2, 0);  // 0.30000000000000004
  const SeqConsequentDescriptor plain(9, 0, 0.3, 0);
  EXPECT_TRUE(greaterConfidence(sum, plain));
  EXPECT_FALSE(greaterConfidence(plain, sum));
}

TEST_F(SeqConsequentDescriptorTest, NaNConfidenceComesBeforeNothing) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const SeqConsequentDescriptor undefined(9, 0, nan, 0);
  const SeqConsequentDescriptor defined(1, 0, 0.5, 0);
  EXPECT_FALSE(greaterConfidence(undefined, defined));
  EXPECT_FALSE(greaterConfidence(defined, undefined));
  EXPECT_FALSE(greaterConfidence(undefined, undefined));
}

TEST_F(SeqConsequentDescriptorTest, SortingOrdersByConfidenceThenItem) {
  std::vector<SeqConsequentDescriptor> predictions = {
      {3, 0.1, 0.5, 0},  {8, 0.2, 0.25, 0}, {5, 0.3, 0.5, 0},
      {1, 0.4, 0.75, 0}, {4, 0.5, 0.25, 0},
  };
  std::sort(predictions.begin(), predictions.end(), greaterConfidence);
  std::vector<int> items;
  for (const auto& p : predictions) items.push_back(p.GetItem());
  EXPECT_EQ(items, (std::vector<int>{1, 5, 3, 8, 4}));
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
