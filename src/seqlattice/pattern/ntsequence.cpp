#include "seqlattice/pattern/ntsequence.h"

#include <algorithm>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <utility>

#include "seqlattice/pattern/internal/patterncode.h"
#include "seqlattice/pattern/packedsequence.h"
#include "seqlattice/sequence/sequence.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Room of the scratch buffer of a default-constructed pattern: one more than
// the 31 items a pattern can hold.
constexpr int kScratchCapacity = 32;

// Weights of the two items of a two-item pattern in the hash.
constexpr long kFirstOfTwo = 9829;
constexpr long kSecondOfTwo = 9817;

}  // namespace

NTSequence::NTSequence()
    : items_(new int[kScratchCapacity]), itemsCapacity_(kScratchCapacity) {}

NTSequence::NTSequence(int* set) : NTSequence(&set, 1) {}

NTSequence::NTSequence(int** sets, int nSets) : NTSequence(NoItems{}) {
  reuseAs(sets, nSets);
}

NTSequence::NTSequence(const NTSequence& other) : NTSequence(NoItems{}) {
  copyFrom(other);
}

NTSequence::NTSequence(const NTSequence& src, int item, int position)
    : NTSequence(NoItems{}) {
  const int k = position / 2;
  const bool newSet = position % 2 != 0;
  if (position < 0 || k > src.nSets_ || (!newSet && k == src.nSets_)) {
    throw std::out_of_range("NTSequence: no item set at the given position");
  }
  replaceItems(src.size_ + 1);
  patterncode::Builder builder(items_);
  bool placed = false;
  bool setStarts = true;
  int set = 0;
  int i = 0;
  for (long mark = patterncode::FirstMark(src.size_); mark > 0;
       mark >>= 1, ++i) {
    const int srcItem = src.items_[i];
    const bool closes = (src.pattern_ & mark) != 0;
    if (set == k && !placed) {
      if (newSet && setStarts) {
        builder.Add(item);
        builder.CloseSet();
        placed = true;
      } else if (!newSet && item < srcItem) {
        builder.Add(item);
        placed = true;
      }
    }
    builder.Add(srcItem);
    if (closes) {
      if (set == k && !placed) {  // nothing greater: the item closes the set
        builder.Add(item);
        placed = true;
      }
      builder.CloseSet();
      ++set;
    }
    setStarts = closes;
  }
  if (!placed) {  // a new last set
    builder.Add(item);
    builder.CloseSet();
  }
  const patterncode::Shape shape = builder.Done();
  adopt(shape.size, shape.nSets, shape.pattern);
}

NTSequence::NTSequence(const Sequence& seq, int dropLast)
    : NTSequence(NoItems{}) {
  if (dropLast < 0 || dropLast > seq.Length()) {
    throw std::out_of_range("NTSequence: dropLast outside the sequence");
  }
  fillFrom(seq, seq.Length() - dropLast);
}

NTSequence::NTSequence(const Sequence* seq) : NTSequence(NoItems{}) {
  reuseAs(seq);
}

NTSequence& NTSequence::operator=(const NTSequence& other) {
  if (this != &other) copyFrom(other);
  return *this;
}

NTSequence::~NTSequence() { delete[] items_; }

void NTSequence::reuseAs(int** sets, int nSets) {
  const int total = patterncode::CountItems(sets, nSets);
  if (total != size_) replaceItems(total);
  const patterncode::Shape shape = patterncode::FromSets(sets, nSets, items_);
  adopt(shape.size, shape.nSets, shape.pattern);
}

void NTSequence::reuseAs(const Sequence* seq) { fillFrom(*seq, seq->Length()); }

void NTSequence::reuseAs(const PackedSequence* p) {
  if (p->size_ != size_) replaceItems(p->size_);
  std::copy(p->items_, p->items_ + p->size_, items_);
  size_ = p->size_;
  nSets_ = p->nSets_;
  pattern_ = p->pattern_;
  hashCode_ = p->hashCode_;  // on purpose: the timed pattern's hash
}

int NTSequence::getSizeOfSet(int s) const {
  if (nSets_ < 1) return 0;
  return patterncode::SizeOfSet(size_, pattern_, s);
}

int NTSequence::getItemInSet(int i, int s) const {
  return patterncode::ItemInSet(items_, size_, pattern_, i, s);
}

void NTSequence::getSetAsArray(int s, int* out) const {
  int first = 0;
  int count = 0;
  if (patterncode::FindSet(size_, pattern_, s, &first, &count)) {
    std::copy(items_ + first, items_ + first + count, out);
  }
}

int NTSequence::getItemIndex(int item) const {
  const int* begin = items_;
  const int* end = begin + size_;
  const int* at = std::find(begin, end, item);
  return at == end ? -1 : static_cast<int>(at - begin);
}

int NTSequence::computeHash() const {
  return patterncode::Hash(items_, size_, pattern_, patterncode::kFactors,
                           patterncode::kFactorCount, kFirstOfTwo,
                           kSecondOfTwo);
}

bool NTSequence::operator==(const NTSequence& other) const {
  return hashCode_ == other.hashCode_ && pattern_ == other.pattern_ &&
         size_ == other.size_ &&
         std::equal(items_, items_ + size_, other.items_);
}

bool NTSequence::operator<(const NTSequence& other) const {
  if (size_ == 0) return other.size_ != 0;
  long mark1 = patterncode::FirstMark(size_);
  long mark2 = patterncode::FirstMark(other.size_);
  for (int i = 0; mark1 > 0 && mark2 > 0; ++i, mark1 >>= 1, mark2 >>= 1) {
    const int a = items_[i];
    const int b = other.items_[i];
    const bool closes1 = (pattern_ & mark1) != 0;
    const bool closes2 = (other.pattern_ & mark2) != 0;
    // At equal items the pattern whose set ends here sorts first.
    if (closes1 && !closes2) return a <= b;
    if (!closes1 && closes2) return a < b;
    if (a != b) return a < b;
    if (closes1 && mark1 == 1 && mark2 > 1) return true;  // proper prefix
  }
  return false;
}

Sequence* NTSequence::createSequence() const {
  std::unique_ptr<Sequence> seq(new Sequence(nSets_));
  TimedItemSet set;
  int s = 0;
  int i = 0;
  for (long mark = patterncode::FirstMark(size_); mark > 0; mark >>= 1, ++i) {
    set.AddItem(items_[i]);
    if ((pattern_ & mark) != 0) {
      set.SetTime(s + 1.0);
      seq->AddTimedItemSet(&set);
      set.Clear();
      ++s;
    }
  }
  return seq.release();
}

void NTSequence::display(std::ostream& os) const {
  patterncode::WriteHeader(os, hashCode_, pattern_);
  patterncode::WriteSets(os, items_, size_, pattern_,
                         [](std::ostream& out, int) { out << ")"; });
}

void NTSequence::addItemAfterLast(int item) {
  NTSequence extended(*this, item, 2 * nSets_ + 1);
  swap(extended);
}

void NTSequence::addItemToSet(int item, int s) {
  NTSequence extended(*this, item, 2 * s);
  swap(extended);
}

int NTSequence::removeItem(int k, NTSequence* src) {
  const patterncode::Removal removal = patterncode::Remove(
      src->items_, src->size_, src->pattern_, k, items_, itemsCapacity_);
  adopt(removal.shape.size, removal.shape.nSets, removal.shape.pattern);
  return removal.result;
}

void NTSequence::replaceItems(int n) {
  int* fresh = new int[n];
  delete[] items_;
  items_ = fresh;
  itemsCapacity_ = n;
}

void NTSequence::copyFrom(const NTSequence& other) {
  replaceItems(other.size_);
  std::copy(other.items_, other.items_ + other.size_, items_);
  size_ = other.size_;
  nSets_ = other.nSets_;
  hashCode_ = other.hashCode_;
  pattern_ = other.pattern_;
}

void NTSequence::fillFrom(const Sequence& seq, int end) {
  const int total = patterncode::CountItems(seq, end);
  if (total != size_) replaceItems(total);
  const patterncode::Shape shape =
      patterncode::FromSequence(seq, end, items_, nullptr);
  adopt(shape.size, shape.nSets, shape.pattern);
}

void NTSequence::adopt(int size, int nSets, long pattern) {
  size_ = size;
  nSets_ = nSets;
  pattern_ = pattern;
  hashCode_ = computeHash();
}

void NTSequence::swap(NTSequence& other) noexcept {
  std::swap(size_, other.size_);
  std::swap(nSets_, other.nSets_);
  std::swap(hashCode_, other.hashCode_);
  std::swap(pattern_, other.pattern_);
  std::swap(items_, other.items_);
  std::swap(itemsCapacity_, other.itemsCapacity_);
}

}  // namespace SEQUENCE_NAMESPACE_800
