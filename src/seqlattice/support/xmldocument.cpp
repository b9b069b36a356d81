#include "seqlattice/support/xmldocument.h"

#include <utility>

#include "seqlattice/support/internal/xmlnumber.h"

namespace KvXML_850 {
namespace {

// The document is built up in text and handed to the stream in pieces of
// about this size, so that a large tree costs few stream calls and little
// extra memory.
constexpr std::size_t kChunk = 1 << 16;

void AppendEscaped(std::string& text, const std::string& value) {
  for (const char c : value) {
    switch (c) {
      case '&':
        text += "&amp;";
        break;
      case '<':
        text += "&lt;";
        break;
      case '>':
        text += "&gt;";
        break;
      case '"':
        text += "&quot;";
        break;
      case '\'':
        text += "&apos;";
        break;
      // An XML parser would turn these into spaces if written as they are.
      case '\t':
        text += "&#9;";
        break;
      case '\n':
        text += "&#10;";
        break;
      case '\r':
        text += "&#13;";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          text += "\xEF\xBF\xBD";  // U+FFFD: XML 1.0 cannot hold the others
        } else {
          text += c;
        }
    }
  }
}

class TreeWriter {
 public:
  TreeWriter(std::ostream& out, bool indent) : out_(out), indent_(indent) {}

  void Element(const XMLElement& element, int level) {
    if (indent_) text_.append(2 * level, ' ');
    text_ += '<';
    text_ += element.GetName();
    for (const auto& [name, value] : element.GetAttributes()) {
      text_ += ' ';
      text_ += name;
      text_ += "=\"";
      AppendEscaped(text_, value);
      text_ += '"';
    }
    if (element.GetChildren().empty()) {
      text_ += "/>";
      EndLine();
      return;
    }
    text_ += '>';
    EndLine();
    for (const auto& child : element.GetChildren()) Element(*child, level + 1);
    if (indent_) text_.append(2 * level, ' ');
    text_ += "</";
    text_ += element.GetName();
    text_ += '>';
    EndLine();
  }

  // Ends the document with a line break and hands the rest to the stream.
  void Finish() {
    if (!indent_) text_ += '\n';
    out_.write(text_.data(), text_.size());
  }

 private:
  void EndLine() {
    if (indent_) text_ += '\n';
    if (text_.size() >= kChunk) {
      out_.write(text_.data(), text_.size());
      text_.clear();
    }
  }

  std::ostream& out_;
  bool indent_;
  std::string text_;
};

// A system identifier cannot hold both quote characters; the rarer case of
// both present percent-encodes the double quote, as a URI may.
void WriteDocType(std::ostream& out, const XMLDocType& docType) {
  const std::string& id = docType.GetSystemId();
  out << "<!DOCTYPE " << docType.GetRootName() << " SYSTEM ";
  if (id.find('"') != std::string::npos && id.find('\'') == std::string::npos) {
    out << '\'' << id << "'>\n";
    return;
  }
  out << '"';
  for (const char c : id) {
    if (c == '"') {
      out << "%22";
    } else {
      out << c;
    }
  }
  out << "\">\n";
}

}  // namespace

XMLElement* XMLElement::Create(const std::string& name) {
  return new XMLElement(name);
}

XMLElement::~XMLElement() = default;

void XMLElement::AddAttribute(const std::string& name,
                              const std::string& value) {
  for (auto& attribute : attributes_) {
    if (attribute.first == name) {
      attribute.second = value;
      return;
    }
  }
  attributes_.emplace_back(name, value);
}

void XMLElement::AddAttribute(const std::string& name, double value) {
  char text[internal::kNumberChars];
  AddAttribute(name, std::string(text, internal::FormatAttribute(text, value)));
}

XMLElement* XMLElement::AddChild(XMLElement* child) {
  std::unique_ptr<XMLElement> owned(child);
  if (owned) children_.push_back(std::move(owned));
  return child;
}

XMLDocType* XMLDocType::Create(const std::string& rootName,
                               const std::string& systemId, int /*kind*/) {
  return new XMLDocType(rootName, systemId);
}

bool WriteTree(std::ostream& out, const XMLDocType* docType,
               const XMLElement* root, bool indent) {
  out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  if (docType != nullptr) WriteDocType(out, *docType);
  if (root != nullptr) {
    TreeWriter writer(out, indent);
    writer.Element(*root, 0);
    writer.Finish();
  }
  return out.good();
}

}  // namespace KvXML_850
