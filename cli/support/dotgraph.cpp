#include "support/dotgraph.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "support/clierror.h"
#include "support/output.h"
#include "support/sequencelabels.h"

namespace seqlattice_cli {

namespace {

using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::TimedItemSet;
using Key = std::vector<std::vector<int>>;

struct Node {
  Key key;
  std::string text;
  int size;
  int count;
};

Key keyOf(const Sequence& sequence) {
  Key key;
  for (int s = 0; s < sequence.Length(); ++s) {
    key.emplace_back(sequence[s]->Begin(), sequence[s]->End());
  }
  return key;
}

std::vector<Node> mostFrequent(
    SEQUENCE_NAMESPACE_800::SequenceDictionary& dict,
    const SEQUENCE_NAMESPACE_800::input::ItemLabels& labels, int top) {
  std::vector<Node> nodes;
  std::vector<const Sequence*> patterns;
  for (int k = 1; k <= dict.LargestSequence(); ++k) {
    patterns.clear();
    KvCommon_850::KvStatus status = dict.getSequencesOfSize(patterns, k, false);
    for (const Sequence* pattern : patterns) {
      auto* counter = dict.getDescriptor(pattern);
      nodes.push_back(
          {keyOf(*pattern), cellText(sequenceCell(*pattern, labels), true),
           pattern->Size(), counter != nullptr ? counter->getCount() : 0});
      delete pattern;
    }
    if (!status.IsOK()) failInput("export: listing the patterns failed");
  }
  std::sort(nodes.begin(), nodes.end(), [](const Node& a, const Node& b) {
    if (a.count != b.count) return a.count > b.count;
    if (a.size != b.size) return a.size < b.size;
    return a.text < b.text;
  });
  if (nodes.size() > static_cast<std::size_t>(top)) nodes.resize(top);
  return nodes;
}

}  // namespace

std::string dotEscaped(const std::string& text) {
  std::string result;
  for (char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c == '\n' ? ' ' : c;
  }
  return result;
}

void writeDotGraph(std::ostream& out,
                   SEQUENCE_NAMESPACE_800::SequenceDictionary& dict,
                   const SEQUENCE_NAMESPACE_800::input::ItemLabels& labels,
                   int top) {
  std::vector<Node> nodes = mostFrequent(dict, labels, top);
  std::map<Key, std::size_t> index;
  for (std::size_t i = 0; i < nodes.size(); ++i) index[nodes[i].key] = i;

  out << "digraph lattice {\n"
      << "  rankdir=LR;\n"
      << "  node [shape=box, fontname=\"Helvetica\"];\n";
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    out << "  p" << i + 1 << " [label=\"" << dotEscaped(nodes[i].text) << "\\n"
        << nodes[i].count << "\"];\n";
  }
  // A parent is the child without one of its items; a set left empty goes.
  for (std::size_t child = 0; child < nodes.size(); ++child) {
    const Key& key = nodes[child].key;
    std::set<std::size_t> parents;
    for (std::size_t s = 0; s < key.size(); ++s) {
      for (std::size_t j = 0; j < key[s].size(); ++j) {
        Key parent = key;
        parent[s].erase(parent[s].begin() + static_cast<std::ptrdiff_t>(j));
        if (parent[s].empty()) {
          parent.erase(parent.begin() + static_cast<std::ptrdiff_t>(s));
        }
        auto found = index.find(parent);
        if (found != index.end()) parents.insert(found->second);
      }
    }
    for (std::size_t parent : parents) {
      out << "  p" << parent + 1 << " -> p" << child + 1 << ";\n";
    }
  }
  out << "}\n";
}

}  // namespace seqlattice_cli
