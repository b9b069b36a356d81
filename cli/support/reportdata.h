// What the HTML model report shows, gathered as one JSON document that the
// page embeds and its script renders: the model's summary (modelinfo.h), its
// most frequent items (patterntable.h) and its strongest rules
// (ruletable.h), so the report shows exactly what "info", "patterns" and
// "rules" print. Nothing is measured twice.
//
// The document's size is bounded by the settings, not by the model: at most
// `topRules` rules (each an antecedent and a consequent of at most the
// model's largest pattern size in items, given as indexes into one list of
// item labels, and five measures rounded to four decimals) and
// `topItems` items, whatever the number of patterns. Reads the dictionary's
// counters, so it is not thread-safe (nor is the dictionary).
#ifndef SEQLATTICE_CLI_SUPPORT_REPORTDATA_H_
#define SEQLATTICE_CLI_SUPPORT_REPORTDATA_H_

#include <string>

#include "support/modelfile.h"
#include "support/output.h"
#include "support/rulebounds.h"

namespace seqlattice_cli {

struct ReportSettings {
  RuleBounds bounds;    // which rules, in which order
  int topRules = 1000;  // rules embedded in the page (table, journeys and
                        // predictions all use these)
  int topItems = 12;    // most frequent items listed
};

// The report's data:
//   title     the model's name
//   summary   [[field, value], ...] as "info" shows them (storage details
//             left out)
//   items     [label, ...], every item the rules and frequent items name
//   frequent  [[item, count, support], ...], most frequent first
//   rules     {total, rows: [[antecedent, consequent, support, confidence,
//             cause, lift, time], ...]}: antecedent and consequent are
//             arrays of item sets of item indexes; time is the mean, least
//             and greatest time from antecedent to consequent
//             ([mean, min, max]) or null when the model recorded none
//   hasTime   whether any rule carries a time
// Throws CliError (exit 1) when rule extraction or listing fails.
Json reportData(Model& model, const std::string& title,
                const ReportSettings& settings);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_REPORTDATA_H_
