#include "seqlattice/store/sequencedescriptor.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <string>
#include <utility>

#include "seqlattice/sequence/sequence_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

typedef SequenceCounter::AdjacencySet AdjacencySet;

TEST(SequenceCounterTest, ConstructorTakesOrdinalBeforeCount) {
  StatsBucket* bucket = new StatsBucket();
  SequenceCounter counter(7, 3, bucket);
  EXPECT_EQ(counter.getOrdinalOfEntry(), 7);
  EXPECT_EQ(counter.getCount(), 3);
  EXPECT_EQ(counter.getMaxMissed(), 0);
  EXPECT_EQ(counter.getStatsBucket(), bucket);
  EXPECT_EQ(counter.getAdjacentItems(), nullptr);
  EXPECT_EQ(counter.getNAdjacent(), 0);
}

TEST(SequenceCounterTest, CarmaDescriptorTakesOrdinalMissedCount) {
  CarmaSequenceDescriptor descriptor(11, 4, 25);
  EXPECT_EQ(descriptor.getOrdinalOfEntry(), 11);
  EXPECT_EQ(descriptor.getMaxMissed(), 4);
  EXPECT_EQ(descriptor.getCount(), 25);
  EXPECT_EQ(descriptor.getStatsBucket(), nullptr);
  EXPECT_EQ(descriptor.getAdjacentItems(), nullptr);
}

TEST(SequenceCounterTest, CarmaDescriptorIsDeletedThroughTheBase) {
  SequenceCounter* counter = new CarmaSequenceDescriptor(1, 2, 3);
  counter->setStatsBucket(new StatsBucket());
  counter->addAdjacentItem(4, 1);
  EXPECT_EQ(counter->getNAdjacent(), 1);
  delete counter;  // LeakSanitizer checks the bucket and set went with it
}

TEST(SequenceCounterTest, SettersStoreValues) {
  SequenceCounter counter(0, 0, nullptr);
  counter.setCount(-5);
  counter.setOrdinalOfEntry(12);
  counter.setMaxMissed(8);
  EXPECT_EQ(counter.getCount(), -5);
  EXPECT_EQ(counter.getOrdinalOfEntry(), 12);
  EXPECT_EQ(counter.getMaxMissed(), 8);
}

// Counts its own destructions, so that a release shows without a leak
// checker.
struct CountedBucket : StatsBucket {
  explicit CountedBucket(int* destroyed) : destroyed(destroyed) {}
  ~CountedBucket() override { ++*destroyed; }
  int* destroyed;
};

TEST(SequenceCounterTest, ReplacedBucketIsDestroyedExactlyOnce) {
  int firstDestroyed = 0;
  int secondDestroyed = 0;
  int thirdDestroyed = 0;
  {
    SequenceCounter counter(0, 0, new CountedBucket(&firstDestroyed));
    StatsBucket* second = new CountedBucket(&secondDestroyed);
    counter.setStatsBucket(second);
    EXPECT_EQ(firstDestroyed, 1);
    EXPECT_EQ(secondDestroyed, 0);
    counter.setStatsBucket(second);  // the held bucket again: kept
    EXPECT_EQ(secondDestroyed, 0);
    EXPECT_EQ(counter.getStatsBucket(), second);
    counter.setStatsBucket(nullptr);
    EXPECT_EQ(secondDestroyed, 1);
    EXPECT_EQ(counter.getStatsBucket(), nullptr);
    counter.setStatsBucket(new CountedBucket(&thirdDestroyed));
  }
  EXPECT_EQ(firstDestroyed, 1);
  EXPECT_EQ(secondDestroyed, 1);
  EXPECT_EQ(thirdDestroyed, 1);  // the counter's destructor took it
}

TEST(SequenceCounterTest, SameAdjacentPairTwiceIsStoredOnce) {
  SequenceCounter counter(0, 0, nullptr);
  counter.addAdjacentItem(5, 1);
  counter.addAdjacentItem(5, 1);
  EXPECT_EQ(counter.getNAdjacent(), 1);
  // Pairs are counted, not items: the same item at two positions is two.
  counter.addAdjacentItem(5, 2);
  counter.addAdjacentItem(3, 1);
  EXPECT_EQ(counter.getNAdjacent(), 3);
  const AdjacencySet expected = {{3, 1}, {5, 1}, {5, 2}};
  EXPECT_EQ(*counter.getAdjacentItems(), expected);
}

TEST(SequenceCounterTest, NAdjacentIsZeroWithoutSetAndWithEmptiedSet) {
  SequenceCounter counter(0, 0, nullptr);
  EXPECT_EQ(counter.getNAdjacent(), 0);
  counter.clearAdjacentItems();  // no set: nothing happens
  EXPECT_EQ(counter.getAdjacentItems(), nullptr);

  counter.addAdjacentItem(1, 3);
  counter.addAdjacentItem(2, 0);
  AdjacencySet* set = counter.getAdjacentItems();
  ASSERT_NE(set, nullptr);
  counter.clearAdjacentItems();
  EXPECT_EQ(counter.getAdjacentItems(), set);  // kept, only emptied
  EXPECT_TRUE(set->empty());
  EXPECT_EQ(counter.getNAdjacent(), 0);
}

TEST(SequenceCounterTest, SetAdjacentItemsAdoptsAndReleasesTheOldSet) {
  SequenceCounter counter(0, 0, nullptr);
  counter.addAdjacentItem(1, 1);
  AdjacencySet* fresh = new AdjacencySet();
  counter.setAdjacentItems(fresh);
  EXPECT_EQ(counter.getAdjacentItems(), fresh);
  EXPECT_EQ(counter.getNAdjacent(), 0);
  counter.addAdjacentItem(9, 4);
  counter.setAdjacentItems(fresh);  // the held set again: kept
  EXPECT_EQ(counter.getNAdjacent(), 1);
  counter.setAdjacentItems(nullptr);
  EXPECT_EQ(counter.getAdjacentItems(), nullptr);
  EXPECT_EQ(counter.getNAdjacent(), 0);
}

std::string displayed(const SequenceCounter& counter, bool showAdjacent,
                      std::ostream* used = nullptr) {
  std::ostringstream os;
  counter.display(os, showAdjacent);
  if (used != nullptr) used->copyfmt(os);
  return os.str();
}

TEST(SequenceCounterDisplayTest, PlainCounterPrintsOneLine) {
  SequenceCounter counter(4, 17, nullptr);
  counter.setMaxMissed(2);
  std::ostringstream format;
  EXPECT_EQ(displayed(counter, true, &format),
            " count 17 ordinalOfEntry 4 max missed 2\n");
  // Without bucket or set the number format is untouched.
  EXPECT_EQ(format.flags() & std::ios::floatfield, std::ios::fmtflags(0));
  EXPECT_EQ(format.precision(), 6);
}

TEST(SequenceCounterDisplayTest, BucketWithGapsPrintsFixedTwoDecimals) {
  StatsBucket* bucket = new StatsBucket();
  bucket->InitialGap(5);
  bucket->UpdateGap(2);
  bucket->UpdateGap(9);
  SequenceCounter counter(1, 3, bucket);
  std::ostringstream format;
  EXPECT_EQ(displayed(counter, false, &format),
            " count 3 ordinalOfEntry 1 max missed 0\n"
            " Occurrences 3.00\n"
            " mean 5.33\n"
            " min 2.00\n"
            " max 9.00\n");
  EXPECT_EQ(format.flags() & std::ios::floatfield, std::ios::fixed);
  EXPECT_EQ(format.precision(), 2);
}

TEST(SequenceCounterDisplayTest, ZeroGapSumPrintsOnlyOccurrences) {
  StatsBucket* bucket = new StatsBucket();
  bucket->InitialGap(0.0);
  SequenceCounter counter(0, 1, bucket);
  EXPECT_EQ(displayed(counter, true),
            " count 1 ordinalOfEntry 0 max missed 0\n"
            " Occurrences 1.00\n");
}

TEST(SequenceCounterDisplayTest, AdjacencySetPrintedOnlyWhenAsked) {
  SequenceCounter counter(2, 6, nullptr);
  counter.addAdjacentItem(12, 3);
  counter.addAdjacentItem(7, 0);
  counter.addAdjacentItem(7, 1);
  EXPECT_EQ(displayed(counter, false),
            " count 6 ordinalOfEntry 2 max missed 0\n");
  std::ostringstream format;
  EXPECT_EQ(displayed(counter, true, &format),
            " count 6 ordinalOfEntry 2 max missed 0\n"
            "Adjacent list {(item 7 position 0)\n"
            "(item 7 position 1)\n"
            "(item 12 position 3)\n"
            "}End Adjacent list \n");
  EXPECT_EQ(format.flags() & std::ios::floatfield, std::ios::fixed);
  EXPECT_EQ(format.precision(), 2);
}

TEST(SequenceCounterDisplayTest, EmptyAdjacencySetStillPrintsFrame) {
  SequenceCounter counter(0, 0, nullptr);
  counter.setAdjacentItems(new AdjacencySet());
  EXPECT_EQ(displayed(counter, true),
            " count 0 ordinalOfEntry 0 max missed 0\n"
            "Adjacent list {}End Adjacent list \n");
}

TEST(SequenceCounterDisplayTest, BucketAndAdjacencyTogether) {
  StatsBucket* bucket = new StatsBucket();
  bucket->InitialGap(1.5);
  SequenceCounter counter(9, 2, bucket);
  counter.setMaxMissed(1);
  counter.addAdjacentItem(3, 2);
  EXPECT_EQ(displayed(counter, true),
            " count 2 ordinalOfEntry 9 max missed 1\n"
            " Occurrences 1.00\n"
            " mean 1.50\n"
            " min 1.50\n"
            " max 1.50\n"
            "Adjacent list {(item 3 position 2)\n"
            "}End Adjacent list \n");
}

// Shows the counter on std::cout, starting from the default number format,
// then prints 0.5 there, so that the result shows the format the display
// left behind (which stays on std::cout for the caller to check).
std::string displayedOnCout(const SequenceCounter& counter, bool showAdjacent) {
  std::cout.precision(6);
  std::cout.unsetf(std::ios::floatfield);
  testing::internal::CaptureStdout();
  counter.display(std::cout, showAdjacent);
  std::cout << 0.5;
  return testing::internal::GetCapturedStdout();
}

bool coutIsFixedWithPrecisionTwo() {
  return std::cout.precision() == 2 &&
         (std::cout.flags() & std::ios::floatfield) == std::ios::fixed;
}

// On std::cout the same text, character for character, and the format that
// the bucket and the adjacency list set stays on std::cout.
TEST(SequenceCounterDisplayTest, OnCoutWithBucketAndAdjacency) {
  test::CoutFormatGuard guard;
  StatsBucket* bucket = new StatsBucket();
  bucket->InitialGap(4.0);
  bucket->UpdateGap(0.5);
  SequenceCounter counter(3, 10, bucket);
  counter.setMaxMissed(7);
  counter.addAdjacentItem(8, 5);
  counter.addAdjacentItem(2, 4);
  // mean (4 + 0.5) / 2 = 2.25
  EXPECT_EQ(displayedOnCout(counter, true),
            " count 10 ordinalOfEntry 3 max missed 7\n"
            " Occurrences 2.00\n"
            " mean 2.25\n"
            " min 0.50\n"
            " max 4.00\n"
            "Adjacent list {(item 2 position 4)\n"
            "(item 8 position 5)\n"
            "}End Adjacent list \n"
            "0.50");
  EXPECT_TRUE(coutIsFixedWithPrecisionTwo());
}

TEST(SequenceCounterDisplayTest, OnCoutWithoutBucketOrAdjacency) {
  test::CoutFormatGuard guard;
  const SequenceCounter counter(0, 42, nullptr);
  EXPECT_EQ(displayedOnCout(counter, true),
            " count 42 ordinalOfEntry 0 max missed 0\n0.5");
  EXPECT_EQ(std::cout.precision(), 6);
  EXPECT_EQ(std::cout.flags() & std::ios::floatfield, std::ios::fmtflags{});
}

// Only the adjacency list is there: it switches the format when shown, and
// only then.
TEST(SequenceCounterDisplayTest, OnCoutAdjacencyWithoutBucket) {
  test::CoutFormatGuard guard;
  SequenceCounter counter(1, 1, nullptr);
  counter.addAdjacentItem(-3, 1);
  EXPECT_EQ(displayedOnCout(counter, false),
            " count 1 ordinalOfEntry 1 max missed 0\n0.5");
  EXPECT_FALSE(coutIsFixedWithPrecisionTwo());
  EXPECT_EQ(displayedOnCout(counter, true),
            " count 1 ordinalOfEntry 1 max missed 0\n"
            "Adjacent list {(item -3 position 1)\n"
            "}End Adjacent list \n"
            "0.50");
  EXPECT_TRUE(coutIsFixedWithPrecisionTwo());
}

// The display goes to the stream it is given and leaves later numbers on
// that stream in the format it set.
TEST(SequenceCounterDisplayTest, FormatStaysOnTheStreamAfterwards) {
  StatsBucket* bucket = new StatsBucket();
  bucket->InitialGap(2.0);
  SequenceCounter counter(0, 1, bucket);
  std::ostringstream os;
  counter.display(os, false);
  os << 1.0 / 3.0;
  EXPECT_EQ(os.str(),
            " count 1 ordinalOfEntry 0 max missed 0\n"
            " Occurrences 1.00\n"
            " mean 2.00\n"
            " min 2.00\n"
            " max 2.00\n"
            "0.33");
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
