// The parts that the PMML sequence model and the lattice document share: the
// header, the item and item-set declarations, the dictionary figures both
// read, and the building and writing of a whole document.
#ifndef SEQLATTICE_EXPORT_INTERNAL_DOCUMENTPARTS_H_
#define SEQLATTICE_EXPORT_INTERNAL_DOCUMENTPARTS_H_

#include <functional>
#include <memory>
#include <ostream>
#include <stdexcept>

#include "seqlattice/export/collectitems.h"
#include "seqlattice/support/kvstatus.h"
#include "seqlattice/support/xmldocument.h"

namespace SEQUENCE_NAMESPACE_800 {

class SequenceCounter;
class SequenceDictionary;

namespace internal {

// A pattern that a document describes has no counter in the dictionary.
class MissingCounter : public std::runtime_error {
 public:
  MissingCounter() : std::runtime_error("pattern without a counter") {}
};

// T: the count of the empty pattern, the number of customer sequences.
// Throws MissingCounter when level 0 lacks it.
int TransactionCount(const SequenceDictionary& dictionary);
// The counter of the stored pattern with the sequence's items (times are
// dropped). Throws MissingCounter when there is none.
const SequenceCounter& CounterOf(const SequenceDictionary& dictionary,
                                 const Sequence& sequence);
// The larger of the dictionary's minimum support and the caller's.
double MinimumSupport(const SequenceDictionary& dictionary, double minSupport);

// Appends a new element to parent and returns it (owned by parent).
KvXML_850::XMLElement* AddElement(KvXML_850::XMLElement* parent,
                                  const char* name);
// "Header" with the copyright notice, the description and "Application".
void AddHeader(KvXML_850::XMLElement* root, const char* description);
// One "Item" per unique item, then one "Itemset" per unique item set with
// an "ItemRef" per item.
void AddItemsAndItemsets(KvXML_850::XMLElement* parent,
                         const CollectItems& collection);

// Builds the tree with build and writes the document (declaration, document
// type rootName/systemId, tree). When building throws, nothing is written
// and KvStatus(kStatusFailure, false) is returned; otherwise ok is returned.
KvCommon_850::KvStatus WriteDocument(
    std::ostream& out, const char* rootName, const char* systemId,
    const std::function<std::unique_ptr<KvXML_850::XMLElement>()>& build,
    const KvCommon_850::KvStatus& ok);

}  // namespace internal
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_EXPORT_INTERNAL_DOCUMENTPARTS_H_
