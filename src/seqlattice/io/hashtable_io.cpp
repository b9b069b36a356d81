// Binary record and XML element of HashtableSQPair: the entry count, then
// each entry's pattern and counter in iteration order. Reading adds the
// entries to what the table holds, a later duplicate replacing an earlier one.
#include <algorithm>
#include <fstream>
#include <memory>
#include <new>

#include "seqlattice/io/internal/record_io.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

constexpr char kTag[] = "HT";
constexpr const char* kElement = "HashtableSQPair";
constexpr int kDepth = 2;
const RecordIO::Failure& kFailure = RecordIO::kHashtableFailure;

// Raises the failure when the stream cannot hold `entries` more entries, so
// that a corrupt count neither allocates nor loops beyond the file.
void checkEntriesFit(std::istream& in, int entries) {
  const long left = RecordIO::bytesLeft(in);
  if (left >= 0 && entries > left / RecordIO::kMinEntryBytes) {
    RecordIO::raise(kFailure);
  }
}

// Reads `entries` entries with readEntry(key, counter), which returns the
// count of what it read (0 or less is a failure), and stores them in the
// order read. Returns the sum of those counts. They are stored a batch at a
// time, after fetchChain(key) has asked for the head of each one's chain: a
// load then waits for those cache misses together rather than once per
// entry. When an entry fails, the entries before it are stored before the
// failure goes on, as storing each entry on reading it would leave the
// table.
template <typename ReadEntry, typename FetchChain>
long readEntries(HashtableSQPair& table, int entries, ReadEntry readEntry,
                 FetchChain fetchChain) {
  constexpr int kBatch = 16;
  std::unique_ptr<NTSequence> keys[kBatch];
  std::unique_ptr<SequenceCounter> counters[kBatch];
  long read = 0;
  for (int from = 0; from < entries; from += kBatch) {
    const int n = std::min(kBatch, entries - from);
    int got = 0;
    auto store = [&] {
      for (int i = 0; i < got; ++i) fetchChain(*keys[i]);
      for (int i = 0; i < got; ++i) {
        table.putOverwrite(keys[i].get(), counters[i].get());
        keys[i].release();
        counters[i].release();
      }
    };
    try {
      for (; got < n; ++got) {
        // An empty pattern without the scratch array of the default
        // constructor: the record gives the key its own array anyway.
        keys[got] =
            std::make_unique<NTSequence>(static_cast<int**>(nullptr), 0);
        counters[got] = std::make_unique<SequenceCounter>(0, 0, nullptr);
        // A negative hash code (a one-item pattern of a negative item) is no
        // failure: the table places it in range like every other code.
        const long entryRead = readEntry(*keys[got], *counters[got]);
        if (entryRead <= 0) RecordIO::raise(kFailure);
        read += entryRead;
      }
    } catch (...) {
      keys[got].reset();
      counters[got].reset();
      // Running out of memory here leaves the earlier entries out; the
      // failure that came first is the one reported.
      try {
        store();
      } catch (const std::bad_alloc&) {
      }
      throw;
    }
    store();
  }
  return read;
}

// The counter saved for an entry. Work tables and addSequence with a null
// counter leave entries without one; they are saved as an all-zero counter
// so that the file stays readable.
const SequenceCounter& counterToSave(const ISQCPair& pair) {
  static const SequenceCounter kNoCounter(0, 0, nullptr);
  return pair.value != nullptr ? *pair.value : kNoCounter;
}

}  // namespace

long HashtableSQPair::writeObject(std::fstream& out) const {
  RecordIO::BinaryWriter writer(out);
  writer.tag(kTag, false);
  writer.value(count);
  writer.finish();
  long written = 6;
  // The pairs are taken in batches whose keys and counters are fetched into
  // the cache before any is written: their cache misses then overlap instead
  // of stalling the save one after another.
  constexpr int kBatch = 32;
  const ISQCPair* batch[kBatch];
  for (const_iterator it = begin(), last = end(); it != last;) {
    int n = 0;
    for (; n < kBatch && it != last; ++it) batch[n++] = &*it;
    for (int i = 0; i < n; ++i) {
      __builtin_prefetch(batch[i]->key);
      __builtin_prefetch(batch[i]->value);
    }
    for (int i = 0; i < n; ++i) {
      written += batch[i]->key->writeObject(out);
      written += counterToSave(*batch[i]).writeObject(out);
    }
  }
  return written;
}

long HashtableSQPair::readObject(std::fstream& in) {
  RecordIO::expectTag(in, kTag, false, kFailure);
  int entries = 0;
  RecordIO::readValue(in, &entries);
  if (entries < 1) return 6;
  checkEntriesFit(in, entries);
  // The key's bucket is fetched into the cache while its counter is read,
  // and the chain's head once the batch is read, so that storing the entry
  // does not stall on either (a growth in between only wastes the hints).
  return 6 + readEntries(
                 *this, entries,
                 [this, &in](NTSequence& key, SequenceCounter& counter) {
                   const long keyRead = key.readObject(in);
                   __builtin_prefetch(
                       &buckets[bucketOf(key.getHashCode(), capacity)]);
                   return keyRead + counter.readObject(in);
                 },
                 [this](const NTSequence& key) {
                   const SQCPairNode* head =
                       buckets[bucketOf(key.getHashCode(), capacity)];
                   if (head != nullptr) __builtin_prefetch(head);
                 });
}

long HashtableSQPair::writeObjectXML(std::ostream& out) const {
  const KvXML_850::XMLObj obj(kElement, kDepth);
  obj.StartObj(out);
  obj.WriteSubElement(out, count);
  long written = 3;
  for (const ISQCPair& pair : *this) {
    written += pair.key->writeObjectXML(out);
    written += counterToSave(pair).writeObjectXML(out);
  }
  obj.EndObj(out);
  return written;
}

long HashtableSQPair::readObjectXML(std::ifstream& in) {
  const KvXML_850::XMLObj obj(kElement, kDepth);
  if (!obj.ParseStartObj(in)) RecordIO::raise(kFailure);
  int entries = 0;
  RecordIO::parseValue(obj, in, &entries, kFailure);
  if (entries > 0) checkEntriesFit(in, entries);
  const long read = readEntries(
      *this, entries,
      [&in](NTSequence& key, SequenceCounter& counter) {
        const long keyRead = key.readObjectXML(in);
        const long counterRead = counter.readObjectXML(in);
        return keyRead <= 0 || counterRead <= 0 ? 0 : keyRead + counterRead;
      },
      [](const NTSequence&) {});
  if (!obj.ParseEndObj(in)) RecordIO::raise(kFailure);
  return 3 + read;
}

}  // namespace SEQUENCE_NAMESPACE_800
