// seqlattice patterns: the stored patterns, all of them or those that
// contain, begin with or end with a given sequence.
#include <algorithm>
#include <climits>
#include <iostream>
#include <set>
#include <vector>

#include "clierror.h"
#include "modelfile.h"
#include "output.h"
#include "patterns.h"
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "sequencelabels.h"

namespace seqlattice_cli {

namespace {

using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;

struct Found {
  Json pattern;
  std::string text;
  int size;
  int count;
};

// The patterns the query names, as Sequences the caller must delete.
std::vector<const Sequence*> queryPatterns(SequenceDictionary& dict,
                                           const Model& model,
                                           const PatternsOptions& options) {
  std::vector<const Sequence*> result;
  const std::string* text = nullptr;
  auto find = &SequenceDictionary::FindSequences;
  if (options.containsOption->count() > 0) {
    text = &options.contains;
  } else if (options.beginningOption->count() > 0) {
    text = &options.beginning;
    find = &SequenceDictionary::FindSequencesBeginning;
  } else if (options.endingOption->count() > 0) {
    text = &options.ending;
    find = &SequenceDictionary::FindSequencesEnding;
  }
  if (text == nullptr) {
    int largest = dict.LargestSequence();
    for (int k = 1; k <= largest; ++k) {
      if (options.size != 0 && k != options.size) continue;
      KvCommon_850::KvStatus status =
          dict.getSequencesOfSize(result, k, options.maximal);
      if (!status.IsOK()) {
        for (const Sequence* s : result) delete s;
        failInput("patterns: listing failed (status " +
                  std::to_string(status.GetCode()) + ")");
      }
    }
    return result;
  }
  std::vector<std::string> unknown;
  Sequence query = makeSequence(parseItemSequence(*text), model.items,
                                unknownItemCode(dict), &unknown);
  for (const std::string& label : unknown) {
    std::cerr << "seqlattice: patterns: item \"" << label
              << "\" is not in the model\n";
  }
  std::set<Sequence*> found;
  // An unknown item or a query longer than any level matches nothing.
  if (unknown.empty() && query.Size() < dict.getNLevels()) {
    (dict.*find)(&query, found, options.minCount, options.maxCount);
  }
  result.assign(found.begin(), found.end());
  return result;
}

}  // namespace

void runPatterns(const PatternsOptions& options) {
  Model model = loadModel(options.model);
  SequenceDictionary& dict = *model.dictionary;
  std::vector<const Sequence*> patterns = queryPatterns(dict, model, options);
  std::vector<Found> rows;
  for (const Sequence* pattern : patterns) {
    auto* counter = dict.getDescriptor(pattern);
    int count = counter != nullptr ? counter->getCount() : 0;
    bool keep = count >= options.minCount && count <= options.maxCount &&
                (options.size == 0 || pattern->Size() == options.size) &&
                (!options.maximal ||
                 (counter != nullptr && counter->getNAdjacent() == 0));
    if (keep) {
      Json cell = sequenceCell(*pattern, model.items);
      rows.push_back({cell, cellText(cell, true), pattern->Size(), count});
    }
    delete pattern;
  }
  // Most frequent first; then shorter, then by text, for a stable listing.
  std::sort(rows.begin(), rows.end(), [](const Found& a, const Found& b) {
    if (a.count != b.count) return a.count > b.count;
    if (a.size != b.size) return a.size < b.size;
    return a.text < b.text;
  });
  auto* level0 = dict.getLevel0Descriptor();
  double n = level0 != nullptr ? level0->getCount() : 0;
  ResultTable table({"pattern", "items", "count", "support"});
  for (const Found& row : rows) {
    table.addRow(
        {row.pattern, row.size, row.count, n > 0 ? row.count / n : 0.0});
  }
  table.write(std::cout, options.format);
}

}  // namespace seqlattice_cli
