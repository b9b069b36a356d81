// SeqCarmaCmp orders pointers to patterns by the patterns they point to
// (NTSequence::operator<), not by address: an ordered set of NTSequence*
// compared by it holds each pattern once, whichever object carries it. Such
// a set does not own the objects; they must outlive it.
#ifndef SEQLATTICE_RULES_SEQCARMACMP_H_
#define SEQLATTICE_RULES_SEQCARMACMP_H_

#include "seqlattice/pattern/ntsequence.h"

namespace SEQUENCE_NAMESPACE_800 {

struct SeqCarmaCmp {
  bool operator()(const NTSequence* a, const NTSequence* b) const {
    return *a < *b;
  }
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_RULES_SEQCARMACMP_H_
