// LineReader hands out the lines of a text input with their numbers (from
// 1), a UTF-8 byte order mark before the first line taken off, for the
// readers of line formats. It holds a reference to the stream.
#ifndef SEQLATTICE_INPUT_INTERNAL_LINEREADER_H_
#define SEQLATTICE_INPUT_INTERNAL_LINEREADER_H_

#include <istream>
#include <string>

namespace SEQUENCE_NAMESPACE_800 {
namespace input {
namespace internal {

class LineReader {
 public:
  explicit LineReader(std::istream& in) : in_(in) {}

  // The next line in *line; false at the end of the input.
  bool next(std::string* line) {
    if (!std::getline(in_, *line)) return false;
    if (++number_ == 1 && line->compare(0, 3, "\xEF\xBB\xBF") == 0) {
      line->erase(0, 3);
    }
    return true;
  }
  long number() const { return number_; }

 private:
  std::istream& in_;
  long number_ = 0;
};

}  // namespace internal
}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_INPUT_INTERNAL_LINEREADER_H_
