// The PMML 3.2 sequence model document of the dictionary's rules.
#include <memory>
#include <vector>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/export/collectitems.h"
#include "seqlattice/export/internal/documentparts.h"
#include "seqlattice/export/seqxmltags.h"
#include "seqlattice/rules/seqassociationrule.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

using internal::AddElement;
using KvXML_850::XMLElement;
namespace Tags = SeqXMLTags;

// What the model element states beside the rules.
struct ModelFigures {
  double minSupport;  // the larger of the dictionary's and the caller's
  double minConfidence;
  int maxItemsPerTransaction;
  double avgItemsPerTransaction;
};

XMLElement* AddField(XMLElement* parent, const char* tag, const char* name) {
  XMLElement* field = AddElement(parent, tag);
  field->AddAttribute(Tags::kName, name);
  field->AddAttribute(Tags::kOptype, Tags::kCategorical);
  field->AddAttribute(Tags::kDataType, Tags::kString);
  return field;
}

void AddDictionaries(XMLElement* root) {
  XMLElement* data = AddElement(root, Tags::kDataDictionary);
  data->AddAttribute(Tags::kNumberOfFields, 3.0);
  AddField(data, Tags::kDataField, Tags::kCustomerField);
  AddField(data, Tags::kDataField, Tags::kTimeField);
  AddField(data, Tags::kDataField, Tags::kItemField);

  XMLElement* transformations =
      AddElement(root, Tags::kTransformationDictionary);
  XMLElement* transaction =
      AddField(transformations, Tags::kDerivedField, Tags::kTransactionField);
  XMLElement* aggregate = AddElement(transaction, Tags::kAggregate);
  aggregate->AddAttribute(Tags::kField, Tags::kItemField);
  aggregate->AddAttribute(Tags::kFunction, Tags::kMultiset);
  aggregate->AddAttribute(Tags::kGroupField, Tags::kCustomerField);
}

void AddExtension(XMLElement* model, const char* name, double value) {
  XMLElement* extension = AddElement(model, Tags::kExtension);
  extension->AddAttribute(Tags::kExtender, Tags::kExtenderDomain);
  extension->AddAttribute(Tags::kName, name);
  extension->AddAttribute(Tags::kValue, value);
}

void AddMiningSchema(XMLElement* model) {
  XMLElement* schema = AddElement(model, Tags::kMiningSchema);
  const char* const fields[][2] = {
      {Tags::kItemField, Tags::kActive},
      {Tags::kTransactionField, Tags::kActive},
      {Tags::kTimeField, Tags::kActive},
      {Tags::kCustomerField, Tags::kSupplementary}};
  for (const auto& [name, usage] : fields) {
    XMLElement* field = AddElement(schema, Tags::kMiningField);
    field->AddAttribute(Tags::kName, name);
    field->AddAttribute(Tags::kUsageType, usage);
  }
}

// Every delimiter says "across time windows, gap unknown", also between sets
// that a current join made adjacent.
void AddDelimiter(XMLElement* parent) {
  XMLElement* delimiter = AddElement(parent, Tags::kDelimiter);
  delimiter->AddAttribute(Tags::kDelimiterAttr, Tags::kAcrossTimeWindows);
  delimiter->AddAttribute(Tags::kGap, Tags::kUnknownGap);
}

void AddSequences(XMLElement* model, const SequenceDictionary& dictionary,
                  const CollectItems& collection, double transactions) {
  for (const auto& [sequence, number] : collection.GetUniqSequences()) {
    const int count = internal::CounterOf(dictionary, sequence).getCount();
    XMLElement* element = AddElement(model, Tags::kSequence);
    element->AddAttribute(Tags::kId, static_cast<double>(number));
    element->AddAttribute(Tags::kNumberOfSets,
                          static_cast<double>(sequence.Length()));
    element->AddAttribute(Tags::kOccurrence, static_cast<double>(count));
    element->AddAttribute(Tags::kSupport, count / transactions);
    for (int i = 0; i < sequence.Length(); ++i) {
      if (i > 0) AddDelimiter(element);
      AddElement(element, Tags::kSetReference)
          ->AddAttribute(
              Tags::kSetId,
              static_cast<double>(collection.IndexOfUniqItemset(*sequence[i])));
    }
  }
}

void AddSequenceReference(XMLElement* rule, const char* side,
                          const CollectItems& collection,
                          const Sequence& sequence) {
  AddElement(AddElement(rule, side), Tags::kSequenceReference)
      ->AddAttribute(
          Tags::kSeqId,
          static_cast<double>(collection.IndexOfUniqSequence(sequence)));
}

void AddRules(XMLElement* model, const SequenceDictionary& dictionary,
              const CollectItems& collection,
              const std::vector<SeqAssociationRule>& rules) {
  int number = 0;
  for (const SeqAssociationRule& rule : rules) {
    const Sequence joined = JoinedSequence(rule);
    const int count = internal::CounterOf(dictionary, joined).getCount();
    XMLElement* element = AddElement(model, Tags::kSequenceRule);
    element->AddAttribute(Tags::kId, static_cast<double>(++number));
    element->AddAttribute(Tags::kSupport, rule.GetSupport());
    element->AddAttribute(Tags::kNumberOfSets,
                          static_cast<double>(joined.Length()));
    element->AddAttribute(Tags::kOccurrence, static_cast<double>(count));
    element->AddAttribute(Tags::kConfidence, rule.GetConfidence());
    AddSequenceReference(element, Tags::kAntecedentSequence, collection,
                         rule.GetAntecedent());
    AddDelimiter(element);
    AddSequenceReference(element, Tags::kConsequentSequence, collection,
                         rule.GetConsequent());
  }
}

std::unique_ptr<XMLElement> BuildModel(const SequenceDictionary& dictionary,
                                       std::vector<SeqAssociationRule>& rules,
                                       const ModelFigures& figures) {
  const CollectItems collection(rules);
  const int transactions = internal::TransactionCount(dictionary);

  std::unique_ptr<XMLElement> root(XMLElement::Create(Tags::kPMML));
  root->AddAttribute(Tags::kVersion, Tags::kPMMLVersion);
  root->AddAttribute(Tags::kXmlns, Tags::kPMMLNamespace);
  root->AddAttribute(Tags::kXmlnsXsi, Tags::kSchemaInstanceNamespace);
  root->AddAttribute(Tags::kXsiSchemaLocation, Tags::kPMMLSchemaLocation);
  internal::AddHeader(root.get(), Tags::kModelDescription);
  AddDictionaries(root.get());

  XMLElement* model = AddElement(root.get(), Tags::kSequenceModel);
  model->AddAttribute(Tags::kModelName, Tags::kModelNameText);
  model->AddAttribute(Tags::kFunctionName, Tags::kFunctionNameText);
  model->AddAttribute(Tags::kAlgorithmName, Tags::kAlgorithmNameText);
  model->AddAttribute(Tags::kNumberOfTransactions,
                      static_cast<double>(transactions));
  model->AddAttribute(Tags::kMaxNumberOfItemsPerTransaction,
                      static_cast<double>(figures.maxItemsPerTransaction));
  model->AddAttribute(Tags::kAvgNumberOfItemsPerTransaction,
                      figures.avgItemsPerTransaction);

  AddExtension(model, Tags::kMinimumSupport, figures.minSupport);
  AddExtension(model, Tags::kMinimumConfidence, figures.minConfidence);
  AddExtension(model, Tags::kNumberOfItems,
               static_cast<double>(collection.GetNUniqItems()));
  AddExtension(model, Tags::kNumberOfSets,
               static_cast<double>(collection.GetNUniqItemsets()));
  AddExtension(model, Tags::kNumberOfSequences,
               static_cast<double>(collection.GetNSequences()));
  AddExtension(model, Tags::kNumberOfRules, static_cast<double>(rules.size()));
  AddExtension(model, Tags::kTimeWindowWidth, dictionary.getSlidingWindow());
  AddExtension(model, Tags::kMinimumTime, dictionary.getMinGap());
  AddExtension(model, Tags::kMaximumTime, dictionary.getMaxGap());

  AddMiningSchema(model);
  internal::AddItemsAndItemsets(model, collection);
  AddSequences(model, dictionary, collection, transactions);
  AddRules(model, dictionary, collection, rules);
  return root;
}

}  // namespace

KvCommon_850::KvStatus SequenceDictionary::ExportRulesXML(
    std::ostream& out, double minSupport, double maxSupport,
    double minConfidence, double maxConfidence, double minCause,
    double maxCause, int maxItemsPerTransaction, double avgItemsPerTransaction,
    char sortBy, bool maximalOnly) const {
  std::vector<SeqAssociationRule> rules;
  const KvCommon_850::KvStatus status =
      GetRules(rules, minSupport, maxSupport, minConfidence, maxConfidence,
               minCause, maxCause, sortBy, maximalOnly);
  if (!status.IsOK()) return status;
  const ModelFigures figures{internal::MinimumSupport(*this, minSupport),
                             minConfidence, maxItemsPerTransaction,
                             avgItemsPerTransaction};
  return internal::WriteDocument(
      out, Tags::kPMML, Tags::kPMMLSystemId,
      [&] { return BuildModel(*this, rules, figures); }, status);
}

}  // namespace SEQUENCE_NAMESPACE_800
