// Binary record and XML element of NTSequence.
#include <algorithm>
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
  RecordIO::readPatternTag(in, kTag, kFailure);
  RecordIO::readValue(in, &pattern_);
  const int count = RecordIO::readPatternCount(in, kFailure, true);
  int read = 0;
  if (count >= 0) {
    replaceItems(count);
    size_ = count;
    std::fill_n(items_, count, 0);
    read = RecordIO::readInts(in, items_, count);
  }
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
  if (!obj.ParseStartObj(in)) RecordIO::raise(kFailure);
  RecordIO::parseValue(obj, in, &pattern_, kFailure);
  const int count = RecordIO::parsePatternCount(obj, in, kFailure, true);
  long read = 2;
  if (count >= 0) {
    replaceItems(count);
    size_ = count;
    std::fill_n(items_, count, 0);
    read += RecordIO::parseInts(obj, in, items_, count, kFailure);
  }
  RecordIO::parseValue(obj, in, &nSets_, kFailure);
  if (!obj.ParseEndObj(in)) RecordIO::raise(kFailure);
  hashCode_ = computeHash();
  return read + 3;
}

}  // namespace SEQUENCE_NAMESPACE_800
