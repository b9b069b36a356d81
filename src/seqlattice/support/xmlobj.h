// XMLObj streams one stored object as a nested XML element: a start tag with
// the object's name, one value element per field, nested objects, an end tag.
// The writers produce it and the parsers read back exactly what was written.
//
// Element syntax (docs/xml-object-format.md, "Element syntax"): the start and
// end tags are indented two spaces per depth level below 1 and each value is
// one line, indented one level deeper, named after its type:
//     <NTSequence>
//       <long>5</long>
//       <int>-3</int>
//       <double>0.1</double>
//     </NTSequence>
// Doubles are written in the shortest form that reads back bit for bit;
// infinities are "INF"/"-INF", the default quiet NaN is "NaN" and any other
// NaN keeps its bits as "NaN(0x...)".
//
// The parsers skip white space between elements and nothing else. A parser
// that meets anything other than the expected element (another name or value
// type, a number out of range or not of the type, a truncated stream) returns
// false, leaves its output untouched and sets the stream's failbit, so later
// parses on the same stream fail as well. Parsers never throw on bad input
// and read at most a few dozen characters past the expected text.
//
// An XMLObj owns a copy of its name; it holds no stream. The name must be an
// XML name (letters, digits, '_', '-', '.'), which is not checked. Objects
// are cheap to make and not safe to share between threads only because the
// streams are not.
#ifndef SEQLATTICE_SUPPORT_XMLOBJ_H_
#define SEQLATTICE_SUPPORT_XMLOBJ_H_

#include <istream>
#include <ostream>
#include <string>

namespace KvXML_850 {

class XMLObj {
 public:
  // depth places the element in the document: 1 for the outermost object,
  // one more per level of nesting. Depths below 1 are treated as 1.
  XMLObj(std::string name, int depth);

  const std::string& GetName() const { return name_; }
  int GetDepth() const { return depth_; }

  // Writers. They write whole lines and leave error reporting to the stream's
  // state; the stream is not flushed.
  void StartObj(std::ostream& out) const;
  void WriteSubElement(std::ostream& out, int value) const;
  void WriteSubElement(std::ostream& out, long value) const;
  void WriteSubElement(std::ostream& out, double value) const;
  void EndObj(std::ostream& out) const;

  // Parsers: true when the expected element was read. On success the value
  // is stored in *value; on failure *value is left as it was.
  bool ParseStartObj(std::istream& in) const;
  bool ParseValue(std::istream& in, int* value) const;
  bool ParseValue(std::istream& in, long* value) const;
  bool ParseValue(std::istream& in, double* value) const;
  bool ParseEndObj(std::istream& in) const;

 private:
  std::string name_;
  int depth_;
};

}  // namespace KvXML_850

#endif  // SEQLATTICE_SUPPORT_XMLOBJ_H_
