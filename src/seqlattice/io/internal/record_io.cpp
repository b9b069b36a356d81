#include "seqlattice/io/internal/record_io.h"

#include <iostream>
#include <streambuf>

#include "seqlattice/dictionary/dictionarysettings.h"
#include "seqlattice/support/seqexceptions.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace RecordIO {

void raise(const Failure& failure) {
  if (failure.channel == Channel::kStdout) std::cout << failure.message;
  if (failure.channel == Channel::kStderr) std::cerr << failure.message;
  throw new SeqExceptions::IOException;
}

bool settingsBuildable(const SeqDictionarySettings& s, long bytesLeft) {
  if (s.nLevels < 1 || s.nLevels > kMaxLevels) return false;
  const int sizes[] = {s.level0Size, s.level1Size, s.level2Size, s.level3Size,
                       s.level4Size, s.level5Size, s.level6Size, s.level7Size};
  long total = 0;
  for (int level = 0; level < s.nLevels; ++level) {
    const int size = level < 8 ? sizes[level] : s.higherLevelSize;
    if (size < 1) return false;
    total += size;
  }
  return total <= kBucketAllowance + (bytesLeft > 0 ? bytesLeft : 0);
}

long bytesLeft(std::istream& in) {
  std::streambuf* buffer = in.rdbuf();
  if (buffer == nullptr) return -1;
  const std::streampos here =
      buffer->pubseekoff(0, std::ios_base::cur, std::ios_base::in);
  if (here == std::streampos(-1)) return -1;
  const std::streampos end =
      buffer->pubseekoff(0, std::ios_base::end, std::ios_base::in);
  buffer->pubseekpos(here, std::ios_base::in);
  if (end == std::streampos(-1) || end < here) return -1;
  return static_cast<long>(end - here);
}

void BinaryWriter::bytes(const void* src, std::size_t n) {
  const char* from = static_cast<const char*>(src);
  while (n > 0) {
    if (used_ == kCapacity) {
      out_.write(buf_, static_cast<std::streamsize>(used_));
      used_ = 0;
    }
    const std::size_t chunk = n < kCapacity - used_ ? n : kCapacity - used_;
    std::memcpy(buf_ + used_, from, chunk);
    used_ += chunk;
    from += chunk;
    n -= chunk;
  }
}

void BinaryWriter::finish() {
  if (used_ > 0) out_.write(buf_, static_cast<std::streamsize>(used_));
  used_ = 0;
}

int appendPatternHead(BinaryWriter& writer, const char (&tag)[4], long pattern,
                      int size, const int* items) {
  writer.tag(tag, true);
  writer.value(pattern);
  writer.value(size);
  if (size <= 0 || !writer.streamGood()) return 0;
  writer.bytes(items, sizeof(int) * static_cast<std::size_t>(size));
  return size;
}

namespace {

// Where a count read from a file leads: -1 to leave the arrays as they are,
// the count itself, or the failure.
int checkedCount(int count, bool good, bool negativeFails,
                 const Failure& failure) {
  if (!good || (count < 0 && !negativeFails)) return -1;
  if (count < 0 || count > kMaxPatternItems) raise(failure);
  return count;
}

// Puts an array of n items in place of the old one; zeroed unless the
// caller fills it.
void renewItems(const PatternFields& fields, int n, bool zeroed) {
  fields.size = fields.itemsCapacity = 0;
  delete[] fields.items;
  fields.items = nullptr;
  fields.items = zeroed ? new int[n]() : new int[n];
  fields.size = fields.itemsCapacity = n;
}

}  // namespace

int readPatternHead(std::istream& in, const char (&tag)[4],
                    const Failure& failure, const PatternFields& fields) {
  // Tag, word and count in one read of the stream rather than three: for
  // fields this small the call into the stream buffer costs more than the
  // copy it makes. Each field starts as it is, so that a short read leaves in
  // it what field-by-field reads would (the tag's bytes start zero: a short
  // tag never matches).
  constexpr std::size_t kTagBytes = 4;
  constexpr std::size_t kCountAt = kTagBytes + sizeof(long);
  char head[kCountAt + sizeof(int)] = {};
  std::memcpy(head + kTagBytes, &fields.pattern, sizeof(long));
  if (readRaw(in, head, sizeof head) < kTagBytes ||
      std::memcmp(head, tag, kTagBytes) != 0 || in.bad()) {
    raise(failure);
  }
  std::memcpy(&fields.pattern, head + kTagBytes, sizeof(long));
  int count = 0;
  std::memcpy(&count, head + kCountAt, sizeof(int));
  count = checkedCount(count, in.good(), true, failure);
  if (count < 0) return 0;
  // The array is read over at once; only what a short read leaves out is
  // zeroed, as a zeroed array read over would hold.
  renewItems(fields, count, false);
  const std::size_t itemBytes = sizeof(int) * static_cast<std::size_t>(count);
  const std::size_t got = count == 0 ? 0 : readRaw(in, fields.items, itemBytes);
  if (got < itemBytes) {
    std::memset(reinterpret_cast<char*>(fields.items) + got, 0,
                itemBytes - got);
  }
  return static_cast<int>(got / sizeof(int));
}

int readSetCount(std::istream& in, const Failure& failure) {
  int count = 0;
  readValue(in, &count);
  return checkedCount(count, in.good(), false, failure);
}

long writePatternHeadXML(const KvXML_850::XMLObj& obj, std::ostream& out,
                         long pattern, int size, const int* items) {
  obj.WriteSubElement(out, pattern);
  obj.WriteSubElement(out, size);
  long written = 2;
  for (int i = 0; i < size && out.good(); ++i, ++written) {
    obj.WriteSubElement(out, items[i]);
  }
  return written;
}

long parsePatternHead(const KvXML_850::XMLObj& obj, std::istream& in,
                      const Failure& failure, const PatternFields& fields) {
  if (!obj.ParseStartObj(in)) raise(failure);
  parseValue(obj, in, &fields.pattern, failure);
  int count = 0;
  parseValue(obj, in, &count, failure);
  count = checkedCount(count, in.good(), true, failure);
  if (count < 0) return 2;
  renewItems(fields, count, true);
  return 2 + parseInts(obj, in, fields.items, count, failure);
}

int parseSetCount(const KvXML_850::XMLObj& obj, std::istream& in,
                  const Failure& failure) {
  int count = 0;
  parseValue(obj, in, &count, failure);
  return checkedCount(count, in.good(), false, failure);
}

long parseInts(const KvXML_850::XMLObj& obj, std::istream& in, int* dst, int n,
               const Failure& failure) {
  for (int i = 0; i < n; ++i) parseValue(obj, in, &dst[i], failure);
  return n < 0 ? 0 : n;
}

}  // namespace RecordIO
}  // namespace SEQUENCE_NAMESPACE_800
