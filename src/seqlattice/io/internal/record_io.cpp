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

void readPatternTag(std::istream& in, const char (&tag)[4],
                    const Failure& failure) {
  if (!readTag(in, tag, true) || in.bad()) raise(failure);
}

namespace {

// The count rules shared by both formats once the count is known.
int checkedCount(int count, bool good, const Failure& failure,
                 bool negativeFails) {
  if (!good) return -1;
  if (count < 0 && !negativeFails) return -1;
  if (count < 0 || count > kMaxPatternItems) raise(failure);
  return count;
}

}  // namespace

int readPatternCount(std::istream& in, const Failure& failure,
                     bool negativeFails) {
  int count = 0;
  readValue(in, &count);
  return checkedCount(count, in.good(), failure, negativeFails);
}

int readInts(std::istream& in, int* dst, int n) {
  if (n <= 0) return 0;
  readRaw(in, dst, sizeof(int) * static_cast<std::size_t>(n));
  return static_cast<int>(in.gcount() /
                          static_cast<std::streamsize>(sizeof(int)));
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

int parsePatternCount(const KvXML_850::XMLObj& obj, std::istream& in,
                      const Failure& failure, bool negativeFails) {
  int count = 0;
  parseValue(obj, in, &count, failure);
  return checkedCount(count, in.good(), failure, negativeFails);
}

long parseInts(const KvXML_850::XMLObj& obj, std::istream& in, int* dst, int n,
               const Failure& failure) {
  for (int i = 0; i < n; ++i) parseValue(obj, in, &dst[i], failure);
  return n < 0 ? 0 : n;
}

}  // namespace RecordIO
}  // namespace SEQUENCE_NAMESPACE_800
