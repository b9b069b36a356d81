#include "seqlattice/sequence/sequence.h"

#include <algorithm>
#include <iostream>
#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

#include "seqlattice/support/kvstatus.h"

namespace SEQUENCE_NAMESPACE_800 {

class Sequence::SequenceImp {
 public:
  explicit SequenceImp(int reserve) {
    sets.reserve(static_cast<size_t>(std::max(reserve, 0)));
  }
  ~SequenceImp() { Clear(); }
  SequenceImp(const SequenceImp&) = delete;
  SequenceImp& operator=(const SequenceImp&) = delete;

  void Append(const TimedItemSet& set) {
    std::unique_ptr<TimedItemSet> copy(new TimedItemSet(set));
    sets.push_back(copy.get());
    copy.release();
  }
  // Copies of other's sets from index `from` on. The count is taken first,
  // so a sequence may be joined with itself.
  void AppendFrom(const SequenceImp& other, size_t from) {
    const size_t n = other.sets.size();
    for (size_t i = from; i < n; ++i) Append(*other.sets[i]);
  }
  void Clear() {
    for (TimedItemSet* set : sets) delete set;
    sets.clear();
  }
  // Throws the index status for i > length; true when i names a set.
  bool Check(int i, bool withLength) const {
    const int length = static_cast<int>(sets.size());
    if (i > length) {
      KvCommon_850::KvStatus status(KvCommon_850::kStatusIndexError, false);
      status.SetDiscreteDatum(i);
      if (withLength) status.SetDiscreteDatum(length);
      throw status;
    }
    return i >= 0 && i < length;
  }

  std::vector<TimedItemSet*> sets;  // owned
};

Sequence::Sequence() : imp_(new SequenceImp(2)) {}

Sequence::Sequence(int n) : imp_(new SequenceImp(n)) {}

// Delegating makes the destructor run if a copy throws.
Sequence::Sequence(const Sequence& other) : Sequence(other.Length()) {
  imp_->AppendFrom(*other.imp_, 0);
}

Sequence& Sequence::operator=(const Sequence& other) {
  if (this != &other) imp_->AppendFrom(*other.imp_, 0);
  return *this;
}

Sequence::~Sequence() { delete imp_; }

void Sequence::AddTimedItemSet(const TimedItemSet* s) { imp_->Append(*s); }

int Sequence::Length() const { return static_cast<int>(imp_->sets.size()); }

int Sequence::Size() const {
  int total = 0;
  for (const TimedItemSet* set : imp_->sets) total += set->Size();
  return total;
}

const TimedItemSet* Sequence::operator[](int i) const {
  return imp_->Check(i, true) ? imp_->sets[i] : nullptr;
}

double Sequence::GetTimeOfTimedItemSet(int i) const {
  return imp_->Check(i, false) ? imp_->sets[i]->GetTime()
                               : std::numeric_limits<double>::quiet_NaN();
}

void Sequence::Clear() { imp_->Clear(); }

void Sequence::JoinTemporal(const Sequence* other) {
  imp_->AppendFrom(*other->imp_, 0);
}

void Sequence::JoinCurrent(const Sequence* other) {
  if (imp_->sets.empty() || other->imp_->sets.empty()) {
    throw std::invalid_argument(
        "Sequence::JoinCurrent needs two non-empty sequences");
  }
  // Built beside the old last set, which may also be the other's first.
  TimedItemSet*& last = imp_->sets.back();
  std::unique_ptr<TimedItemSet> merged(new TimedItemSet(*last));
  const TimedItemSet* first = other->imp_->sets.front();
  for (const int* item = first->Begin(); item != first->End(); ++item) {
    merged->AddItem(*item);
  }
  delete last;
  last = merged.release();
  imp_->AppendFrom(*other->imp_, 1);
}

bool Sequence::operator<(const Sequence& other) const {
  return std::lexicographical_compare(
      imp_->sets.begin(), imp_->sets.end(), other.imp_->sets.begin(),
      other.imp_->sets.end(),
      [](const TimedItemSet* a, const TimedItemSet* b) { return *a < *b; });
}

bool Sequence::operator==(const Sequence& other) const {
  return std::equal(
      imp_->sets.begin(), imp_->sets.end(), other.imp_->sets.begin(),
      other.imp_->sets.end(),
      [](const TimedItemSet* a, const TimedItemSet* b) { return *a == *b; });
}

void Sequence::Display(bool showTime) const {
  std::cout << "<";
  for (const TimedItemSet* set : imp_->sets) set->Display(showTime);
  std::cout << ">\n";
}

}  // namespace SEQUENCE_NAMESPACE_800
