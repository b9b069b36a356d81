// Binary record and XML element of NTSequence.
#include <fstream>

#include "seqlattice/io/internal/record_io.h"
#include "seqlattice/pattern/ntsequence.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

constexpr char kTag[] = "NT:";
constexpr const char* kElement = "NTSequence";
constexpr int kDepth = 4;
const RecordIO::Failure& kFailure = RecordIO::kNTSequenceFailure;

}  // namespace

long NTSequence::writeObject(std::fstream& out) const {
  RecordIO::BinaryWriter writer(out);
  const int written =
      RecordIO::appendPatternHead(writer, kTag, pattern_, size_, items_);
  writer.value(nSets_);
  writer.finish();
  return 16 + 4L * written;
}

long NTSequence::readObject(std::fstream& in) {
  const int read = RecordIO::readPatternHead(
      in, kTag, kFailure, {pattern_, size_, itemsCapacity_, items_});
  RecordIO::readValue(in, &nSets_);
  hashCode_ = computeHash();
  return 16 + 4L * read;
}

long NTSequence::writeObjectXML(std::ostream& out) const {
  const KvXML_850::XMLObj obj(kElement, kDepth);
  obj.StartObj(out);
  const long written =
      RecordIO::writePatternHeadXML(obj, out, pattern_, size_, items_);
  obj.WriteSubElement(out, nSets_);
  obj.EndObj(out);
  return written + 3;
}

long NTSequence::readObjectXML(std::ifstream& in) {
  const KvXML_850::XMLObj obj(kElement, kDepth);
  const long read = RecordIO::parsePatternHead(
      obj, in, kFailure, {pattern_, size_, itemsCapacity_, items_});
  RecordIO::parseValue(obj, in, &nSets_, kFailure);
  if (!obj.ParseEndObj(in)) RecordIO::raise(kFailure);
  hashCode_ = computeHash();
  return read + 3;
}

}  // namespace SEQUENCE_NAMESPACE_800
