// Binary record and XML element of SequenceCounter. A counter record defines
// the counter's adjacency set and statistics bucket: a pair count of 0 leaves
// it without a set (an empty set is not kept), a statistics flag of 0 without
// a bucket.
#include <algorithm>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <utility>

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

// Reads the given number of pairs into an array from new[] (null for none),
// sorted and without repeats as a set would hold them; *n is set to how many
// it keeps. readRun(out, k) fills in the next k pairs. The array grows as
// pairs arrive rather than taking the count on trust, so a corrupt count
// costs no more memory than the pairs the file really holds. Nothing leaks
// when readRun throws.
template <typename ReadRun>
SequenceCounter::AdjacentPair* newPairArray(int pairs, int* n,
                                            ReadRun readRun) {
  typedef SequenceCounter::AdjacentPair Pair;
  *n = 0;
  if (pairs <= 0) return nullptr;
  constexpr int kFirstCapacity = 1 << 14;
  int capacity = std::min(pairs, kFirstCapacity);
  std::unique_ptr<Pair[]> array(new Pair[capacity]);
  for (int i = 0; i < pairs;) {
    if (i == capacity) {
      capacity = pairs - capacity < capacity ? pairs : 2 * capacity;
      std::unique_ptr<Pair[]> grown(new Pair[capacity]);
      std::copy(array.get(), array.get() + i, grown.get());
      array = std::move(grown);
    }
    const int run = capacity - i;
    readRun(array.get() + i, run);
    i += run;
  }
  Pair* const end = array.get() + pairs;
  // A saved set gives its pairs in order; anything else is put in order.
  if (std::adjacent_find(array.get(), end, std::greater_equal<Pair>()) != end) {
    std::sort(array.get(), end);
    *n = static_cast<int>(std::unique(array.get(), end) - array.get());
  } else {
    *n = pairs;
  }
  return array.release();
}

}  // namespace

long SequenceCounter::writeObject(std::fstream& out) const {
  RecordIO::BinaryWriter writer(out);
  writer.tag(kTag, true);
  const int fields[] = {count, ordinalOfEntry, maxMissed};
  writer.bytes(fields, sizeof fields);
  const PairRange adjacent = adjacentPairs();
  const int pairs = static_cast<int>(adjacent.size());
  writer.value(pairs);
  for (const AdjacentPair& pair : adjacent) {
    writer.value(pair.first);
    writer.value(pair.second);
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
  // Tag, the three fields and the pair count in one read of the stream. Each
  // field starts as it is, so that a short read leaves in it what
  // field-by-field reads would (the tag's bytes start zero: a short tag never
  // matches).
  int pairs = 0;
  int* const fields[] = {&count, &ordinalOfEntry, &maxMissed, &pairs};
  constexpr std::size_t kTagBytes = sizeof kTag;
  char head[kTagBytes + sizeof(int) * 4] = {};
  for (std::size_t i = 0; i < 4; ++i) {
    std::memcpy(head + kTagBytes + sizeof(int) * i, fields[i], sizeof(int));
  }
  if (RecordIO::readRaw(in, head, sizeof head) < kTagBytes ||
      std::memcmp(head, kTag, kTagBytes) != 0) {
    RecordIO::raise(kFailure);
  }
  for (std::size_t i = 0; i < 4; ++i) {
    std::memcpy(fields[i], head + kTagBytes + sizeof(int) * i, sizeof(int));
  }
  if (pairs < 0) RecordIO::raise(RecordIO::kPairCountFailure);
  // The pairs are read a run at a time rather than with a call into the
  // stream buffer each.
  int kept = 0;
  AdjacentPair* array =
      newPairArray(pairs, &kept, [&in](AdjacentPair* out, int k) {
        constexpr int kRun = 256;
        int run[kRun][2];
        for (int done = 0; done < k;) {
          const int inRun = std::min(k - done, kRun);
          RecordIO::readRaw(in, run, sizeof run[0] * inRun);
          // More pairs than the stream holds.
          if (in.fail()) RecordIO::raise(RecordIO::kPairCountFailure);
          for (int j = 0; j < inRun; ++j) {
            out[done + j] = AdjacentPair(run[j][0], run[j][1]);
          }
          done += inRun;
        }
      });
  adoptPairArray(array, kept);
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
  const PairRange adjacent = adjacentPairs();
  for (int value :
       {count, ordinalOfEntry, maxMissed, static_cast<int>(adjacent.size())}) {
    obj.WriteSubElement(out, value);
  }
  long written = 6;
  for (const AdjacentPair& pair : adjacent) {
    obj.WriteSubElement(out, pair.first);
    obj.WriteSubElement(out, pair.second);
    written += 2;
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
  int kept = 0;
  AdjacentPair* array =
      newPairArray(pairs, &kept, [&obj, &in](AdjacentPair* out, int k) {
        for (int j = 0; j < k; ++j) {
          int pair[2] = {0, 0};
          RecordIO::parseInts(obj, in, pair, 2, kFailure);
          out[j] = AdjacentPair(pair[0], pair[1]);
        }
      });
  adoptPairArray(array, kept);
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
