// Pieces shared by the binary records and the XML object elements of the
// stored classes: the failure messages and how they are raised, raw reads and
// tag checks on a binary stream, a writer that assembles binary records before
// handing them to the stream in few large writes, and the limits that a file
// from outside must respect before anything is allocated for it.
//
// Every failure prints its fixed message (to the stream the format names, or
// nowhere) and throws a newly allocated SeqExceptions::IOException, which the
// catcher deletes.
//
// Not part of the public interface; not safe for concurrent use of one stream.
#ifndef SEQLATTICE_IO_INTERNAL_RECORD_IO_H_
#define SEQLATTICE_IO_INTERNAL_RECORD_IO_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <istream>
#include <ostream>

#include "seqlattice/support/xmlobj.h"

namespace SEQUENCE_NAMESPACE_800 {

class SeqDictionarySettings;
class StatsBucket;

namespace RecordIO {

static_assert(sizeof(int) == 4 && sizeof(long) == 8 && sizeof(double) == 8,
              "records hold 32-bit ints, 64-bit words and binary64 doubles");

// Where a failure message goes.
enum class Channel { kNone, kStdout, kStderr };

struct Failure {
  Channel channel;
  const char* message;
};

inline constexpr Failure kDictionaryFailure{
    Channel::kStderr, "Error reading SequenceDictionary!\n"};
inline constexpr Failure kBadStreamFailure{
    Channel::kStdout, "Bad stream for saving SequenceDictionary!\n"};
inline constexpr Failure kBadXMLStreamFailure{
    Channel::kStdout, "Bad stream for saving SequenceDictionary to XML!\n"};
inline constexpr Failure kSettingsFailure{
    Channel::kStderr, "Error reading SeqDictionarySettings!\n"};
// The XML settings reader fails without a message.
inline constexpr Failure kSettingsXMLFailure{Channel::kNone, ""};
inline constexpr Failure kHashtableFailure{Channel::kStderr,
                                           "Error reading HashtableSQPair!\n"};
inline constexpr Failure kNTSequenceFailure{Channel::kStderr,
                                            "Failure reading NTSequence!\n"};
// The timed pattern's readers report on the standard output, unlike all
// others.
inline constexpr Failure kPackedSequenceFailure{
    Channel::kStdout, "Failure reading PackedSequence!\n"};
inline constexpr Failure kCounterFailure{Channel::kStderr,
                                         "Error reading SequenceCounter!\n"};
// A bad pair count of a binary counter record is reported with this wording.
inline constexpr Failure kPairCountFailure{Channel::kStderr,
                                           "Error reading Sequence!\n"};
inline constexpr Failure kStatsFailure{Channel::kStderr,
                                       "Error reading StatsBucket!\n"};

// Prints the failure's message and throws a new SeqExceptions::IOException.
[[noreturn]] void raise(const Failure& failure);

// Limits for files from outside. A pattern holds at most 31 items (its
// boundary walk starts from a 32-bit mark), so it has at most 31 sets too.
inline constexpr int kMaxPatternItems = 31;
inline constexpr int kMaxLevels = 64;
// The initial bucket arrays of all levels together may take this many
// buckets plus one per byte left in the file: enough for the defaults (about
// 127,000) and for any settings a host chose for a file of its size, while a
// short corrupt file cannot ask for gigabytes.
inline constexpr long kBucketAllowance = 1L << 20;
// The smallest binary table entry: an empty pattern record (20 bytes) and a
// counter record without pairs or statistics (23 bytes).
inline constexpr long kMinEntryBytes = 20 + 23;

// True when a dictionary can be built from settings read from a stream with
// bytesLeft bytes after them (-1: unknown): 1 to kMaxLevels levels, every
// table that nLevels asks for with a positive size, all of them together
// within kBucketAllowance + bytesLeft buckets. Sizes of levels that nLevels
// does not reach are not looked at.
bool settingsBuildable(const SeqDictionarySettings& settings, long bytesLeft);

// ---- binary reading ------------------------------------------------------

// Reads n bytes into dst as std::istream::read does and returns how many it
// read: a short read stores what it got, leaves the rest of dst as it was and
// sets eofbit and failbit; a stream that is not good reads nothing and gets
// failbit. Reading fields in one call is therefore the same as reading them
// one by one. Records are read a field at a time, and the sentry that
// istream::read builds for every call took a fifth of a load, so this goes
// to the stream buffer itself.
inline std::size_t readRaw(std::istream& in, void* dst, std::size_t n) {
  if (!in.good()) {
    in.setstate(std::ios::failbit);
    return 0;
  }
  const std::streamsize got = in.rdbuf()->sgetn(
      static_cast<char*>(dst), static_cast<std::streamsize>(n));
  if (got < static_cast<std::streamsize>(n)) {
    in.setstate(std::ios::eofbit | std::ios::failbit);
  }
  return static_cast<std::size_t>(got);
}

// Reads the value's bytes over it (see readRaw for a failed stream).
template <typename T>
void readValue(std::istream& in, T* value) {
  readRaw(in, value, sizeof(T));
}

// Reads consecutive fields of one type in one go, each keeping its value
// where a short read leaves it out.
template <typename T, std::size_t N>
void readFields(std::istream& in, const std::array<T*, N>& fields) {
  std::array<T, N> values;
  for (std::size_t i = 0; i < N; ++i) values[i] = *fields[i];
  readRaw(in, values.data(), sizeof values);
  for (std::size_t i = 0; i < N; ++i) *fields[i] = values[i];
}

template <typename T, std::size_t N>
void readFields(std::istream& in, T* const (&fields)[N]) {
  std::array<T*, N> list;
  for (std::size_t i = 0; i < N; ++i) list[i] = fields[i];
  readFields(in, list);
}

// Reads sizeof(tag) - 1 bytes, or sizeof(tag) with includeZero, and tells
// whether they are the tag's bytes. A short read never matches.
template <std::size_t N>
bool readTag(std::istream& in, const char (&tag)[N], bool includeZero) {
  const std::size_t n = includeZero ? N : N - 1;
  char got[N] = {};
  return readRaw(in, got, n) == n && std::memcmp(got, tag, n) == 0;
}

// Reads a tag as readTag does and raises the failure when it does not match.
template <std::size_t N>
void expectTag(std::istream& in, const char (&tag)[N], bool includeZero,
               const Failure& failure) {
  if (!readTag(in, tag, includeZero)) raise(failure);
}

// Bytes between the read position and the end of the stream, or -1 when the
// stream cannot tell (not seekable). Leaves position and state unchanged.
long bytesLeft(std::istream& in);

// ---- binary writing ------------------------------------------------------

// Collects record bytes and hands them to the stream in writes of up to
// kCapacity bytes, instead of one unbuffered write per field. finish() writes
// what is pending; a writer dropped without finish() writes nothing more.
class BinaryWriter {
 public:
  explicit BinaryWriter(std::ostream& out) : out_(out) {}
  BinaryWriter(const BinaryWriter&) = delete;
  BinaryWriter& operator=(const BinaryWriter&) = delete;

  void bytes(const void* src, std::size_t n);
  template <typename T>
  void value(T v) {
    bytes(&v, sizeof(T));
  }
  template <std::size_t N>
  void tag(const char (&text)[N], bool includeZero) {
    bytes(text, includeZero ? N : N - 1);
  }
  // The stream's state as the record formats test it between items: the
  // state after the bytes handed over so far.
  bool streamGood() const { return out_.good(); }
  void finish();

 private:
  static constexpr std::size_t kCapacity = 4096;

  std::ostream& out_;
  std::size_t used_ = 0;
  char buf_[kCapacity];
};

// Appends the statistics record (tag and four doubles); returns its count,
// 30. The counter record nests it, so both writers share this.
long appendStatsRecord(BinaryWriter& writer, const StatsBucket& bucket);

// ---- patterns (NTSequence and PackedSequence share their record head) ----

// Appends the tag with its zero byte, the pattern word, the item count and,
// while the stream is good, the items. Returns the number of items appended.
int appendPatternHead(BinaryWriter& writer, const char (&tag)[4], long pattern,
                      int size, const int* items);

// The fields a pattern record fills: NTSequence's and PackedSequence's
// alike.
struct PatternFields {
  long& pattern;
  int& size;
  int& itemsCapacity;
  int*& items;
};

// Reads the head of a pattern record into the fields: the 4-byte tag (the
// failure is raised when it differs or the stream's bad bit is set), the
// word, the item count and the items. The count must lie in
// 0 .. kMaxPatternItems; when the stream is no longer good at the count, the
// size and items are left as they were. Returns the items read whole.
int readPatternHead(std::istream& in, const char (&tag)[4],
                    const Failure& failure, const PatternFields& fields);

// Reads a count of sets: returns it when the stream is good and it lies in
// 0 .. kMaxPatternItems, -1 ("leave the sets as they are") when the stream
// is not good or the count negative, and raises the failure above the limit.
int readSetCount(std::istream& in, const Failure& failure);

// ---- XML -----------------------------------------------------------------

// Parses one value into *value or raises the failure.
template <typename T>
void parseValue(const KvXML_850::XMLObj& obj, std::istream& in, T* value,
                const Failure& failure) {
  if (!obj.ParseValue(in, value)) raise(failure);
}

// Writes the pattern word, the item count and, while the stream is good, the
// items. Returns the number of values written.
long writePatternHeadXML(const KvXML_850::XMLObj& obj, std::ostream& out,
                         long pattern, int size, const int* items);

// The XML counterpart of readPatternHead: parses the start tag, the word, the
// item count and the items into the fields, raising the failure on anything
// that does not parse. Returns the values parsed (the start tag not counted).
long parsePatternHead(const KvXML_850::XMLObj& obj, std::istream& in,
                      const Failure& failure, const PatternFields& fields);

// The XML counterpart of readSetCount.
int parseSetCount(const KvXML_850::XMLObj& obj, std::istream& in,
                  const Failure& failure);

// Parses n int values into dst or raises the failure; returns n.
long parseInts(const KvXML_850::XMLObj& obj, std::istream& in, int* dst, int n,
               const Failure& failure);

}  // namespace RecordIO
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_IO_INTERNAL_RECORD_IO_H_
