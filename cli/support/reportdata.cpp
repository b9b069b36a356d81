#include "support/reportdata.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

#include "support/modelinfo.h"
#include "support/patterntable.h"
#include "support/ruletable.h"

namespace seqlattice_cli {

namespace {

// How the storage is laid out says nothing about the customers.
bool isStorageField(const std::string& field) {
  for (const char* storage : {"format", "lattice built", "levels (nLevels)",
                              "level sizes", "higher level size"}) {
    if (field == storage) return true;
  }
  return false;
}

// The four decimals the "rules" table shows are all a person reads, and keep
// the page small; JSON has no infinity (a rule that never fails has infinite
// conviction, which the page does not show).
Json rounded(const Json& value) {
  if (!value.is_number_float()) return value;
  const double x = value.get<double>();
  if (!std::isfinite(x)) return nullptr;
  return std::round(x * 1e4) / 1e4;
}

// Item labels as indexes into one shared list, so that a label repeated by a
// thousand rules is written once.
class ItemIndex {
 public:
  int of(const std::string& label) {
    auto [it, added] = index_.emplace(label, static_cast<int>(labels_.size()));
    if (added) labels_.push_back(label);
    return it->second;
  }
  // cell: an item sequence as sequenceCell gives it.
  Json sequence(const Json& cell) {
    Json sets = Json::array();
    for (const Json& set : cell) {
      Json items = Json::array();
      for (const Json& item : set) items.push_back(of(item.get<std::string>()));
      sets.push_back(std::move(items));
    }
    return sets;
  }
  Json labels() const { return labels_; }

 private:
  std::map<std::string, int> index_;
  std::vector<std::string> labels_;
};

// The time to the consequent the rules table carries for a model mined
// with gap statistics, [mean, min, max] in the table's unit, or null.
Json ruleTime(const std::vector<Json>& row, std::size_t meanColumn) {
  if (meanColumn >= row.size() || row[meanColumn].is_null()) return nullptr;
  return Json::array({rounded(row[meanColumn]), rounded(row[meanColumn + 1]),
                      rounded(row[meanColumn + 2])});
}

Json summary(const Model& model, const std::string& title) {
  Json fields = Json::array();
  for (const auto& [field, value] : modelInfo(model, title)) {
    if (!isStorageField(field)) {
      fields.push_back(Json::array({field, rounded(value)}));
    }
  }
  return fields;
}

Json frequentItems(Model& model, int top, ItemIndex* items) {
  PatternQuery query;
  query.size = 1;
  std::vector<std::string> unknown;
  const ResultTable table = patternTable(model, query, &unknown);
  Json rows = Json::array();
  for (const auto& row : table.cells()) {
    if (rows.size() == static_cast<std::size_t>(top)) break;
    // Columns pattern, items, count, support; a one-item pattern's item.
    rows.push_back(Json::array(
        {items->of(row[0][0][0].get<std::string>()), row[2], rounded(row[3])}));
  }
  return rows;
}

}  // namespace

Json reportData(Model& model, const std::string& title,
                const ReportSettings& settings) {
  ItemIndex items;
  Json frequent = frequentItems(model, settings.topItems, &items);
  std::vector<std::string> unknown;
  const ResultTable all =
      ruleTable(model, settings.bounds, RuleFilters(), 0, &unknown);
  // Columns rank, antecedent, consequent, support, confidence, cause, lift,
  // leverage, conviction.
  const auto& columns = all.columns();
  const std::size_t meanGap = static_cast<std::size_t>(
      std::find(columns.begin(), columns.end(), "mean gap") - columns.begin());
  Json rows = Json::array();
  bool hasTime = false;
  for (const auto& row : all.cells()) {
    if (rows.size() == static_cast<std::size_t>(settings.topRules)) break;
    Json time = ruleTime(row, meanGap);
    hasTime = hasTime || !time.is_null();
    rows.push_back(Json::array(
        {items.sequence(row[1]), items.sequence(row[2]), rounded(row[3]),
         rounded(row[4]), rounded(row[5]), rounded(row[6]), std::move(time)}));
  }
  Json data = Json::object();
  data["title"] = title;
  data["summary"] = summary(model, title);
  data["items"] = items.labels();
  data["frequent"] = std::move(frequent);
  data["rules"] = {{"total", all.rows()}, {"rows", std::move(rows)}};
  data["hasTime"] = hasTime;
  data["timeUnit"] = model.mining.datedTimes ? "days" : "";
  return data;
}

}  // namespace seqlattice_cli
