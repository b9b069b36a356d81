// Binary record and XML element of SequenceDictionary: flag, settings, level
// tables, then the four doubles. The binary record holds every level; the XML
// element only levels 0 to LargestSequence(). A load rebuilds the levels from
// the settings it reads and adds the saved entries to them.
#include <algorithm>
#include <cstring>
#include <fstream>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

#include "seqlattice/dictionary/internal/paralleltasks.h"
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/io/internal/chunkbuffer.h"
#include "seqlattice/io/internal/record_io.h"
#include "seqlattice/store/hashpairseq.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

constexpr char kTag[] = "SD";
constexpr const char* kElement = "SequenceDictionary";
constexpr int kDepth = 1;
// Documents of this format version end without the minimum support.
constexpr const char* kVersionWithoutMinSupport = "1.0";

// The table saved for a level: an empty one stands in for a slot that a host
// left without a table (the constructor from a table array allows it).
const HashtableSQPair& tableToSave(HashtableSQPair* table) {
  static const HashtableSQPair kNoTable(1);
  return table != nullptr ? *table : kNoTable;
}

// Below this many entries a save takes less than starting a thread.
constexpr long kEntriesForThreads = 20000;

// Writes the level tables' records to out in level order. A large dictionary's
// records are first made in memory, on threads of their own, a level each
// (the record's writer takes a file stream, so each thread's stream is given
// a buffer in memory instead of a file). Returns the bytes the records hold.
long writeLevels(HashtableSQPair* const* levels, int nLevels,
                 std::fstream& out) {
  long entries = 0;
  for (int k = 0; k < nLevels; ++k) {
    entries += tableToSave(levels[k]).getCount();
  }
  if (entries < kEntriesForThreads) {
    long written = 0;
    for (int k = 0; k < nLevels; ++k) {
      written += tableToSave(levels[k]).writeObject(out);
    }
    return written;
  }
  std::vector<int> order(static_cast<std::size_t>(nLevels));
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](int a, int b) {
    return tableToSave(levels[a]).getCount() >
           tableToSave(levels[b]).getCount();
  });
  std::vector<io_internal::ChunkBuffer> records(order.size());
  std::vector<long> written(order.size(), 0);
  dictionary_internal::runTasks(
      order.size(), std::max(1u, std::thread::hardware_concurrency()),
      [&](std::size_t i) {
        const int k = order[i];
        std::fstream record;
        static_cast<std::ios&>(record).rdbuf(&records[k]);
        written[k] = tableToSave(levels[k]).writeObject(record);
      });
  long total = 0;
  for (int k = 0; k < nLevels; ++k) {
    records[k].moveTo(out);
    total += written[k];
  }
  return total;
}

}  // namespace

long SequenceDictionary::writeObject(std::fstream& out) const {
  // Only the bad bit stops a save; fail and end-of-file do not.
  if (out.bad()) RecordIO::raise(RecordIO::kBadStreamFailure);
  {
    RecordIO::BinaryWriter writer(out);
    writer.tag(kTag, false);
    writer.value(latticeBuilt ? '1' : '0');
    writer.finish();
  }
  settings.writeObject(out);
  const long written = 3 + writeLevels(levels, nLevels, out);
  RecordIO::BinaryWriter writer(out);
  const double values[] = {minSupport, slidingWindow, minGap, maxGap};
  writer.bytes(values, sizeof values);
  writer.finish();
  out.flush();
  return written + 32;
}

long SequenceDictionary::readObject(std::fstream& in) {
  RecordIO::expectTag(in, kTag, false, RecordIO::kDictionaryFailure);
  char built = 0;
  RecordIO::readValue(in, &built);
  latticeBuilt = built == '1';
  SeqDictionarySettings read;
  read.readObject(in);
  createDictionary(read);
  long count = 3;
  for (int k = 0; k < nLevels; ++k) count += levels[k]->readObject(in);
  RecordIO::readFields(in, {&minSupport, &slidingWindow, &minGap, &maxGap});
  return count + 32;
}

long SequenceDictionary::writeObjectXML(std::ostream& out) const {
  if (out.bad()) RecordIO::raise(RecordIO::kBadXMLStreamFailure);
  const KvXML_850::XMLObj obj(kElement, kDepth);
  obj.StartObj(out);
  obj.WriteSubElement(out, latticeBuilt ? 1 : 0);
  const int largest = LargestSequence();
  obj.WriteSubElement(out, largest);
  settings.writeObjectXML(out);
  long written = 8;
  // A dictionary never filled has no levels at all.
  for (int k = 0; k <= largest && k < nLevels; ++k) {
    written += tableToSave(levels[k]).writeObjectXML(out);
  }
  for (double value : {minSupport, slidingWindow, minGap, maxGap}) {
    obj.WriteSubElement(out, value);
  }
  obj.EndObj(out);
  return written;
}

long SequenceDictionary::readObjectXML(std::ifstream& in) {
  return readObjectXML(in, nullptr);
}

long SequenceDictionary::readObjectXML(std::ifstream& in, const char* version) {
  const KvXML_850::XMLObj obj(kElement, kDepth);
  if (!obj.ParseStartObj(in)) return 0;
  int built = 0;
  if (!obj.ParseValue(in, &built)) return 0;
  latticeBuilt = built == 1;
  int largest = 0;
  const bool largestRead = obj.ParseValue(in, &largest);
  SeqDictionarySettings read;
  if (!largestRead) return 0;
  long count = read.readObjectXML(in) + 3;
  // The document's levels 0 .. largest must exist in the settings it gives.
  if (largest >= read.nLevels) return 0;
  createDictionary(read);
  for (int k = 0; k <= largest; ++k) {
    const long tableRead = levels[k]->readObjectXML(in);
    if (tableRead == 0) return 0;
    count += tableRead;
  }
  const bool withMinSupport =
      version == nullptr ||
      std::strcmp(version, kVersionWithoutMinSupport) != 0;
  if (withMinSupport && !obj.ParseValue(in, &minSupport)) return 0;
  for (double* value : {&slidingWindow, &minGap, &maxGap}) {
    if (!obj.ParseValue(in, value)) return 0;
  }
  if (!obj.ParseEndObj(in)) return 0;
  return count + 4;
}

}  // namespace SEQUENCE_NAMESPACE_800
