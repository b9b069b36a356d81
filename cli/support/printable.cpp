#include "support/printable.h"

#include <cstdio>

namespace seqlattice_cli {

namespace {

void appendEscaped(std::string& out, unsigned char byte) {
  char code[8];
  std::snprintf(code, sizeof code, "\\x%02X", byte);
  out += code;
}

// Length of the well-formed UTF-8 sequence of two or more bytes at text[i]
// that does not encode a C1 control, or 0.
std::size_t utf8Length(const std::string& text, std::size_t i) {
  const auto at = [&](std::size_t k) {
    return static_cast<unsigned char>(text[i + k]);
  };
  const unsigned char lead = at(0);
  std::size_t length = lead >= 0xF0 && lead <= 0xF4   ? 4
                       : lead >= 0xE0 && lead <= 0xEF ? 3
                       : lead >= 0xC2 && lead <= 0xDF ? 2
                                                      : 0;
  if (length == 0 || i + length > text.size()) return 0;
  for (std::size_t k = 1; k < length; ++k) {
    if ((at(k) & 0xC0) != 0x80) return 0;
  }
  // Overlong forms, surrogates, code points above U+10FFFF, C1 controls.
  if ((lead == 0xE0 && at(1) < 0xA0) || (lead == 0xED && at(1) > 0x9F) ||
      (lead == 0xF0 && at(1) < 0x90) || (lead == 0xF4 && at(1) > 0x8F) ||
      (lead == 0xC2 && at(1) < 0xA0)) {
    return 0;
  }
  return length;
}

}  // namespace

std::string printable(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const unsigned char byte = static_cast<unsigned char>(text[i]);
    if (byte == '\t' || (byte >= 0x20 && byte < 0x7F)) {
      out += text[i++];
      continue;
    }
    const std::size_t length = byte >= 0x80 ? utf8Length(text, i) : 0;
    if (length == 0) {
      appendEscaped(out, byte);
      ++i;
      continue;
    }
    out.append(text, i, length);
    i += length;
  }
  return out;
}

}  // namespace seqlattice_cli
