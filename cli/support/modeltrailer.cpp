// The trailer of the model file: labels, mining parameters, the dictionary's
// checksum and (version 2) the customers' sequences, little-endian.
#include <array>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include "support/clierror.h"
#include "support/modelfile.h"

namespace seqlattice_cli {

namespace {

// Version 2 added the search's completeness and time limit, and the
// customers' sequences; version 1 trailers are still read (a complete search,
// no time limit, no sequences). Version 3 adds the maximum span and the kind
// of times; it is written only for models mined with time constraints or gap
// statistics, so that every other model stays byte for byte as before.
constexpr std::uint32_t kTrailerVersion = 3;

class Writer {
 public:
  void raw(const void* data, std::size_t n) {
    bytes_.append(static_cast<const char*>(data), n);
  }
  void u64(std::uint64_t v) {
    for (int i = 0; i < 8; ++i)
      bytes_ += static_cast<char>((v >> (8 * i)) & 0xFF);
  }
  void u32(std::uint32_t v) {
    for (int i = 0; i < 4; ++i)
      bytes_ += static_cast<char>((v >> (8 * i)) & 0xFF);
  }
  void i64(long v) {
    u64(static_cast<std::uint64_t>(static_cast<std::int64_t>(v)));
  }
  void i32(int v) { u32(static_cast<std::uint32_t>(v)); }
  void u8(bool v) { bytes_ += v ? '\1' : '\0'; }
  void f64(double v) {
    std::uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    u64(bits);
  }
  void str(const std::string& s) {
    u32(static_cast<std::uint32_t>(s.size()));
    bytes_ += s;
  }
  template <typename T>
  void u32s(const std::vector<T>& values) {
    u64(values.size());
    bytes_.reserve(bytes_.size() + 4 * values.size());
    for (T v : values) u32(static_cast<std::uint32_t>(v));
  }
  std::string take() { return std::move(bytes_); }

 private:
  std::string bytes_;
};

// Reads what Writer wrote; every read checks the remaining length.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}
  std::uint64_t u64() {
    need(8);
    std::uint64_t v = 0;
    for (int i = 7; i >= 0; --i) {
      v = (v << 8) | static_cast<unsigned char>(bytes_[at_ + i]);
    }
    at_ += 8;
    return v;
  }
  std::uint32_t u32() {
    need(4);
    std::uint32_t v = 0;
    for (int i = 3; i >= 0; --i) {
      v = (v << 8) | static_cast<unsigned char>(bytes_[at_ + i]);
    }
    at_ += 4;
    return v;
  }
  long i64() { return static_cast<long>(static_cast<std::int64_t>(u64())); }
  int i32() { return static_cast<int>(static_cast<std::int32_t>(u32())); }
  bool u8() {
    need(1);
    char c = bytes_[at_++];
    if (c != 0 && c != 1) throw std::runtime_error("bad flag");
    return c == 1;
  }
  double f64() {
    std::uint64_t bits = u64();
    double v;
    std::memcpy(&v, &bits, sizeof v);
    return v;
  }
  std::string str() {
    std::uint32_t n = u32();
    return std::string(raw(n));
  }
  std::string_view raw(std::size_t n) {
    need(n);
    std::string_view s = bytes_.substr(at_, n);
    at_ += n;
    return s;
  }
  // The sequences take most of a small model's trailer: on a little-endian
  // host their values are copied as one block, one length check for all.
  template <typename T>
  std::vector<T> u32s() {
    static_assert(sizeof(T) == 4, "32-bit values");
    const std::uint64_t n = u64();
    if (n > (bytes_.size() - at_) / 4) throw std::runtime_error("truncated");
    std::vector<T> values(static_cast<std::size_t>(n));
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    if (n > 0) std::memcpy(values.data(), bytes_.data() + at_, 4 * n);
    at_ += 4 * n;
#else
    for (T& v : values) v = static_cast<T>(u32());
#endif
    return values;
  }
  bool atEnd() const { return at_ == bytes_.size(); }

 private:
  void need(std::size_t n) const {
    if (bytes_.size() - at_ < n) throw std::runtime_error("truncated");
  }
  const std::string_view bytes_;
  std::size_t at_ = 0;
};

}  // namespace

std::string encodeTrailer(const Model& model, std::uint32_t checksum) {
  const MiningParameters& m = model.mining;
  Writer w;
  w.raw(kTrailerMark, kTrailerMarkSize);
  w.u32(m.timeAware ? kTrailerVersion : 2);
  w.u32(checksum);
  w.u8(m.minSupportIsFraction);
  w.f64(m.minSupport);
  w.i64(m.minCount);
  w.i32(m.maxItems);
  w.i64(m.customers);
  w.i64(m.transactions);
  w.i64(m.itemOccurrences);
  w.i32(m.maxItemsPerTransaction);
  w.str(m.inputFormat);
  w.str(m.inputName);
  w.u8(m.complete);
  w.f64(m.timeLimit);
  if (m.timeAware) {
    w.f64(m.maxSpan);
    w.u8(m.datedTimes);
  }
  auto labels = model.items.stringLabels();
  w.u32(static_cast<std::uint32_t>(labels.size()));
  for (const auto& [code, label] : labels) {
    w.i32(code);
    w.str(label);
  }
  const auto& index = model.sequences;
  w.u8(!index.empty());
  if (!index.empty()) {
    w.u32s(index.items());
    w.u32s(index.setStarts());
    w.u32s(index.customerStarts());
  }
  return w.take();
}

std::uint32_t decodeTrailer(std::string_view bytes, const std::string& path,
                            Model* model) {
  try {
    Reader r(bytes);
    if (r.raw(kTrailerMarkSize) != kTrailerMark) {
      throw std::runtime_error("bad mark");
    }
    std::uint32_t version = r.u32();
    if (version < 1 || version > kTrailerVersion) {
      failInput(path + ": model trailer version " + std::to_string(version) +
                " is not supported (this build reads versions 1 to 3)");
    }
    std::uint32_t checksum = r.u32();
    MiningParameters& m = model->mining;
    m.minSupportIsFraction = r.u8();
    m.minSupport = r.f64();
    m.minCount = r.i64();
    m.maxItems = r.i32();
    m.customers = r.i64();
    m.transactions = r.i64();
    m.itemOccurrences = r.i64();
    m.maxItemsPerTransaction = r.i32();
    m.inputFormat = r.str();
    m.inputName = r.str();
    if (version >= 2) {
      m.complete = r.u8();
      m.timeLimit = r.f64();
    }
    m.timeAware = version >= 3;
    if (m.timeAware) {
      m.maxSpan = r.f64();
      m.datedTimes = r.u8();
      if (!(m.maxSpan >= 0)) throw std::runtime_error("bad maximum span");
    }
    std::uint32_t count = r.u32();
    std::vector<std::pair<int, std::string>> labels;
    for (std::uint32_t i = 0; i < count; ++i) {
      int code = r.i32();
      labels.emplace_back(code, r.str());
    }
    model->sequences = SEQUENCE_NAMESPACE_800::recommend::SequenceIndex();
    if (version >= 2 && r.u8()) {
      auto items = r.u32s<int>();
      auto setStarts = r.u32s<std::uint32_t>();
      auto customerStarts = r.u32s<std::uint32_t>();
      if (!SEQUENCE_NAMESPACE_800::recommend::SequenceIndex::fromFlat(
              std::move(items), std::move(setStarts), std::move(customerStarts),
              &model->sequences)) {
        throw std::runtime_error("inconsistent sequence index");
      }
    }
    if (!r.atEnd()) throw std::runtime_error("extra bytes");
    model->items =
        SEQUENCE_NAMESPACE_800::input::ItemLabels::fromStringLabels(labels);
    return checksum;
  } catch (const CliError&) {
    throw;
  } catch (const std::exception& e) {
    failInput(path + ": damaged model trailer (" + e.what() + ")");
  }
}

namespace {

// Eight bytes a step with eight tables ("slicing by 8"): the byte-wise loop
// took a tenth of saving a large model.
const std::array<std::array<std::uint32_t, 256>, 8>& crcTables() {
  static const auto kTables = [] {
    std::array<std::array<std::uint32_t, 256>, 8> tables{};
    for (std::uint32_t n = 0; n < 256; ++n) {
      std::uint32_t c = n;
      for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
      tables[0][n] = c;
    }
    for (std::uint32_t n = 0; n < 256; ++n) {
      for (int t = 1; t < 8; ++t) {
        const std::uint32_t previous = tables[t - 1][n];
        tables[t][n] = tables[0][previous & 0xFF] ^ (previous >> 8);
      }
    }
    return tables;
  }();
  return kTables;
}

// The table loop over bytes, for short inputs, tails and processors
// without carry-less multiplication.
std::uint32_t crcBySlices(std::uint32_t crc, const unsigned char* p,
                          std::size_t n) {
  const auto& kTables = crcTables();
  for (; n >= 8; n -= 8, p += 8) {
    const std::uint32_t low = crc ^ (static_cast<std::uint32_t>(p[0]) |
                                     static_cast<std::uint32_t>(p[1]) << 8 |
                                     static_cast<std::uint32_t>(p[2]) << 16 |
                                     static_cast<std::uint32_t>(p[3]) << 24);
    crc = kTables[7][low & 0xFF] ^ kTables[6][(low >> 8) & 0xFF] ^
          kTables[5][(low >> 16) & 0xFF] ^ kTables[4][low >> 24] ^
          kTables[3][p[4]] ^ kTables[2][p[5]] ^ kTables[1][p[6]] ^
          kTables[0][p[7]];
  }
  for (; n > 0; --n, ++p) crc = kTables[0][(crc ^ *p) & 0xFF] ^ (crc >> 8);
  return crc;
}

#if defined(__x86_64__)

__m128i load(const unsigned char* at) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
}

// The lane x times the constants' pair, folded onto the data `onto`.
__attribute__((target("pclmul"))) inline __m128i fold(__m128i x,
                                                      __m128i constants,
                                                      __m128i onto) {
  const __m128i low = _mm_clmulepi64_si128(x, constants, 0x00);
  const __m128i high = _mm_clmulepi64_si128(x, constants, 0x11);
  return _mm_xor_si128(_mm_xor_si128(low, high), onto);
}

// Folding with carry-less multiplication (four 16-byte lanes folded 64 bytes
// a step, then into one lane, then reduced to 32 bits by Barrett's method):
// several times the table loop's speed, which made the checksum a tenth of
// loading a model. The constants are powers of x modulo the CRC polynomial,
// bit-reflected as the CRC is. Takes n >= 64, a multiple of 16.
__attribute__((target("pclmul,sse4.1"))) std::uint32_t crcByFolding(
    std::uint32_t crc, const unsigned char* p, std::size_t n) {
  const __m128i kFold64 = _mm_set_epi64x(0x1c6e41596, 0x154442bd4);
  const __m128i kFold16 = _mm_set_epi64x(0x0ccaa009e, 0x1751997d0);
  const __m128i kFold96 = _mm_set_epi64x(0, 0x163cd6124);
  const __m128i kBarrett = _mm_set_epi64x(0x1f7011641, 0x1db710641);
  const __m128i kLow32 = _mm_set_epi32(0, 0, 0, -1);
  __m128i x0 = _mm_xor_si128(load(p), _mm_cvtsi32_si128(static_cast<int>(crc)));
  __m128i x1 = load(p + 16);
  __m128i x2 = load(p + 32);
  __m128i x3 = load(p + 48);
  p += 64;
  n -= 64;
  for (; n >= 64; n -= 64, p += 64) {
    x0 = fold(x0, kFold64, load(p));
    x1 = fold(x1, kFold64, load(p + 16));
    x2 = fold(x2, kFold64, load(p + 32));
    x3 = fold(x3, kFold64, load(p + 48));
  }
  __m128i x = fold(x0, kFold16, x1);
  x = fold(x, kFold16, x2);
  x = fold(x, kFold16, x3);
  for (; n >= 16; n -= 16, p += 16) x = fold(x, kFold16, load(p));
  // 128 bits to 64, then 64 to 32.
  x = _mm_xor_si128(_mm_clmulepi64_si128(x, kFold16, 0x10),
                    _mm_srli_si128(x, 8));
  x = _mm_xor_si128(
      _mm_clmulepi64_si128(_mm_and_si128(x, kLow32), kFold96, 0x00),
      _mm_srli_si128(x, 4));
  __m128i t = _mm_clmulepi64_si128(_mm_and_si128(x, kLow32), kBarrett, 0x10);
  t = _mm_clmulepi64_si128(_mm_and_si128(t, kLow32), kBarrett, 0x00);
  return static_cast<std::uint32_t>(_mm_extract_epi32(_mm_xor_si128(x, t), 1));
}

bool canFold() {
  static const bool kCan =
      __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1");
  return kCan;
}

#endif

}  // namespace

void Crc32::add(const char* data, std::size_t n) {
  const auto* p = reinterpret_cast<const unsigned char*>(data);
#if defined(__x86_64__)
  if (n >= 64 && canFold()) {
    const std::size_t folded = n & ~static_cast<std::size_t>(15);
    crc_ = crcByFolding(crc_, p, folded);
    p += folded;
    n -= folded;
  }
#endif
  crc_ = crcBySlices(crc_, p, n);
}

std::uint32_t crc32(const std::string& bytes) {
  Crc32 sum;
  sum.add(bytes.data(), bytes.size());
  return sum.value();
}

}  // namespace seqlattice_cli
