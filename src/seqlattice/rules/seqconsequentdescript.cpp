#include "seqlattice/rules/seqconsequentdescript.h"

#include <iostream>

namespace SEQUENCE_NAMESPACE_800 {

void SeqConsequentDescriptor::display() const {
  std::cout << "Item " << item_ << " Support " << support_;
  // Set only now, after the support: see the class comment.
  std::cout.precision(10);
  std::cout << " Confidence " << confidence_ << " Cause " << cause_ << "\n";
}

bool greaterConfidence(const SeqConsequentDescriptor& a,
                       const SeqConsequentDescriptor& b) {
  if (a.GetConfidence() > b.GetConfidence()) return true;
  // Exact comparison by design; unequal includes either being NaN.
  if (a.GetConfidence() != b.GetConfidence()) return false;
  return b.GetItem() < a.GetItem();
}

}  // namespace SEQUENCE_NAMESPACE_800
