#include "support/rulesgraph.h"

#include <algorithm>
#include <cstdio>
#include <map>

#include "support/clierror.h"
#include "support/dotgraph.h"
#include "support/output.h"
#include "support/printable.h"
#include "support/rulebounds.h"
#include "support/ruletable.h"

namespace seqlattice_cli {

namespace {

// The rules table's columns: rank, antecedent, consequent, then the measures.
constexpr std::size_t kAntecedent = 1;
constexpr std::size_t kConsequent = 2;

std::size_t measureColumn(const std::string& measure) {
  const std::vector<std::string> names = rulesGraphMeasures();
  return 3 +
         static_cast<std::size_t>(
             std::find(names.begin(), names.end(), measure) - names.begin());
}

bool holds(const Json& sequence, const std::string& item) {
  for (const Json& set : sequence) {
    for (const Json& label : set) {
      if (label == item) return true;
    }
  }
  return false;
}

// One item set a line, the later ones marked "then", so that a sequence
// reads top down.
std::string nodeLabel(const Json& sequence) {
  std::string text;
  for (const Json& set : sequence) {
    Json one = Json::array({set});
    text += (text.empty() ? "" : "\\nthen ") + dotEscaped(cellText(one, true));
  }
  return text;
}

std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", value);
  return text;
}

using Rows = std::vector<const std::vector<Json>*>;

// The rules drawn, and the graph's title.
Rows chosenRules(const ResultTable& table, const RulesGraphSettings& settings,
                 std::string* title) {
  const std::size_t top = static_cast<std::size_t>(settings.top);
  Rows entering;
  Rows leaving;
  for (const auto& row : table.cells()) {
    if (!settings.around) {
      if (entering.size() < top) entering.push_back(&row);
    } else if (holds(row[kConsequent], *settings.around)) {
      entering.push_back(&row);
    } else if (holds(row[kAntecedent], *settings.around)) {
      leaving.push_back(&row);
    }
  }
  if (!settings.around) {
    *title = "Rules of highest " + settings.measure + ": " +
             std::to_string(entering.size()) + " of " +
             std::to_string(table.rows());
    return entering;
  }
  *title = std::to_string(entering.size()) +
           (entering.size() == 1 ? " rule leads to " : " rules lead to ") +
           dotEscaped(*settings.around) + ", " +
           std::to_string(leaving.size()) +
           (leaving.size() == 1 ? " follows it" : " follow it") +
           "; the strongest by " + settings.measure;
  // Half of the places each; a side with fewer rules leaves its places to
  // the other.
  std::size_t in = std::min(entering.size(), (top + 1) / 2);
  const std::size_t out = std::min(leaving.size(), top - in);
  in = std::min(entering.size(), top - out);
  entering.resize(in);
  entering.insert(entering.end(), leaving.begin(), leaving.begin() + out);
  return entering;
}

}  // namespace

std::vector<std::string> rulesGraphMeasures() {
  return {"support", "confidence", "cause", "lift"};
}

void writeRulesGraph(std::ostream& out, Model& model,
                     const RulesGraphSettings& settings) {
  if (settings.around && !model.items.codeOf(*settings.around)) {
    failInput("export: the model has no item \"" + printable(*settings.around) +
              "\"");
  }
  RuleBounds bounds;
  setRuleSort(&bounds, settings.measure);
  std::vector<std::string> unknown;
  const ResultTable table =
      ruleTable(model, bounds, RuleFilters(), 0, &unknown);
  std::string title;
  const Rows rows = chosenRules(table, settings, &title);
  const std::size_t column = measureColumn(settings.measure);
  double low = 0;
  double high = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const double value = (*rows[i])[column].get<double>();
    low = i == 0 ? value : std::min(low, value);
    high = i == 0 ? value : std::max(high, value);
  }

  out << "digraph rules {\n"
      << "  graph [rankdir=LR, size=\"7.5,10\", fontname=\"Helvetica\", "
         "labelloc=t, label=\""
      << title << "\"];\n"
      << "  node [shape=box, style=rounded, fontname=\"Helvetica\"];\n"
      << "  edge [fontname=\"Helvetica\", fontsize=10, color=\"#1f5fa8\", "
         "labeldistance=2.5];\n";
  std::map<std::string, std::size_t> nodes;
  auto node = [&](const Json& sequence) {
    const std::string label = nodeLabel(sequence);
    auto [it, added] = nodes.emplace(label, nodes.size() + 1);
    if (added) {
      const bool centre = settings.around && sequence.size() == 1 &&
                          sequence[0].size() == 1 &&
                          sequence[0][0] == *settings.around;
      out << "  n" << it->second << " [label=\"" << label << "\""
          << (centre ? ", style=\"rounded,filled\", fillcolor=\"#0b4f8a\", "
                       "fontcolor=white"
                     : "")
          << "];\n";
    }
    return it->second;
  };
  for (const auto* row : rows) {
    const std::size_t from = node((*row)[kAntecedent]);
    const std::size_t to = node((*row)[kConsequent]);
    const double value = (*row)[column].get<double>();
    const double width =
        high > low ? 1.0 + 5.0 * (value - low) / (high - low) : 3.0;
    // Around an item every arrow meets its box: the values go to the far
    // ends, where the boxes keep them apart.
    const char* place = !settings.around ? "label"
                        : holds((*row)[kConsequent], *settings.around)
                            ? "taillabel"
                            : "headlabel";
    out << "  n" << from << " -> n" << to << " [penwidth=" << number(width)
        << ", " << place << "=\"" << number(value) << "\"];\n";
  }
  out << "}\n";
}

}  // namespace seqlattice_cli
