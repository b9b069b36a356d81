// SeqConsequentDescriptor is one predicted item handed to the host with the
// prediction's confidence, support and cause; greaterConfidence is the order
// in which predictions are sorted. A plain, trivially copyable value.
//
// The constructor takes support before confidence, unlike the member order;
// hosts call it that way.
//
// display writes to std::cout: the support with whatever precision the stream
// has, then it sets the precision to 10 (left so) for confidence and cause.
// On a fresh stream the first support printed thus shows 6 significant
// digits and every later number 10; hosts' listings depend on it.
//
// Not safe for concurrent use.
#ifndef SEQLATTICE_RULES_SEQCONSEQUENTDESCRIPT_H_
#define SEQLATTICE_RULES_SEQCONSEQUENTDESCRIPT_H_

namespace SEQUENCE_NAMESPACE_800 {

class SeqConsequentDescriptor {
 public:
  SeqConsequentDescriptor(int item, double support, double confidence,
                          double cause)
      : item_(item),
        confidence_(confidence),
        support_(support),
        cause_(cause) {}

  int GetItem() const { return item_; }
  void SetItem(int item) { item_ = item; }
  double GetConfidence() const { return confidence_; }
  void SetConfidence(double confidence) { confidence_ = confidence; }
  double GetSupport() const { return support_; }
  void SetSupport(double support) { support_ = support; }
  double GetCause() const { return cause_; }
  void SetCause(double cause) { cause_ = cause; }

  // "Item i Support s Confidence c Cause k" and a newline on std::cout.
  void display() const;

 private:
  int item_;
  double confidence_;
  double support_;
  double cause_;
};

// True when a comes before b: higher confidence first and, among exactly
// equal confidences, the larger item first. Support and cause play no part.
// A NaN confidence is neither before nor after anything, which is not a
// strict weak order: predictions with NaN confidence must not be sorted.
bool greaterConfidence(const SeqConsequentDescriptor& a,
                       const SeqConsequentDescriptor& b);

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RULES_SEQCONSEQUENTDESCRIPT_H_
