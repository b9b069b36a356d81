// Checks of prediction results shared by the future-item and current-item
// tests: each expected descriptor gives item, confidence, support and cause,
// compared to 1e-12.
#ifndef SEQLATTICE_RULES_PREDICTION_TEST_UTIL_H_
#define SEQLATTICE_RULES_PREDICTION_TEST_UTIL_H_

#include <vector>

#include "gtest/gtest.h"
#include "seqlattice/rules/seqconsequentdescript.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace test {

struct ExpectedPrediction {
  int item;
  double confidence;
  double support;
  double cause;
};

inline void expectPredictions(const std::vector<SeqConsequentDescriptor>& got,
                              const std::vector<ExpectedPrediction>& expected) {
  ASSERT_EQ(got.size(), expected.size());
  for (size_t i = 0; i < got.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "prediction " << i);
    EXPECT_EQ(got[i].GetItem(), expected[i].item);
    EXPECT_NEAR(got[i].GetConfidence(), expected[i].confidence, 1e-12);
    EXPECT_NEAR(got[i].GetSupport(), expected[i].support, 1e-12);
    EXPECT_NEAR(got[i].GetCause(), expected[i].cause, 1e-12);
  }
}

}  // namespace test
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RULES_PREDICTION_TEST_UTIL_H_
