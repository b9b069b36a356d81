#include "seqlattice/support/internal/xmlnumber.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace KvXML_850 {
namespace internal {
namespace {

char* Copy(char* buf, const char* text) {
  const std::size_t n = std::strlen(text);
  std::memcpy(buf, text, n);
  return buf + n;
}

// Finite values in the shortest form that reads back exactly, infinities.
// NaN is left to the callers, whose forms differ.
char* FormatNonNaN(char* buf, double value) {
  if (std::isinf(value)) return Copy(buf, value > 0 ? "INF" : "-INF");
  return std::to_chars(buf, buf + kNumberChars, value).ptr;
}

}  // namespace

char* FormatExact(char* buf, double value) {
  if (!std::isnan(value)) return FormatNonNaN(buf, value);
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  if (bits == kDefaultNaNBits) return Copy(buf, "NaN");
  char* p = Copy(buf, "NaN(0x");
  for (int shift = 60; shift >= 0; shift -= 4) {
    *p++ = "0123456789abcdef"[(bits >> shift) & 0xf];
  }
  *p++ = ')';
  return p;
}

char* FormatAttribute(char* buf, double value) {
  if (std::isnan(value)) return Copy(buf, "NaN");
  constexpr double kExactIntegers = 9007199254740992.0;  // 2^53
  if (std::fabs(value) <= kExactIntegers && std::trunc(value) == value) {
    return std::to_chars(buf, buf + kNumberChars, static_cast<long long>(value))
        .ptr;
  }
  return FormatNonNaN(buf, value);
}

}  // namespace internal
}  // namespace KvXML_850
