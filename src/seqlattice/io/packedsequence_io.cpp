// Binary record and XML element of PackedSequence. The XML element keeps the
// set times only as truncated ints, while the binary record keeps them whole.
#include <climits>
#include <cmath>
#include <fstream>

#include "seqlattice/io/internal/record_io.h"
#include "seqlattice/pattern/packedsequence.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

constexpr char kTag[] = "PS:";
constexpr const char* kElement = "PackedSequence";
constexpr int kDepth = 4;
const RecordIO::Failure& kFailure = RecordIO::kPackedSequenceFailure;

// A time truncated toward zero. Times beyond the int range and NaN become
// INT_MIN, what the conversion instruction of the reference platform (x86-64)
// yields for them, instead of undefined behaviour.
int truncatedTime(double t) {
  if (!(t > static_cast<double>(INT_MIN) - 1.0 &&
        t < static_cast<double>(INT_MAX) + 1.0)) {
    return INT_MIN;
  }
  return static_cast<int>(std::trunc(t));
}

// Puts zeroed time arrays of n sets in place of the old ones.
void renewTimes(double*& startTimes, double*& endTimes, int& nSets,
                int& setCapacity, int n) {
  nSets = setCapacity = 0;
  for (double** times : {&startTimes, &endTimes}) {
    delete[] * times;
    *times = nullptr;
    *times = new double[n]();
  }
  nSets = setCapacity = n;
}

}  // namespace

long PackedSequence::writeObject(std::fstream& out) const {
  RecordIO::BinaryWriter writer(out);
  const int items =
      RecordIO::appendPatternHead(writer, kTag, pattern_, size_, items_);
  writer.value(nSets_);
  int sets = 0;
  for (; sets < nSets_ && writer.streamGood(); ++sets) {
    writer.value(startTimes_[sets]);
    writer.value(endTimes_[sets]);
  }
  writer.finish();
  return 16 + 4L * items + 16L * sets;
}

long PackedSequence::readObject(std::fstream& in) {
  const int items = RecordIO::readPatternHead(
      in, kTag, kFailure, {pattern_, size_, itemsCapacity_, items_});
  const int sets = RecordIO::readSetCount(in, kFailure);
  int setsRead = 0;
  if (sets >= 0) {
    renewTimes(startTimes_, endTimes_, nSets_, setCapacity_, sets);
    for (; setsRead < sets; ++setsRead) {
      RecordIO::readFields(in, {&startTimes_[setsRead], &endTimes_[setsRead]});
      if (in.fail()) break;
    }
  }
  hashCode_ = computeHash();
  return 16 + 4L * items + 16L * setsRead;
}

long PackedSequence::writeObjectXML(std::ostream& out) const {
  const KvXML_850::XMLObj obj(kElement, kDepth);
  obj.StartObj(out);
  long written =
      RecordIO::writePatternHeadXML(obj, out, pattern_, size_, items_);
  obj.WriteSubElement(out, nSets_);
  for (int s = 0; s < nSets_; ++s) {
    obj.WriteSubElement(out, truncatedTime(startTimes_[s]));
    obj.WriteSubElement(out, truncatedTime(endTimes_[s]));
  }
  obj.EndObj(out);
  return written + 3 + 2L * nSets_;
}

long PackedSequence::readObjectXML(std::ifstream& in) {
  const KvXML_850::XMLObj obj(kElement, kDepth);
  long read = RecordIO::parsePatternHead(
      obj, in, kFailure, {pattern_, size_, itemsCapacity_, items_});
  const int sets = RecordIO::parseSetCount(obj, in, kFailure);
  ++read;
  if (sets >= 0) {
    renewTimes(startTimes_, endTimes_, nSets_, setCapacity_, sets);
    for (int s = 0; s < sets; ++s, read += 2) {
      int times[2] = {0, 0};
      RecordIO::parseInts(obj, in, times, 2, kFailure);
      startTimes_[s] = times[0];
      endTimes_[s] = times[1];
    }
  }
  if (!obj.ParseEndObj(in)) RecordIO::raise(kFailure);
  hashCode_ = computeHash();
  return read + 2;
}

}  // namespace SEQUENCE_NAMESPACE_800
