// The HTML model report as "seqlattice report" writes it: one self-contained
// page (style, script and data inline; nothing fetched, so it opens from
// disk) built from the page's source files in cli/report/, embedded in the
// tool when it is built (reportassets.h), and the report's data
// (reportdata.h).
#ifndef SEQLATTICE_CLI_SUPPORT_HTMLREPORT_H_
#define SEQLATTICE_CLI_SUPPORT_HTMLREPORT_H_

#include <ostream>
#include <string>

#include "support/output.h"

namespace seqlattice_cli {

// Writes the page for data (reportData's document). The data goes into a
// JSON script element with every "<" escaped, so no label can end the
// element; the title is escaped as HTML text.
void writeHtmlReport(std::ostream& out, const Json& data);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_HTMLREPORT_H_
