// Binary record and XML element of SequenceCounter. A counter record defines
// the counter's adjacency set and statistics bucket: a pair count of 0 leaves
// it without a set (an empty set is not kept), a statistics flag of 0 without
// a bucket.
#include <fstream>
#include <memory>

#include "seqlattice/io/internal/record_io.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

// "SD" with its zero byte; the dictionary's tag is the same two letters
// without it.
constexpr char kTag[] = "SD";
constexpr const char* kElement = "SequenceCounter";
constexpr int kDepth = 4;
const RecordIO::Failure& kFailure = RecordIO::kCounterFailure;

// A new set of the given number of pairs, each filled in by readPair, or null
// for no pairs. Nothing leaks when readPair throws.
template <typename ReadPair>
SequenceCounter::AdjacencySet* newPairSet(int pairs, ReadPair readPair) {
  if (pairs <= 0) return nullptr;
  auto set = std::make_unique<SequenceCounter::AdjacencySet>();
  for (int i = 0; i < pairs; ++i) {
    int pair[2] = {0, 0};
    readPair(pair);
    // Pairs come in ascending order, so the end is the right hint.
    set->emplace_hint(set->end(), pair[0], pair[1]);
  }
  return set.release();
}

}  // namespace

long SequenceCounter::writeObject(std::fstream& out) const {
  RecordIO::BinaryWriter writer(out);
  writer.tag(kTag, true);
  const int fields[] = {count, ordinalOfEntry, maxMissed};
  writer.bytes(fields, sizeof fields);
  const int pairs = getNAdjacent();
  writer.value(pairs);
  if (adjacentItems != nullptr) {
    for (const std::pair<int, int>& pair : *adjacentItems) {
      writer.value(pair.first);
      writer.value(pair.second);
    }
  }
  long written = 19 + 8L * pairs + 4;
  writer.value(statsBucket != nullptr ? 1 : 0);
  if (statsBucket != nullptr) {
    written += RecordIO::appendStatsRecord(writer, *statsBucket);
  }
  writer.finish();
  return written;
}

long SequenceCounter::readObject(std::fstream& in) {
  RecordIO::expectTag(in, kTag, true, kFailure);
  RecordIO::readFields(in, {&count, &ordinalOfEntry, &maxMissed});

  int pairs = 0;
  RecordIO::readValue(in, &pairs);
  if (pairs < 0) RecordIO::raise(RecordIO::kPairCountFailure);
  // The pairs are read a run at a time rather than with a call into the
  // stream buffer each. The run's size caps what a corrupt count can make
  // the reader hold.
  constexpr int kRun = 256;
  int run[kRun][2];
  int inRun = 0;
  int nextInRun = 0;
  int unread = pairs;
  setAdjacentItems(newPairSet(pairs, [&](int(&pair)[2]) {
    if (nextInRun == inRun) {
      inRun = unread < kRun ? unread : kRun;
      nextInRun = 0;
      unread -= inRun;
      RecordIO::readRaw(in, run, sizeof run[0] * inRun);
      // More pairs than the stream holds.
      if (in.fail()) RecordIO::raise(RecordIO::kPairCountFailure);
    }
    pair[0] = run[nextInRun][0];
    pair[1] = run[nextInRun][1];
    ++nextInRun;
  }));
  long read = 19 + 8L * pairs + 4;

  int hasStats = 0;
  RecordIO::readValue(in, &hasStats);
  if (hasStats < 0) RecordIO::raise(RecordIO::kStatsFailure);
  std::unique_ptr<StatsBucket> bucket;
  if (hasStats > 0) {
    bucket = std::make_unique<StatsBucket>();
    read += bucket->readObject(in);
  }
  setStatsBucket(bucket.release());
  return read;
}

long SequenceCounter::writeObjectXML(std::ostream& out) const {
  const KvXML_850::XMLObj obj(kElement, kDepth);
  obj.StartObj(out);
  for (int value : {count, ordinalOfEntry, maxMissed, getNAdjacent()}) {
    obj.WriteSubElement(out, value);
  }
  long written = 6;
  if (adjacentItems != nullptr) {
    for (const std::pair<int, int>& pair : *adjacentItems) {
      obj.WriteSubElement(out, pair.first);
      obj.WriteSubElement(out, pair.second);
      written += 2;
    }
  }
  obj.WriteSubElement(out, statsBucket != nullptr ? 1 : 0);
  ++written;
  if (statsBucket != nullptr) written += statsBucket->writeObjectXML(out);
  obj.EndObj(out);
  return written;
}

long SequenceCounter::readObjectXML(std::ifstream& in) {
  const KvXML_850::XMLObj obj(kElement, kDepth);
  if (!obj.ParseStartObj(in)) RecordIO::raise(kFailure);
  for (int* field : {&count, &ordinalOfEntry, &maxMissed}) {
    RecordIO::parseValue(obj, in, field, kFailure);
  }
  int pairs = 0;
  RecordIO::parseValue(obj, in, &pairs, kFailure);
  if (pairs < 0) RecordIO::raise(kFailure);
  setAdjacentItems(newPairSet(pairs, [&obj, &in](int(&pair)[2]) {
    RecordIO::parseInts(obj, in, pair, 2, kFailure);
  }));
  long read = 6 + 2L * pairs;

  int hasStats = 0;
  RecordIO::parseValue(obj, in, &hasStats, kFailure);
  if (hasStats < 0) RecordIO::raise(kFailure);
  std::unique_ptr<StatsBucket> bucket;
  if (hasStats > 0) {
    bucket = std::make_unique<StatsBucket>();
    const long bucketRead = bucket->readObjectXML(in);
    if (bucketRead < 1) RecordIO::raise(kFailure);
    read += bucketRead;
  }
  setStatsBucket(bucket.release());
  if (!obj.ParseEndObj(in)) RecordIO::raise(kFailure);
  return read + 1;
}

}  // namespace SEQUENCE_NAMESPACE_800
