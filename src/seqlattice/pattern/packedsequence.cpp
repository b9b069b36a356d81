#include "seqlattice/pattern/packedsequence.h"

#include <algorithm>
#include <iomanip>
#include <memory>
#include <ostream>
#include <stdexcept>

#include "seqlattice/pattern/internal/patterncode.h"
#include "seqlattice/sequence/sequence.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Weights of the two items of a two-item pattern in the hash.
constexpr long kFirstOfTwo = 9887;
constexpr long kSecondOfTwo = 9883;

}  // namespace

// The other constructors delegate here, so that the destructor releases what
// they allocated if they throw.
PackedSequence::PackedSequence() = default;

PackedSequence::PackedSequence(int** sets, const double* startTimes,
                               const double* endTimes, int nSets)
    : PackedSequence() {
  reuseAs(sets, startTimes, endTimes, nSets);
}

PackedSequence::PackedSequence(int** sets, const double* times, int nSets)
    : PackedSequence() {
  reuseAs(sets, times, nSets);
}

PackedSequence::PackedSequence(const Sequence* seq) : PackedSequence() {
  reuseAs(seq);
}

PackedSequence::PackedSequence(const PackedSequence& other) : PackedSequence() {
  reuseAs(&other);
}

PackedSequence& PackedSequence::operator=(const PackedSequence& other) {
  if (this != &other) {
    release();
    reuseAs(&other);
  }
  return *this;
}

PackedSequence::~PackedSequence() { release(); }

void PackedSequence::reuseAs(int** sets, const double* startTimes,
                             const double* endTimes, int nSets) {
  reserve(patterncode::CountItems(sets, nSets), nSets);
  const patterncode::Shape shape = patterncode::FromSets(sets, nSets, items_);
  std::copy(startTimes, startTimes + nSets, startTimes_);
  std::copy(endTimes, endTimes + nSets, endTimes_);
  adopt(shape.size, shape.nSets, shape.pattern);
}

void PackedSequence::reuseAs(int** sets, const double* times, int nSets) {
  reuseAs(sets, times, times, nSets);
}

void PackedSequence::reuseAs(const Sequence* seq) {
  const int length = seq->Length();
  reserve(patterncode::CountItems(*seq, length), length);
  const patterncode::Shape shape =
      patterncode::FromSequence(*seq, length, items_, startTimes_);
  std::copy(startTimes_, startTimes_ + length, endTimes_);
  adopt(shape.size, shape.nSets, shape.pattern);
}

void PackedSequence::reuseAs(const PackedSequence* p) {
  if (p == this) return;
  reserve(p->size_, p->nSets_);
  std::copy(p->items_, p->items_ + p->size_, items_);
  std::copy(p->startTimes_, p->startTimes_ + p->nSets_, startTimes_);
  std::copy(p->endTimes_, p->endTimes_ + p->nSets_, endTimes_);
  size_ = p->size_;
  nSets_ = p->nSets_;
  pattern_ = p->pattern_;
  hashCode_ = p->hashCode_;
}

int PackedSequence::getSizeOfSet(int s) const {
  if (nSets_ < 1) return 0;
  return patterncode::SizeOfSet(size_, pattern_, s);
}

int PackedSequence::getItemInSet(int i, int s) const {
  return patterncode::ItemInSet(items_, size_, pattern_, i, s);
}

std::pair<double, double> PackedSequence::getTimeForSet(int s) const {
  return {startTimes_[s], endTimes_[s]};
}

void PackedSequence::setTimeForSet(std::pair<double, double> t, int s) {
  startTimes_[s] = t.first;
  endTimes_[s] = t.second;
}

bool PackedSequence::mergeOk(int mergeMask, double maxSpan) const {
  const auto mask = static_cast<unsigned int>(mergeMask);
  bool inRun = false;
  double t0 = 0.0;
  for (int i = 0; i < nSets_; ++i) {
    const int bit = nSets_ - 2 - i;  // the boundary after set i
    const bool merged = i < nSets_ - 1 && bit < 32 && ((mask >> bit) & 1) != 0;
    if (merged) {
      if (!inRun) {
        t0 = startTimes_[i];
        inRun = true;
      }
    } else if (inRun) {  // set i ends the run
      if (endTimes_[i] - t0 > maxSpan) return false;
      inRun = false;
    }
  }
  return true;
}

int PackedSequence::computeHash() const {
  return patterncode::Hash(
      items_, size_, pattern_,
      patterncode::kFactors + patterncode::kTimedFactorOffset,
      patterncode::kFactorCount - patterncode::kTimedFactorOffset, kFirstOfTwo,
      kSecondOfTwo);
}

bool PackedSequence::operator==(const PackedSequence& other) const {
  return hashCode_ == other.hashCode_ && pattern_ == other.pattern_ &&
         size_ == other.size_ &&
         std::equal(items_, items_ + size_, other.items_);
}

int PackedSequence::removeItem(int k, PackedSequence* src) {
  const patterncode::Removal removal = patterncode::Remove(
      src->items_, src->size_, src->pattern_, k, items_, itemsCapacity_);
  if (removal.shape.nSets > setCapacity_) {
    // The items were overwritten already: leave a consistent empty pattern.
    adopt(0, 0, 0);
    throw std::length_error("PackedSequence::removeItem: buffers too small");
  }
  // Every set takes the times of the source set it comes from; past a set
  // that vanished, that is the next source set. Copying upward is safe when
  // src is this object.
  for (int s = 0; s < removal.shape.nSets; ++s) {
    const int from = removal.result == 1 && s >= removal.removedSet ? s + 1 : s;
    startTimes_[s] = src->startTimes_[from];
    endTimes_[s] = src->endTimes_[from];
  }
  adopt(removal.shape.size, removal.shape.nSets, removal.shape.pattern);
  return removal.result;
}

void PackedSequence::display(std::ostream& os) const {
  patterncode::WriteHeader(os, hashCode_, pattern_);
  patterncode::WriteSets(os, items_, size_, pattern_,
                         [this](std::ostream& out, int s) {
                           out << std::fixed << std::setprecision(0) << "["
                               << startTimes_[s] << "," << endTimes_[s] << "])";
                         });
}

void PackedSequence::reserve(int nItems, int nSets) {
  if (itemsCapacity_ < nItems) {
    int* fresh = new int[nItems];
    delete[] items_;
    items_ = fresh;
    itemsCapacity_ = nItems;
  }
  if (setCapacity_ < nSets) {
    std::unique_ptr<double[]> starts(new double[nSets]);
    std::unique_ptr<double[]> ends(new double[nSets]);
    delete[] startTimes_;
    delete[] endTimes_;
    startTimes_ = starts.release();
    endTimes_ = ends.release();
    setCapacity_ = nSets;
  }
}

void PackedSequence::adopt(int size, int nSets, long pattern) {
  size_ = size;
  nSets_ = nSets;
  pattern_ = pattern;
  hashCode_ = computeHash();
}

void PackedSequence::release() {
  delete[] items_;
  delete[] startTimes_;
  delete[] endTimes_;
  items_ = nullptr;
  startTimes_ = nullptr;
  endTimes_ = nullptr;
  itemsCapacity_ = 0;
  setCapacity_ = 0;
}

}  // namespace SEQUENCE_NAMESPACE_800
