// An in-memory XML document tree for the model exports: elements with
// attributes in the order of adding and child elements, a document type, and
// WriteTree, which writes the whole document at once.
//
// Ownership: XMLElement::Create and XMLDocType::Create return new heap
// objects that the caller owns and releases with plain delete (or hands to a
// std::unique_ptr). AddChild adopts its argument: deleting the root deletes
// the whole tree. A child must not be added twice, to two parents, or below
// itself. Nothing here is safe to share between threads while it is changed.
//
// Text forms: attribute values are escaped (& < > " ' and the white-space
// characters that an XML parser would otherwise normalise); other control
// characters, which XML 1.0 cannot hold, become U+FFFD. Number attributes are
// written as whole numbers when they are whole and within +-2^53 ("3", and
// "0" for -0), otherwise in the shortest form that reads back exactly
// ("0.25", "1e-07"), and as "NaN", "INF" and "-INF" when not finite.
// Element and attribute names are written as given: callers pass XML names.
#ifndef SEQLATTICE_SUPPORT_XMLDOCUMENT_H_
#define SEQLATTICE_SUPPORT_XMLDOCUMENT_H_

#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace KvXML_850 {

class XMLElement {
 public:
  static XMLElement* Create(const std::string& name);
  ~XMLElement();
  XMLElement(const XMLElement&) = delete;
  XMLElement& operator=(const XMLElement&) = delete;

  // Attributes keep the order of adding. Adding a name again replaces its
  // value in place, since an element cannot hold one attribute twice.
  void AddAttribute(const std::string& name, const std::string& value);
  void AddAttribute(const std::string& name, double value);
  // Appends child as the last child and takes ownership of it, even when
  // this throws. Returns child so that a caller can fill it on; a null child
  // is ignored.
  XMLElement* AddChild(XMLElement* child);

  const std::string& GetName() const { return name_; }
  // Names and values, numbers already in their text form, not yet escaped.
  const std::vector<std::pair<std::string, std::string>>& GetAttributes()
      const {
    return attributes_;
  }
  const std::vector<std::unique_ptr<XMLElement>>& GetChildren() const {
    return children_;
  }

 private:
  explicit XMLElement(const std::string& name) : name_(name) {}

  std::string name_;
  std::vector<std::pair<std::string, std::string>> attributes_;
  std::vector<std::unique_ptr<XMLElement>> children_;
};

// The document type line <!DOCTYPE rootName SYSTEM "systemId">.
class XMLDocType {
 public:
  // kind is reserved for other kinds of document type; callers pass 0.
  static XMLDocType* Create(const std::string& rootName,
                            const std::string& systemId, int kind);

  const std::string& GetRootName() const { return rootName_; }
  const std::string& GetSystemId() const { return systemId_; }

 private:
  XMLDocType(const std::string& rootName, const std::string& systemId)
      : rootName_(rootName), systemId_(systemId) {}

  std::string rootName_;
  std::string systemId_;
};

// Writes the XML declaration (version 1.0, UTF-8), the document type line
// when docType is not null, and the tree below root when root is not null.
// With indent, every element starts a line indented two spaces per level;
// without, the tree is written on one line. Either way the document ends with
// a line break. Returns whether the stream is still good afterwards; the
// stream is not flushed.
bool WriteTree(std::ostream& out, const XMLDocType* docType,
               const XMLElement* root, bool indent);

}  // namespace KvXML_850

#endif  // SEQLATTICE_SUPPORT_XMLDOCUMENT_H_
