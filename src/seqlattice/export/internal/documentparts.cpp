#include "seqlattice/export/internal/documentparts.h"

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/export/seqxmltags.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace internal {

using KvCommon_850::kStatusFailure;
using KvCommon_850::KvStatus;
using KvXML_850::XMLElement;
namespace Tags = SeqXMLTags;

int TransactionCount(const SequenceDictionary& dictionary) {
  const SequenceCounter* total = dictionary.getLevel0Descriptor();
  if (total == nullptr) throw MissingCounter();
  return total->getCount();
}

const SequenceCounter& CounterOf(const SequenceDictionary& dictionary,
                                 const Sequence& sequence) {
  const NTSequence key(&sequence);
  const SequenceCounter* counter = dictionary.getDescriptor(&key);
  if (counter == nullptr) throw MissingCounter();
  return *counter;
}

double MinimumSupport(const SequenceDictionary& dictionary, double minSupport) {
  const double own = dictionary.getMinSupport();
  return own < minSupport ? minSupport : own;
}

XMLElement* AddElement(XMLElement* parent, const char* name) {
  return parent->AddChild(XMLElement::Create(name));
}

void AddHeader(XMLElement* root, const char* description) {
  XMLElement* header = AddElement(root, Tags::kHeader);
  header->AddAttribute(Tags::kCopyright, Tags::kCopyrightNotice);
  header->AddAttribute(Tags::kDescription, description);
  XMLElement* application = AddElement(header, Tags::kApplication);
  application->AddAttribute(Tags::kName, Tags::kApplicationName);
  application->AddAttribute(Tags::kVersion, Tags::kApplicationVersion);
}

void AddItemsAndItemsets(XMLElement* parent, const CollectItems& collection) {
  for (const auto& [item, number] : collection.GetUniqItems()) {
    XMLElement* element = AddElement(parent, Tags::kItem);
    element->AddAttribute(Tags::kId, static_cast<double>(number));
    element->AddAttribute(Tags::kValue, static_cast<double>(item));
  }
  for (const auto& [set, number] : collection.GetUniqItemsets()) {
    XMLElement* element = AddElement(parent, Tags::kItemset);
    element->AddAttribute(Tags::kId, static_cast<double>(number));
    element->AddAttribute(Tags::kNumberOfItems,
                          static_cast<double>(set.Size()));
    for (const int* item = set.Begin(); item != set.End(); ++item) {
      AddElement(element, Tags::kItemRef)
          ->AddAttribute(
              Tags::kItemRefAttr,
              static_cast<double>(collection.IndexOfUniqItem(*item)));
    }
  }
}

KvStatus WriteDocument(
    std::ostream& out, const char* rootName, const char* systemId,
    const std::function<std::unique_ptr<XMLElement>()>& build,
    const KvStatus& ok) {
  try {
    const std::unique_ptr<XMLElement> root = build();
    const std::unique_ptr<KvXML_850::XMLDocType> docType(
        KvXML_850::XMLDocType::Create(rootName, systemId, 0));
    KvXML_850::WriteTree(out, docType.get(), root.get(), true);
  } catch (const std::exception&) {
    // Out of memory or a pattern without a counter: the tree is built
    // whole before anything is written, so the stream stays untouched.
    return KvStatus(kStatusFailure, false);
  }
  return ok;
}

}  // namespace internal
}  // namespace SEQUENCE_NAMESPACE_800
