// CsvRecords splits delimited text (CSV, TSV) into records of fields.
//
// The dialect is the common one: a field may be quoted with '"', and inside
// quotes "" stands for one quote and the delimiter and line breaks are plain
// text. Spaces around a field are dropped (inside quotes they are kept);
// a quote inside an unquoted field is kept as text (12" pipe). Lines may end
// in LF or CRLF, a UTF-8 byte order mark before the first line is skipped,
// and blank lines are skipped wherever they are.
//
// The reader borrows the stream, which must outlive it. Not thread-safe.
#ifndef SEQLATTICE_INPUT_CSVRECORDS_H_
#define SEQLATTICE_INPUT_CSVRECORDS_H_

#include <istream>
#include <string>
#include <vector>

namespace SEQUENCE_NAMESPACE_800 {
namespace input {

class CsvRecords {
 public:
  // fileName only labels the messages of the InputError it throws.
  CsvRecords(std::istream& in, std::string fileName, char delimiter);

  // Reads the next record into fields (replacing what they held); false at
  // the end of the input. Throws InputError for an unterminated quote or
  // text after a closing quote, and when the stream fails to read.
  bool next(std::vector<std::string>& fields);

  // The line on which the last record read begins, counted from 1.
  long line() const { return recordLine_; }

  const std::string& fileName() const { return fileName_; }

 private:
  bool readLine();
  [[noreturn]] void fail(long line, const std::string& problem) const;

  std::istream& in_;
  std::string fileName_;
  char delimiter_;
  std::string text_;  // the current physical line, without its line break
  long lineNumber_ = 0;
  long recordLine_ = 0;
};

}  // namespace input
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_INPUT_CSVRECORDS_H_
