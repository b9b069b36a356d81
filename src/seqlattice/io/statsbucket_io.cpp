// Binary record and XML element of StatsBucket.
#include <fstream>

#include "seqlattice/io/internal/record_io.h"
#include "seqlattice/store/statsbucket.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

constexpr char kTag[] = "SB";
constexpr const char* kElement = "StatsBucket";
constexpr int kDepth = 5;
const RecordIO::Failure& kFailure = RecordIO::kStatsFailure;

// Deliberately 4 less than the record's 34 bytes: the counts are only
// informative, and every enclosing count includes this one as it is.
constexpr long kRecordCount = 30;

}  // namespace

long RecordIO::appendStatsRecord(BinaryWriter& writer,
                                 const StatsBucket& bucket) {
  writer.tag(kTag, false);
  const double values[] = {bucket.GetNOfGaps(), bucket.GetSumOfGaps(),
                           bucket.GetMinOfGaps(), bucket.GetMaxOfGaps()};
  writer.bytes(values, sizeof values);
  return kRecordCount;
}

long StatsBucket::writeObject(std::fstream& out) const {
  RecordIO::BinaryWriter writer(out);
  const long written = RecordIO::appendStatsRecord(writer, *this);
  writer.finish();
  return written;
}

long StatsBucket::readObject(std::fstream& in) {
  RecordIO::expectTag(in, kTag, false, kFailure);
  RecordIO::readFields(in, {&nOfGaps, &sumOfGaps, &minOfGaps, &maxOfGaps});
  return kRecordCount;
}

long StatsBucket::writeObjectXML(std::ostream& out) const {
  const KvXML_850::XMLObj obj(kElement, kDepth);
  obj.StartObj(out);
  for (double value : {nOfGaps, sumOfGaps, minOfGaps, maxOfGaps}) {
    obj.WriteSubElement(out, value);
  }
  obj.EndObj(out);
  return 6;
}

long StatsBucket::readObjectXML(std::ifstream& in) {
  const KvXML_850::XMLObj obj(kElement, kDepth);
  if (!obj.ParseStartObj(in)) RecordIO::raise(kFailure);
  for (double* value : {&nOfGaps, &sumOfGaps, &minOfGaps, &maxOfGaps}) {
    RecordIO::parseValue(obj, in, value, kFailure);
  }
  if (!obj.ParseEndObj(in)) RecordIO::raise(kFailure);
  return 6;
}

}  // namespace SEQUENCE_NAMESPACE_800
