// The vocabulary of the two model documents, the PMML sequence model and the
// lattice document: element names, attribute names and the fixed attribute
// texts. Hosts that read the documents back can use the same constants.
//
// The texts are part of the documents' format: changing one changes what
// every reader of an exported model sees.
#ifndef SEQLATTICE_EXPORT_SEQXMLTAGS_H_
#define SEQLATTICE_EXPORT_SEQXMLTAGS_H_

namespace SEQUENCE_NAMESPACE_800 {
namespace SeqXMLTags {

// Elements shared by both documents.
inline constexpr char kHeader[] = "Header";
inline constexpr char kApplication[] = "Application";
inline constexpr char kDataDictionary[] = "DataDictionary";
inline constexpr char kDataField[] = "DataField";
inline constexpr char kItem[] = "Item";
inline constexpr char kItemset[] = "Itemset";
inline constexpr char kItemRef[] = "ItemRef";
inline constexpr char kSequence[] = "Sequence";

// Elements of the PMML sequence model.
inline constexpr char kPMML[] = "PMML";
inline constexpr char kTransformationDictionary[] = "TransformationDictionary";
inline constexpr char kDerivedField[] = "DerivedField";
inline constexpr char kAggregate[] = "Aggregate";
inline constexpr char kSequenceModel[] = "SequenceModel";
inline constexpr char kExtension[] = "Extension";
inline constexpr char kMiningSchema[] = "MiningSchema";
inline constexpr char kMiningField[] = "MiningField";
inline constexpr char kDelimiter[] = "Delimiter";
inline constexpr char kSetReference[] = "SetReference";
inline constexpr char kSequenceRule[] = "SequenceRule";
inline constexpr char kAntecedentSequence[] = "AntecedentSequence";
inline constexpr char kConsequentSequence[] = "ConsequentSequence";
inline constexpr char kSequenceReference[] = "SequenceReference";

// Elements of the lattice document.
inline constexpr char kSequentialAssociationLattice[] =
    "SequentialAssociationLattice";
inline constexpr char kSeqAssociationLattice[] = "SeqAssociationLattice";
inline constexpr char kSeqInputStats[] = "SeqInputStats";
inline constexpr char kLatticeLevel[] = "LatticeLevel";
inline constexpr char kItemsetRef[] = "ItemsetRef";
inline constexpr char kSeqAdjacentList[] = "SeqAdjacentList";
inline constexpr char kAdjacentItem[] = "AdjacentItem";

// Attributes.
inline constexpr char kVersion[] = "version";
inline constexpr char kXmlns[] = "xmlns";
inline constexpr char kXmlnsXsi[] = "xmlns:xsi";
inline constexpr char kXsiSchemaLocation[] = "xsi:schemaLocation";
inline constexpr char kCopyright[] = "copyright";
inline constexpr char kDescription[] = "description";
inline constexpr char kName[] = "name";
inline constexpr char kNumberOfFields[] = "numberOfFields";
inline constexpr char kOptype[] = "optype";
inline constexpr char kDataType[] = "dataType";
inline constexpr char kField[] = "field";
inline constexpr char kFunction[] = "function";
inline constexpr char kGroupField[] = "groupField";
inline constexpr char kModelName[] = "modelName";
inline constexpr char kFunctionName[] = "functionName";
inline constexpr char kAlgorithmName[] = "algorithmName";
inline constexpr char kNumberOfTransactions[] = "numberOfTransactions";
inline constexpr char kMaxNumberOfItemsPerTransaction[] =
    "maxNumberOfItemsPerTransaction";
inline constexpr char kAvgNumberOfItemsPerTransaction[] =
    "avgNumberOfItemsPerTransaction";
inline constexpr char kExtender[] = "extender";
inline constexpr char kValue[] = "value";
inline constexpr char kUsageType[] = "usageType";
inline constexpr char kId[] = "id";
inline constexpr char kNumberOfItems[] = "numberOfItems";
inline constexpr char kNumberOfSets[] = "numberOfSets";
inline constexpr char kNumberOfSequences[] = "numberOfSequences";
inline constexpr char kOccurrence[] = "occurrence";
inline constexpr char kSupport[] = "support";
inline constexpr char kConfidence[] = "confidence";
inline constexpr char kDelimiterAttr[] = "delimiter";
inline constexpr char kGap[] = "gap";
inline constexpr char kSetId[] = "setId";
inline constexpr char kSeqId[] = "seqId";
inline constexpr char kItemRefAttr[] = "itemRef";
inline constexpr char kMinimumSupport[] = "minimumSupport";
inline constexpr char kMaxSequenceSize[] = "maxSequenceSize";
inline constexpr char kLevel[] = "level";
inline constexpr char kItemsetRefAttr[] = "itemsetRef";
inline constexpr char kNumberOfAdjacentItems[] = "numberOfAdjacentItems";
inline constexpr char kPosition[] = "position";

// Names of the nine extensions of the PMML sequence model ("minimumSupport"
// and "numberOfItems", "numberOfSets", "numberOfSequences" above serve too).
inline constexpr char kMinimumConfidence[] = "minimumConfidence";
inline constexpr char kNumberOfRules[] = "numberOfRules";
inline constexpr char kTimeWindowWidth[] = "timeWindowWidth";
inline constexpr char kMinimumTime[] = "minimumTime";
inline constexpr char kMaximumTime[] = "maximumTime";

// Fixed attribute texts.
inline constexpr char kPMMLVersion[] = "3.2";
inline constexpr char kPMMLNamespace[] = "http://www.dmg.org/PMML-3_2";
inline constexpr char kSchemaInstanceNamespace[] =
    "http://www.w3.org/2001/XMLSchema-instance";
inline constexpr char kPMMLSchemaLocation[] =
    "http://www.dmg.org/PMML-3_2 pmml-3-2.xsd";
inline constexpr char kCopyrightNotice[] =
    "Copyright (c) 2026 The seqlattice authors";
inline constexpr char kExtenderDomain[] = "seqlattice.org";
inline constexpr char kApplicationName[] =
    "Qorvane Sequential Association Component C++";
inline constexpr char kApplicationVersion[] = "1.2.1";
inline constexpr char kLatticeVersion[] = "1.2.1";
inline constexpr char kModelDescription[] =
    "Carma model for sequential association rules";
inline constexpr char kLatticeDescription[] =
    "Carma model for sequential association lattice";
inline constexpr char kModelNameText[] =
    "Carma model for sequential association";
inline constexpr char kFunctionNameText[] = "sequences";
inline constexpr char kAlgorithmNameText[] = "Carma";
inline constexpr char kCategorical[] = "categorical";
inline constexpr char kString[] = "string";
inline constexpr char kCustomerField[] = "customer";
inline constexpr char kTimeField[] = "time";
inline constexpr char kItemField[] = "item";
inline constexpr char kTransactionField[] = "transaction";
inline constexpr char kMultiset[] = "multiset";
inline constexpr char kActive[] = "active";
inline constexpr char kSupplementary[] = "supplementary";
// Every delimiter is written so, whatever the join of the sets it separates.
inline constexpr char kAcrossTimeWindows[] = "acrossTimeWindows";
inline constexpr char kUnknownGap[] = "unknown";

// Document types: root element name and system identifier.
inline constexpr char kPMMLSystemId[] = "sequentialmodel.dtd";
inline constexpr char kLatticeSystemId[] = "sequentiallattice.dtd";

}  // namespace SeqXMLTags
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_EXPORT_SEQXMLTAGS_H_
