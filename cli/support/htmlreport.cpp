#include "support/htmlreport.h"

#include <stdexcept>
#include <string>

#include "support/reportassets.h"

namespace seqlattice_cli {

namespace {

std::string htmlText(const std::string& text) {
  std::string result;
  for (char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

// JSON inside a script element: "<" only occurs within strings, where
// \u003c means the same, and without it no "</script" or "<!--" can appear.
std::string scriptJson(const Json& data) {
  const std::string text =
      data.dump(-1, ' ', false, Json::error_handler_t::replace);
  std::string result;
  result.reserve(text.size());
  for (char c : text) {
    if (c == '<') {
      result += "\\u003c";
    } else {
      result += c;
    }
  }
  return result;
}

std::string part(const std::string& marker, const Json& data) {
  if (marker == "TITLE") return htmlText(data["title"].get<std::string>());
  if (marker == "STYLE") return kReportStyle;
  if (marker == "SCRIPT") return kReportScript;
  if (marker == "DATA") return scriptJson(data);
  throw std::logic_error("report page: unknown marker {{" + marker + "}}");
}

}  // namespace

void writeHtmlReport(std::ostream& out, const Json& data) {
  const std::string page = kReportPage;
  std::size_t done = 0;
  for (std::size_t open = page.find("{{"); open != std::string::npos;
       open = page.find("{{", done)) {
    const std::size_t close = page.find("}}", open);
    if (close == std::string::npos) break;
    out << page.substr(done, open - done)
        << part(page.substr(open + 2, close - open - 2), data);
    done = close + 2;
  }
  out << page.substr(done);
}

}  // namespace seqlattice_cli
