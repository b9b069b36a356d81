// Text forms of doubles shared by the XML object streaming and the document
// writer, so that both spell numbers and non-finite values alike.
#ifndef SEQLATTICE_SUPPORT_INTERNAL_XMLNUMBER_H_
#define SEQLATTICE_SUPPORT_INTERNAL_XMLNUMBER_H_

#include <cstdint>

namespace KvXML_850 {
namespace internal {

// Room for the longest text either writer produces ("NaN(0x...)" and
// "-2.2250738585072014e-308" both fit).
constexpr int kNumberChars = 32;

// The bits of the NaN written as plain "NaN".
constexpr std::uint64_t kDefaultNaNBits = 0x7ff8000000000000ULL;

// Both write into buf, which holds kNumberChars, and return the end of the
// text (no terminating zero).
//
// For the object format: every value reads back bit for bit, -0 included.
// Finite values in the shortest round-trip form, "INF", "-INF", "NaN" for the
// default NaN and "NaN(0x<16 hex digits of the bits>)" for any other NaN.
char* FormatExact(char* buf, double value);

// For document attributes: whole numbers within +-2^53 without a decimal
// point or exponent ("3", "0" for -0), other finite values in the shortest
// round-trip form, and "NaN", "INF", "-INF".
char* FormatAttribute(char* buf, double value);

}  // namespace internal
}  // namespace KvXML_850

#endif  // SEQLATTICE_SUPPORT_INTERNAL_XMLNUMBER_H_
