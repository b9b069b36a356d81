#include "support/patterntable.h"

#include <algorithm>
#include <set>

#include "seqlattice/sequence/sequence.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "support/clierror.h"
#include "support/sequencelabels.h"

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
                                           const PatternQuery& query,
                                           std::vector<std::string>* unknown) {
  std::vector<const Sequence*> result;
  if (query.kind == PatternQuery::Kind::kAll) {
    int largest = dict.LargestSequence();
    for (int k = 1; k <= largest; ++k) {
      if (query.size != 0 && k != query.size) continue;
      KvCommon_850::KvStatus status =
          dict.getSequencesOfSize(result, k, query.maximal);
      if (!status.IsOK()) {
        for (const Sequence* s : result) delete s;
        failInput("patterns: listing failed (status " +
                  std::to_string(status.GetCode()) + ")");
      }
    }
    return result;
  }
  auto find = query.kind == PatternQuery::Kind::kBeginning
                  ? &SequenceDictionary::FindSequencesBeginning
              : query.kind == PatternQuery::Kind::kEnding
                  ? &SequenceDictionary::FindSequencesEnding
                  : &SequenceDictionary::FindSequences;
  std::vector<std::string> missing;
  Sequence sequence = makeSequence(query.sequence, model.items,
                                   unknownItemCode(dict), &missing);
  std::set<Sequence*> found;
  // An unknown item or a query longer than any level matches nothing.
  if (missing.empty() && sequence.Size() < dict.getNLevels()) {
    (dict.*find)(&sequence, found, query.minCount, query.maxCount);
  }
  unknown->insert(unknown->end(), missing.begin(), missing.end());
  result.assign(found.begin(), found.end());
  return result;
}

}  // namespace

ResultTable patternTable(Model& model, const PatternQuery& query,
                         std::vector<std::string>* unknown) {
  SequenceDictionary& dict = *model.dictionary;
  std::vector<const Sequence*> patterns =
      queryPatterns(dict, model, query, unknown);
  std::vector<Found> rows;
  for (const Sequence* pattern : patterns) {
    auto* counter = dict.getDescriptor(pattern);
    int count = counter != nullptr ? counter->getCount() : 0;
    bool keep = count >= query.minCount && count <= query.maxCount &&
                (query.size == 0 || pattern->Size() == query.size) &&
                (!query.maximal ||
                 (counter != nullptr && counter->getNAdjacent() == 0));
    if (keep) {
      Json cell = sequenceCell(*pattern, model.items);
      rows.push_back({cell, cellText(cell, true), pattern->Size(), count});
    }
    delete pattern;
  }
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
  return table;
}

}  // namespace seqlattice_cli
