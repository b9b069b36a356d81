// The report page's source files (cli/report/), embedded when the tool is
// built: cli/report/embed.cmake writes them into a generated source file as
// raw string literals, so the page stays editable as HTML, CSS and
// JavaScript and the tool needs no file beside it at run time.
#ifndef SEQLATTICE_CLI_SUPPORT_REPORTASSETS_H_
#define SEQLATTICE_CLI_SUPPORT_REPORTASSETS_H_

namespace seqlattice_cli {

// report.html, with the markers {{TITLE}}, {{STYLE}}, {{DATA}} and
// {{SCRIPT}} where the other parts go.
extern const char kReportPage[];
// report.css
extern const char kReportStyle[];
// report.js
extern const char kReportScript[];

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_REPORTASSETS_H_
