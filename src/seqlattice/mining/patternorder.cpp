#include "seqlattice/mining/patternorder.h"

#include <algorithm>
#include <map>

#include "seqlattice/mining/miningerror.h"
#include "seqlattice/mining/patternrecords.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {

namespace {

// A pattern as its sets part of a record: n, then each set as its size and
// items. Equal patterns have equal keys.
using Key = std::vector<int>;

Key keyOf(const std::vector<int>& records, std::size_t at) {
  std::size_t end = at + 3;
  for (int k = 0; k < records[at + 2]; ++k) {
    end += static_cast<std::size_t>(records[end]) + 1;
  }
  return Key(records.begin() + static_cast<long>(at) + 2,
             records.begin() + static_cast<long>(end));
}

// The pattern less its last item (a one-item set is dropped whole), and
// that item and whether it joined the last set.
struct Prefix {
  Key key;
  int item;
  bool sameSet;
};

Prefix prefixOf(Key key) {
  std::size_t lastSet = 1;
  for (int k = 1; k < key[0]; ++k) {
    lastSet += static_cast<std::size_t>(key[lastSet]) + 1;
  }
  Prefix prefix{Key(), key.back(), key[lastSet] > 1};
  key.pop_back();
  if (prefix.sameSet) {
    --key[lastSet];
  } else {
    key.pop_back();
    --key[0];
  }
  prefix.key = std::move(key);
  return prefix;
}

struct Node {
  std::size_t start = 0;
  int item = 0;
  bool sameSet = false;
  std::vector<std::size_t> children;  // node indexes
};

class Orderer {
 public:
  explicit Orderer(const std::vector<int>& records) : records_(records) {
    std::map<Key, std::size_t> byKey;
    for (std::size_t start : recordStarts(records)) {
      if (!byKey.emplace(keyOf(records, start), nodes_.size()).second) {
        throw MiningError("pattern " + recordText(records, start) +
                          " is given twice");
      }
      nodes_.emplace_back();
      nodes_.back().start = start;
    }
    for (auto& [key, index] : byKey) {
      Node& node = nodes_[index];
      if (recordItems(records, node.start) == 1) {
        node.item = key[2];
        singles_.push_back(index);
        continue;
      }
      Prefix prefix = prefixOf(key);
      node.item = prefix.item;
      node.sameSet = prefix.sameSet;
      auto parent = byKey.find(prefix.key);
      if (parent == byKey.end()) {
        throw MiningError("pattern " + recordText(records, node.start) +
                          " is given without its prefix, which every "
                          "pattern it is frequent with holds");
      }
      nodes_[parent->second].children.push_back(index);
    }
    auto before = [this](std::size_t a, std::size_t b) {
      const Node& x = nodes_[a];
      const Node& y = nodes_[b];
      if (x.sameSet != y.sameSet) return !x.sameSet;
      return x.item < y.item;
    };
    std::sort(singles_.begin(), singles_.end(), before);
    for (Node& node : nodes_) {
      std::sort(node.children.begin(), node.children.end(), before);
    }
  }

  std::vector<std::size_t> order() {
    std::vector<std::size_t> pairs;
    for (std::size_t single : singles_) {
      out_.push_back(nodes_[single].start);
    }
    for (std::size_t single : singles_) {
      for (std::size_t pair : nodes_[single].children) {
        out_.push_back(nodes_[pair].start);
        pairs.push_back(pair);
      }
    }
    std::stable_sort(
        pairs.begin(), pairs.end(), [this](std::size_t a, std::size_t b) {
          return records_[nodes_[a].start] > records_[nodes_[b].start];
        });
    for (std::size_t pair : pairs) expand(pair);
    return std::move(out_);
  }

 private:
  void expand(std::size_t index) {
    const Node& node = nodes_[index];
    for (std::size_t child : node.children) {
      out_.push_back(nodes_[child].start);
    }
    for (std::size_t child : node.children) expand(child);
  }

  const std::vector<int>& records_;
  std::vector<Node> nodes_;
  std::vector<std::size_t> singles_;
  std::vector<std::size_t> out_;
};

}  // namespace

std::vector<std::size_t> minerReportOrder(const std::vector<int>& records) {
  return Orderer(records).order();
}

std::string recordText(const std::vector<int>& records, std::size_t at) {
  std::string text = "<";
  std::size_t next = at + 3;
  for (int k = 0; k < records[at + 2]; ++k) {
    const int size = records[next];
    if (k > 0) text += ", ";
    if (size > 1) text += "(";
    for (int i = 1; i <= size; ++i) {
      if (i > 1) text += " ";
      text += std::to_string(records[next + static_cast<std::size_t>(i)]);
    }
    if (size > 1) text += ")";
    next += static_cast<std::size_t>(size) + 1;
  }
  return text + ">";
}

}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
