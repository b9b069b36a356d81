#include "seqlattice/sequence/timeditemset.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {

class TimedItemSet::TimedItemSetImp {
 public:
  std::vector<int> items;  // ascending, no duplicates
  double time = 0.0;
};

TimedItemSet::TimedItemSet() : imp_(new TimedItemSetImp) {}

TimedItemSet::TimedItemSet(int /*sizeHint*/, double time)
    : imp_(new TimedItemSetImp) {
  imp_->time = time;
}

// Delegating makes the destructor run if an AddItem throws.
TimedItemSet::TimedItemSet(const TimedItemSet& other)
    : TimedItemSet(0, other.imp_->time) {
  for (int item : other.imp_->items) AddItem(item);
}

TimedItemSet& TimedItemSet::operator=(const TimedItemSet& other) {
  if (this != &other) {
    for (int item : other.imp_->items) AddItem(item);
  }
  return *this;
}

TimedItemSet::~TimedItemSet() { delete imp_; }

void TimedItemSet::AddItem(int item) {
  std::vector<int>& items = imp_->items;
  // Every way in goes through here, so the items are ascending already.
  const auto at = std::lower_bound(items.begin(), items.end(), item);
  if (at == items.end() || *at != item) items.insert(at, item);
}

void TimedItemSet::AddAllItems(const int* items, int n, double time) {
  imp_->items.clear();
  for (int i = 0; i < n; ++i) AddItem(items[i]);
  imp_->time = time;
}

void TimedItemSet::Clear() {
  imp_->items.clear();
  imp_->time = 0.0;
}

void TimedItemSet::SetTime(double time) { imp_->time = time; }

double TimedItemSet::GetTime() const { return imp_->time; }

int TimedItemSet::Size() const { return static_cast<int>(imp_->items.size()); }

const int* TimedItemSet::Begin() const { return imp_->items.data(); }

const int* TimedItemSet::End() const {
  return imp_->items.data() + imp_->items.size();
}

bool TimedItemSet::operator<(const TimedItemSet& other) const {
  return std::lexicographical_compare(imp_->items.begin(), imp_->items.end(),
                                      other.imp_->items.begin(),
                                      other.imp_->items.end());
}

bool TimedItemSet::operator==(const TimedItemSet& other) const {
  // Written so that a NaN difference fails the test.
  if (!(std::fabs(imp_->time - other.imp_->time) < DBL_EPSILON)) return false;
  return imp_->items == other.imp_->items;
}

void TimedItemSet::Display(bool showTime) const {
  std::cout << "(";
  const char* separator = "";
  for (int item : imp_->items) {
    std::cout << separator << item;
    separator = " ";
  }
  if (showTime) {
    std::cout << std::fixed << std::setprecision(0) << "[" << imp_->time << "]";
  }
  std::cout << ")";
}

}  // namespace SEQUENCE_NAMESPACE_800
