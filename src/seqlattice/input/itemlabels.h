// ItemLabels maps the item labels of a transaction file to the integer item
// codes the dictionary stores, and back.
//
// A label that is a canonical decimal integer ("42", "-7", not "007" or "+5")
// keeps its own value as code, so numeric item files mean what they say. Every
// other label is a string label and gets a non-negative code that no numeric
// label of the same file uses: the string labels, in byte order, take the
// smallest free codes in ascending order. The codes therefore depend only on
// the set of labels, never on the order of the rows.
//
// Only string labels are stored; the label of any other code is its decimal
// text. An ItemLabels is a plain value, not safe to modify from two threads.
#ifndef SEQLATTICE_INPUT_ITEMLABELS_H_
#define SEQLATTICE_INPUT_ITEMLABELS_H_

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

class ItemLabels {
 public:
  // No string labels: every code is its own label.
  ItemLabels() = default;

  // Codes for all distinct labels of one file, as described above. Duplicates
  // in `labels` are allowed and get the same code.
  static ItemLabels assign(const std::vector<std::string>& labels);

  // Restores a mapping from its string-labelled pairs (code, label), as
  // stringLabels() lists them. Throws std::invalid_argument when a code or a
  // label occurs twice, a code is negative, or a label is numeric.
  static ItemLabels fromStringLabels(
      const std::vector<std::pair<int, std::string>>& pairs);

  // The code of a label: its string code, else its numeric value unless a
  // string label holds that code; nothing for an unknown string label.
  std::optional<int> codeOf(std::string_view label) const;

  // The label of a code: its string label, else its decimal text.
  std::string labelOf(int code) const;

  // The string-labelled (code, label) pairs in ascending code order.
  std::vector<std::pair<int, std::string>> stringLabels() const;

  // Whether text is a canonical decimal int32; if so, stores it in *value.
  static bool parseNumeric(std::string_view text, int* value);

 private:
  std::map<int, std::string> labelByCode_;
  std::map<std::string, int, std::less<>> codeByLabel_;
};

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_INPUT_ITEMLABELS_H_
