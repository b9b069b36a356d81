// The lattice document: every stored pattern, level by level, with its count,
// support, item sets and one-item extensions.
#include <memory>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/export/collectitems.h"
#include "seqlattice/export/internal/documentparts.h"
#include "seqlattice/export/internal/patternlist.h"
#include "seqlattice/export/seqxmltags.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

using internal::AddElement;
using KvXML_850::XMLElement;
namespace Tags = SeqXMLTags;

void AddAdjacentList(XMLElement* element, const CollectItems& collection,
                     const SequenceCounter& counter) {
  XMLElement* list = AddElement(element, Tags::kSeqAdjacentList);
  const SequenceCounter::PairRange pairs = counter.adjacentPairs();
  list->AddAttribute(Tags::kNumberOfAdjacentItems,
                     static_cast<double>(pairs.size()));
  for (const auto& [item, position] : pairs) {
    XMLElement* adjacent = AddElement(list, Tags::kAdjacentItem);
    adjacent->AddAttribute(
        Tags::kItemRefAttr,
        static_cast<double>(collection.IndexOfUniqItem(item)));
    adjacent->AddAttribute(Tags::kPosition, static_cast<double>(position));
  }
}

// One "LatticeLevel" per level from 0 to LargestSequence(); sequence ids run
// on from level to level.
void AddLevels(XMLElement* lattice, const SequenceDictionary& dictionary,
               const CollectItems& collection, double transactions) {
  internal::PatternList list;
  int number = 0;
  const int largest = dictionary.LargestSequence();
  for (int level = 0; level <= largest; ++level) {
    list.Fill(dictionary, level);
    XMLElement* element = AddElement(lattice, Tags::kLatticeLevel);
    element->AddAttribute(Tags::kLevel, static_cast<double>(level));
    element->AddAttribute(Tags::kNumberOfSequences,
                          static_cast<double>(list.Patterns().size()));
    for (Sequence const* pattern : list.Patterns()) {
      const SequenceCounter& counter =
          internal::CounterOf(dictionary, *pattern);
      const int count = counter.getCount();
      XMLElement* sequence = AddElement(element, Tags::kSequence);
      sequence->AddAttribute(Tags::kId, static_cast<double>(++number));
      sequence->AddAttribute(Tags::kSupport, count / transactions);
      sequence->AddAttribute(Tags::kOccurrence, static_cast<double>(count));
      sequence->AddAttribute(Tags::kNumberOfSets,
                             static_cast<double>(pattern->Length()));
      for (int i = 0; i < pattern->Length(); ++i) {
        AddElement(sequence, Tags::kItemsetRef)
            ->AddAttribute(Tags::kItemsetRefAttr,
                           static_cast<double>(
                               collection.IndexOfUniqItemset(*(*pattern)[i])));
      }
      AddAdjacentList(sequence, collection, counter);
    }
  }
}

std::unique_ptr<XMLElement> BuildLattice(const SequenceDictionary& dictionary,
                                         double minSupport) {
  const CollectItems collection(&dictionary);
  const int transactions = internal::TransactionCount(dictionary);

  std::unique_ptr<XMLElement> root(
      XMLElement::Create(Tags::kSequentialAssociationLattice));
  root->AddAttribute(Tags::kVersion, Tags::kLatticeVersion);
  internal::AddHeader(root.get(), Tags::kLatticeDescription);

  XMLElement* data = AddElement(root.get(), Tags::kDataDictionary);
  data->AddAttribute(Tags::kNumberOfFields, 1.0);
  XMLElement* field = AddElement(data, Tags::kDataField);
  field->AddAttribute(Tags::kName, Tags::kItemField);
  field->AddAttribute(Tags::kOptype, Tags::kCategorical);

  XMLElement* lattice = AddElement(root.get(), Tags::kSeqAssociationLattice);
  XMLElement* stats = AddElement(lattice, Tags::kSeqInputStats);
  stats->AddAttribute(Tags::kNumberOfTransactions,
                      static_cast<double>(transactions));
  stats->AddAttribute(Tags::kMinimumSupport,
                      internal::MinimumSupport(dictionary, minSupport));
  stats->AddAttribute(Tags::kMaxSequenceSize,
                      static_cast<double>(dictionary.LargestSequence()));
  stats->AddAttribute(Tags::kNumberOfItems,
                      static_cast<double>(collection.GetNUniqItems()));
  stats->AddAttribute(Tags::kNumberOfSets,
                      static_cast<double>(collection.GetNUniqItemsets()));
  stats->AddAttribute(Tags::kNumberOfSequences,
                      static_cast<double>(collection.GetNSequences()));

  internal::AddItemsAndItemsets(lattice, collection);
  AddLevels(lattice, dictionary, collection, transactions);
  return root;
}

}  // namespace

KvCommon_850::KvStatus SequenceDictionary::ExportLatticeXML(
    std::ostream& out, double minSupport) const {
  return internal::WriteDocument(
      out, Tags::kSequentialAssociationLattice, Tags::kLatticeSystemId,
      [&] { return BuildLattice(*this, minSupport); },
      KvCommon_850::KvStatus());
}

}  // namespace SEQUENCE_NAMESPACE_800
