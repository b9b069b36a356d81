#include "distributed.h"

#include <pybind11/stl.h>

#include <memory>
#include <set>

#include "seqlattice/input/columnreader.h"
#include "seqlattice/input/itemlabels.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/patterncounter.h"
#include "seqlattice/mining/patternrecords.h"
#include "seqlattice/recommend/sequenceindex.h"
#include "support/patternmodel.h"

namespace seqlattice_python {

namespace {

namespace py = pybind11;
namespace cli = seqlattice_cli;
namespace input = SEQUENCE_NAMESPACE_800::input;
namespace mining = SEQUENCE_NAMESPACE_800::mining;
namespace recommend = SEQUENCE_NAMESPACE_800::recommend;

// A partition's columns as the miner's database.
mining::SequenceDatabase partitionDatabase(
    const Codes& customer, const Times& time, const Codes& item,
    std::size_t customers, std::vector<std::string> itemLabels) {
  input::ColumnOptions options;
  options.memoryLimit = inputMemoryLimit();
  return input::readColumns(
             logColumns(customer, time, item, customers, std::move(itemLabels)),
             options)
      .database;
}

template <class T>
py::array_t<T> toArray(const std::vector<T>& values) {
  py::array_t<T> array(static_cast<py::ssize_t>(values.size()));
  std::copy(values.begin(), values.end(), array.mutable_data());
  return array;
}

std::vector<int> fromArray(const Records& records) {
  return std::vector<int>(records.data(), records.data() + records.size());
}

// Phase 1: the patterns of the partition at its share of the minimum
// support, with the partition's sizes and (when asked) its sequences.
// More than maxCandidates patterns (0: no limit) is a MiningError.
py::tuple minePartition(const Codes& customer, const Times& time,
                        const Codes& item, std::size_t customers,
                        std::vector<std::string> itemLabels, long minCount,
                        int maxItems, int threads, long maxCandidates,
                        bool sequences) {
  cli::MiningParameters sizes;
  mining::PatternRecords found(maxCandidates);
  std::unique_ptr<recommend::SequenceIndex> index;
  {
    py::gil_scoped_release release;
    mining::SequenceDatabase db = partitionDatabase(
        customer, time, item, customers, std::move(itemLabels));
    cli::describeDatabase(db, &sizes);
    mining::MinerOptions options;
    options.minSupport = mining::MinSupport::count(minCount);
    options.maxItems = maxItems;
    options.threads = threads;
    options.memoryBudget = mining::availableMemoryBytes() / 4 * 3;
    mining::SequenceMiner(options).mine(db, found);
    if (sequences) {
      index = std::make_unique<recommend::SequenceIndex>(db);
    }
  }
  py::dict described;
  described["customers"] = sizes.customers;
  described["transactions"] = sizes.transactions;
  described["item_occurrences"] = sizes.itemOccurrences;
  described["widest"] = sizes.maxItemsPerTransaction;
  py::object flat = py::none();
  if (index) {
    flat = py::make_tuple(toArray(index->items()), toArray(index->setStarts()),
                          toArray(index->customerStarts()));
  }
  return py::make_tuple(toArray(found.records()), found.patterns(), described,
                        flat);
}

// Phase 2: the count and first customer of every candidate in the
// partition.
py::tuple countPartition(const Codes& customer, const Times& time,
                         const Codes& item, std::size_t customers,
                         std::vector<std::string> itemLabels,
                         const Records& candidates, int threads) {
  std::vector<int> records = fromArray(candidates);
  mining::PatternCounts counts;
  {
    py::gil_scoped_release release;
    mining::SequenceDatabase db = partitionDatabase(
        customer, time, item, customers, std::move(itemLabels));
    counts = mining::PatternCounter(records).count(db, threads);
  }
  return py::make_tuple(toArray(counts.counts), toArray(counts.firstCustomers));
}

// The distinct patterns of all partitions' records, as records with count
// and first customer 0, in ascending pattern order, and their number.
py::tuple unionRecords(const std::vector<Records>& parts) {
  std::set<std::vector<int>> patterns;
  for (const Records& part : parts) {
    std::vector<int> records = fromArray(part);
    std::vector<std::size_t> starts = mining::recordStarts(records);
    for (std::size_t k = 0; k < starts.size(); ++k) {
      std::size_t end = k + 1 < starts.size() ? starts[k + 1] : records.size();
      patterns.emplace(records.begin() + static_cast<long>(starts[k]) + 2,
                       records.begin() + static_cast<long>(end));
    }
  }
  std::vector<int> out;
  for (const std::vector<int>& pattern : patterns) {
    out.push_back(0);
    out.push_back(0);
    out.insert(out.end(), pattern.begin(), pattern.end());
  }
  return py::make_tuple(toArray(out), patterns.size());
}

// The candidates whose count reaches minCount, with their counts and first
// customers, and their number.
py::tuple keepFrequent(const Records& candidates,
                       const py::array_t<std::int64_t>& counts,
                       const py::array_t<std::int64_t>& firstCustomers,
                       long minCount) {
  std::vector<int> records = fromArray(candidates);
  std::vector<std::size_t> starts = mining::recordStarts(records);
  if (static_cast<std::size_t>(counts.size()) != starts.size() ||
      static_cast<std::size_t>(firstCustomers.size()) != starts.size()) {
    throw py::value_error("one count and first customer per candidate");
  }
  std::vector<int> kept;
  long patterns = 0;
  for (std::size_t k = 0; k < starts.size(); ++k) {
    if (counts.at(static_cast<py::ssize_t>(k)) < minCount) continue;
    ++patterns;
    std::size_t end = k + 1 < starts.size() ? starts[k + 1] : records.size();
    kept.push_back(static_cast<int>(counts.at(static_cast<py::ssize_t>(k))));
    kept.push_back(
        static_cast<int>(firstCustomers.at(static_cast<py::ssize_t>(k))));
    kept.insert(kept.end(), records.begin() + static_cast<long>(starts[k]) + 2,
                records.begin() + static_cast<long>(end));
  }
  return py::make_tuple(toArray(kept), patterns);
}

template <class T>
std::vector<T> vectorOf(const py::array_t<T, py::array::c_style>& array) {
  return std::vector<T>(array.data(), array.data() + array.size());
}

// The codes the labels of a whole log take (input/itemlabels.h).
std::vector<int> itemCodes(const std::vector<std::string>& labels) {
  input::ItemLabels assigned = input::ItemLabels::assign(labels);
  std::vector<int> codes;
  codes.reserve(labels.size());
  for (const std::string& label : labels)
    codes.push_back(*assigned.codeOf(label));
  return codes;
}

}  // namespace

cli::Model modelFromRecords(const Records& records,
                            const PatternModelParts& parts) {
  std::vector<int> patterns = fromArray(records);
  cli::Model model;
  cli::MiningParameters& mining = model.mining;
  mining.minSupportIsFraction = parts.settings.minSupport.value.isFraction;
  mining.minSupport = parts.settings.minSupport.value.value;
  mining.minCount = parts.minCount;
  mining.maxItems = parts.settings.maxItems;
  mining.customers = parts.customers;
  mining.transactions = parts.transactions;
  mining.itemOccurrences = parts.itemOccurrences;
  mining.maxItemsPerTransaction = parts.maxItemsPerTransaction;
  mining.inputName = parts.inputName;
  mining.inputFormat = parts.inputFormat;
  model.items = input::ItemLabels::assign(parts.itemLabels);
  if (parts.settings.sequences && !recommend::SequenceIndex::fromFlat(
                                      parts.sequenceItems, parts.setStarts,
                                      parts.customerStarts, &model.sequences)) {
    throw py::value_error("the customers' sequences are not consistent");
  }
  cli::buildPatternModel(patterns, &model);
  return model;
}

void bindDistributed(py::module_& m) {
  py::class_<PatternModelParts>(m, "PatternModelParts")
      .def(py::init<>())
      .def_readwrite("settings", &PatternModelParts::settings)
      .def_readwrite("customers", &PatternModelParts::customers)
      .def_readwrite("min_count", &PatternModelParts::minCount)
      .def_readwrite("transactions", &PatternModelParts::transactions)
      .def_readwrite("item_occurrences", &PatternModelParts::itemOccurrences)
      .def_readwrite("widest", &PatternModelParts::maxItemsPerTransaction)
      .def_readwrite("input_name", &PatternModelParts::inputName)
      .def_readwrite("input_format", &PatternModelParts::inputFormat)
      .def_readwrite("item_labels", &PatternModelParts::itemLabels)
      .def("set_sequences",
           [](PatternModelParts& parts,
              const py::array_t<int, py::array::c_style>& items,
              const py::array_t<std::uint32_t, py::array::c_style>& setStarts,
              const py::array_t<std::uint32_t, py::array::c_style>&
                  customerStarts) {
             parts.sequenceItems = vectorOf(items);
             parts.setStarts = vectorOf(setStarts);
             parts.customerStarts = vectorOf(customerStarts);
           });
  m.def("mine_partition", &minePartition);
  m.def("count_partition", &countPartition);
  m.def("item_codes", &itemCodes);
  m.def("union_records", &unionRecords);
  m.def("keep_frequent", &keepFrequent);
}

}  // namespace seqlattice_python
