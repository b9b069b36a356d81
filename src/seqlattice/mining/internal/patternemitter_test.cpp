#include "seqlattice/mining/internal/patternemitter.h"

#include <gtest/gtest.h>

#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {
namespace {

struct Received {
  std::vector<std::vector<int>> sets;
  long count;
  long firstCustomer;
};

class RecordingSink : public PatternSink {
 public:
  void addPattern(int** sets, int nSets, long count,
                  long firstCustomer) override {
    Received r{{}, count, firstCustomer};
    for (int k = 0; k < nSets; ++k) {
      r.sets.emplace_back(sets[k] + 1, sets[k] + 1 + sets[k][0]);
    }
    received.push_back(r);
  }
  std::vector<Received> received;
};

TEST(PatternEmitterTest, PassesEachRecordToTheSinkInOrder) {
  RecordingSink sink;
  MiningSummary summary;
  summary.patternsPerSize.assign(1, 0);
  PatternEmitter emitter(sink, summary);
  // <(1 2), 3> in 5 customers from customer 0, then <4> in 2 from 3.
  std::vector<int> buffer = {5, 0, 2, 2, 1, 2, 1, 3, 2, 3, 1, 1, 4};
  emitter.emit(buffer);
  ASSERT_EQ(sink.received.size(), 2u);
  EXPECT_EQ(sink.received[0].sets,
            (std::vector<std::vector<int>>{{1, 2}, {3}}));
  EXPECT_EQ(sink.received[0].count, 5);
  EXPECT_EQ(sink.received[0].firstCustomer, 0);
  EXPECT_EQ(sink.received[1].sets, (std::vector<std::vector<int>>{{4}}));
  EXPECT_EQ(sink.received[1].count, 2);
  EXPECT_EQ(sink.received[1].firstCustomer, 3);
}

TEST(PatternEmitterTest, CountsPatternsBySize) {
  RecordingSink sink;
  MiningSummary summary;
  summary.patternsPerSize.assign(1, 0);
  PatternEmitter emitter(sink, summary);
  std::vector<int> first = {3, 0, 1, 1, 7};
  std::vector<int> second = {2, 1, 2, 1, 7, 2, 7, 8, 2, 1, 1, 1, 8};
  emitter.emit(first);
  emitter.emit(second);
  EXPECT_EQ(summary.patterns, 3);
  EXPECT_EQ(summary.longestPattern, 3);
  EXPECT_EQ(summary.patternsPerSize, (std::vector<long>{0, 2, 0, 1}));
}

TEST(PatternEmitterTest, AnEmptyBufferCallsNothing) {
  RecordingSink sink;
  MiningSummary summary;
  PatternEmitter emitter(sink, summary);
  std::vector<int> buffer;
  emitter.emit(buffer);
  EXPECT_TRUE(sink.received.empty());
  EXPECT_EQ(summary.patterns, 0);
}

}  // namespace
}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
