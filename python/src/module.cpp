// seqlattice._seqlattice: the C++ side of the Python package. It binds the
// tool's own code paths (cli/support/) rather than copies of them: a model
// is mined by mineModel, read and written by loadModel/saveModel, queried by
// ruleTable/patternTable/modelInfo and asked for predictions by
// predictHistory/predictLog, exactly as the commands do, so the package and
// the tool give the same answers and share model files.
//
// Every call that reads, mines, predicts or writes runs without the GIL; a
// model's own mutex keeps two Python threads from using one model at once
// (the dictionary is not thread-safe). Results come back as columns
// (resultcolumns.h) for the package's pandas layer (seqlattice/_model.py).
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "distributed.h"
#include "logcolumns.h"
#include "resultcolumns.h"
#include "seqlattice/input/columnreader.h"
#include "seqlattice/input/inputerror.h"
#include "seqlattice/input/timeparse.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miningerror.h"
#include "support/atomicfile.h"
#include "support/clierror.h"
#include "support/dotgraph.h"
#include "support/inputlog.h"
#include "support/itemsyntax.h"
#include "support/minemodel.h"
#include "support/modeldocuments.h"
#include "support/modelfile.h"
#include "support/modelinfo.h"
#include "support/patterntable.h"
#include "support/prediction.h"
#include "support/rulebounds.h"
#include "support/ruletable.h"

namespace seqlattice_python {

namespace {

namespace py = pybind11;
namespace cli = seqlattice_cli;
namespace input = SEQUENCE_NAMESPACE_800::input;
namespace mining = SEQUENCE_NAMESPACE_800::mining;

// A model and the file it last came from or went to ("" when only mined).
struct PyModel {
  cli::Model model;
  std::string name;
  std::mutex mutex;
};

// Runs work without the GIL, holding the model's mutex when given one.
template <class Work>
auto unlocked(PyModel* model, Work work) {
  py::gil_scoped_release release;
  if (model == nullptr) return work();
  std::lock_guard<std::mutex> lock(model->mutex);
  return work();
}

// A value a front end passes as text, parsed the way the tool parses it.
template <class T>
void setParsed(cli::Parsed<T>* target, const std::string& text,
               const std::string& name, cli::Parser<T> parse) {
  T value{};
  std::string problem = parse(text, &value);
  if (!problem.empty()) throw py::value_error(name + ": " + problem);
  target->text = text;
  target->value = value;
}

// Mines log into the model's dictionary or, given a path, as `mine
// --patterns-only` does into a pattern file (the model then holds only what
// it was mined from and with).
mining::MiningSummary mineLog(const input::LabelledDatabase& log,
                              const cli::MineSettings& settings,
                              const std::string& inputName,
                              const std::string& inputFormat,
                              const std::string& patternFile,
                              const std::string& patternFormat,
                              cli::Model* model) {
  if (patternFile.empty()) {
    return cli::mineModel(log, settings, inputName, inputFormat, model);
  }
  return cli::minePatternFile(
      log, settings, inputName, inputFormat, patternFile,
      cli::patternFormatFor(patternFile, patternFormat), model);
}

// The model and the miner's summary: customers, min count, patterns and
// patterns per size (from 1 item).
py::tuple mined(std::unique_ptr<PyModel> model,
                const mining::MiningSummary& summary) {
  py::dict counts;
  counts["customers"] = summary.customers;
  counts["min count"] = summary.minCount;
  counts["patterns"] = summary.patterns;
  std::vector<long> perSize;
  if (summary.patternsPerSize.size() > 1) {
    perSize.assign(summary.patternsPerSize.begin() + 1,
                   summary.patternsPerSize.end());
  }
  counts["patterns per size"] = perSize;
  return py::make_tuple(std::move(model), counts);
}

py::tuple mineFile(const std::string& path, const cli::InputOptions& options,
                   const cli::MineSettings& settings,
                   const std::string& patternFile,
                   const std::string& patternFormat) {
  auto result = std::make_unique<PyModel>();
  mining::MiningSummary summary = unlocked(nullptr, [&] {
    input::LabelledDatabase log = cli::loadInput(path, options);
    return mineLog(log, settings, path, cli::inputFormat(path, options),
                   patternFile, patternFormat, &result->model);
  });
  return mined(std::move(result), summary);
}

py::tuple mineColumns(const Codes& customer, const Times& time,
                      const Codes& item, std::size_t customers,
                      std::vector<std::string> itemLabels,
                      const cli::MineSettings& settings,
                      const std::string& inputName,
                      const std::string& patternFile,
                      const std::string& patternFormat, bool dated) {
  input::LogColumns columns =
      logColumns(customer, time, item, customers, std::move(itemLabels));
  auto result = std::make_unique<PyModel>();
  mining::MiningSummary summary = unlocked(nullptr, [&] {
    input::ColumnOptions options;
    options.memoryLimit = inputMemoryLimit();
    input::LabelledDatabase log =
        input::readColumns(std::move(columns), options);
    log.datedTimes = dated;
    return mineLog(log, settings, inputName, "dataframe", patternFile,
                   patternFormat, &result->model);
  });
  return mined(std::move(result), summary);
}

std::unique_ptr<PyModel> loadModel(const std::string& path) {
  auto result = std::make_unique<PyModel>();
  result->model = unlocked(nullptr, [&] { return cli::loadModel(path); });
  result->name = path;
  return result;
}

// The table and the labels of the query the model does not know.
py::tuple withUnknown(const cli::ResultTable& table,
                      const std::vector<std::string>& unknown) {
  return py::make_tuple(resultColumns(table), unknown);
}

py::tuple predictHistory(PyModel& self, const cli::LabelSets& history,
                         const cli::PredictSettings& settings) {
  std::vector<std::string> unknown;
  cli::ResultTable table = unlocked(&self, [&] {
    return cli::predictHistory(self.model, history, settings, &unknown);
  });
  return withUnknown(table, unknown);
}

py::dict predictFile(PyModel& self, const std::string& path,
                     const cli::InputOptions& options,
                     const cli::PredictSettings& settings) {
  return resultColumns(unlocked(&self, [&] {
    auto log = cli::loadInput(path, options, cli::modelItemCoder(self.model));
    return cli::predictLog(self.model, log, settings);
  }));
}

py::dict predictColumns(PyModel& self, const Codes& customer, const Times& time,
                        const Codes& item, std::size_t customers,
                        std::vector<std::string> itemLabels,
                        const cli::PredictSettings& settings) {
  input::LogColumns columns =
      logColumns(customer, time, item, customers, std::move(itemLabels));
  return resultColumns(unlocked(&self, [&] {
    input::ColumnOptions options;
    options.memoryLimit = inputMemoryLimit();
    options.itemCode = cli::modelItemCoder(self.model);
    auto log = input::readColumns(std::move(columns), options);
    return cli::predictLog(self.model, log, settings);
  }));
}

py::dict info(PyModel& self) {
  cli::InfoFields fields =
      unlocked(&self, [&] { return cli::modelInfo(self.model, self.name); });
  py::dict result;
  for (const auto& [field, value] : fields)
    result[py::str(field)] = cellValue(value);
  return result;
}

// A transaction file as the columns customer (labels), time and item (the
// codes when the file has no string labels, as an SPMF file, else labels):
// one row per item occurrence, read as mine reads the file.
py::dict readLog(const std::string& path, const cli::InputOptions& options) {
  input::LabelledDatabase log =
      unlocked(nullptr, [&] { return cli::loadInput(path, options); });
  const mining::SequenceDatabase& db = log.database;
  const auto rows = static_cast<py::ssize_t>(db.itemOccurrenceCount());
  py::list customers(rows);
  py::array_t<double> times(rows);
  py::array_t<std::int64_t> codes(rows);
  py::ssize_t row = 0;
  for (std::size_t c = 0; c < db.customerCount(); ++c) {
    py::str customer(log.customers[c]);
    for (auto t = db.firstTransaction(c); t < db.endTransaction(c); ++t) {
      for (const int* item = db.itemsBegin(t); item != db.itemsEnd(t);
           ++item, ++row) {
        customers[row] = customer;
        times.mutable_data()[row] = db.time(t);
        codes.mutable_data()[row] = *item;
      }
    }
  }
  py::dict columns;
  columns["customer"] = customers;
  columns["time"] = times;
  if (log.items.stringLabels().empty()) {
    columns["item"] = codes;
  } else {
    py::list labels(rows);
    for (py::ssize_t r = 0; r < rows; ++r) {
      labels[r] = log.items.labelOf(static_cast<int>(codes.data()[r]));
    }
    columns["item"] = labels;
  }
  return columns;
}

// Times as a transaction file writes them: per text, its value and whether
// it is a date (1), a number (0) or neither (-1).
py::tuple parseTimes(const std::vector<std::string>& texts) {
  py::array_t<double> values(static_cast<py::ssize_t>(texts.size()));
  py::array_t<std::int8_t> kinds(static_cast<py::ssize_t>(texts.size()));
  for (std::size_t i = 0; i < texts.size(); ++i) {
    auto parsed = input::parseTransactionTime(texts[i]);
    values.mutable_data()[i] = parsed ? parsed->value : 0.0;
    kinds.mutable_data()[i] = parsed ? (parsed->isDate ? 1 : 0) : -1;
  }
  return py::make_tuple(values, kinds);
}

cli::LabelSets parseItemSequence(const std::string& text) {
  cli::LabelSets sets;
  std::string problem = cli::parseItemSequence(text, &sets);
  if (!problem.empty()) throw py::value_error(problem);
  return sets;
}

void registerErrors(py::module_& m) {
  // Error is the base of the package's exceptions; InputError is also a
  // ValueError (bad data), as a caller of a parser expects.
  static py::handle error =
      PyErr_NewException("seqlattice.Error", PyExc_RuntimeError, nullptr);
  static py::handle inputError = PyErr_NewException(
      "seqlattice.InputError",
      py::make_tuple(error, py::handle(PyExc_ValueError)).release().ptr(),
      nullptr);
  static py::handle miningError =
      PyErr_NewException("seqlattice.MiningError", error.ptr(), nullptr);
  m.attr("Error") = error;
  m.attr("InputError") = inputError;
  m.attr("MiningError") = miningError;
  py::register_exception_translator([](std::exception_ptr thrown) {
    try {
      if (thrown) std::rethrow_exception(thrown);
    } catch (const input::InputError& e) {
      PyErr_SetString(inputError.ptr(), e.what());
    } catch (const mining::MiningError& e) {
      PyErr_SetString(miningError.ptr(), e.what());
    } catch (const cli::CliError& e) {
      PyErr_SetString(error.ptr(), e.what());
    } catch (const std::bad_alloc&) {
      PyErr_SetString(PyExc_MemoryError, "out of memory");
    }
  });
}

// The settings of the commands, field by field. A setting added to one of
// them (a mining time limit, a pattern budget, ...) is exposed by one
// def_readwrite here: seqlattice.mine() passes the keyword arguments it does
// not name on to MineSettings' attributes.
void bindSettings(py::module_& m) {
  py::class_<cli::MineSettings>(m, "MineSettings")
      .def(py::init<>())
      .def_property(
          "min_support",
          [](const cli::MineSettings& s) { return s.minSupport.text; },
          [](cli::MineSettings& s, const std::string& text) {
            setParsed<cli::MinSupportValue>(&s.minSupport, text, "min_support",
                                            cli::parseMinSupport);
          })
      .def_readwrite("max_patterns", &cli::MineSettings::maxPatterns)
      .def_readwrite("max_items", &cli::MineSettings::maxItems)
      .def_readwrite("max_items_given", &cli::MineSettings::maxItemsGiven)
      .def_readwrite("threads", &cli::MineSettings::threads)
      .def_readwrite("sequences", &cli::MineSettings::sequences)
      .def_readwrite("time_limit", &cli::MineSettings::timeLimit)
      .def_readwrite("progress", &cli::MineSettings::progress)
      .def_readwrite("min_gap", &cli::MineSettings::minGap)
      .def_readwrite("max_gap", &cli::MineSettings::maxGap)
      .def_readwrite("max_span", &cli::MineSettings::maxSpan)
      .def_readwrite("window", &cli::MineSettings::window)
      .def_readwrite("gap_stats", &cli::MineSettings::gapStats);

  py::class_<cli::InputOptions>(m, "InputOptions")
      .def(py::init<>())
      .def_readwrite("format", &cli::InputOptions::format)
      .def_readwrite("customer", &cli::InputOptions::customerColumn)
      .def_readwrite("time", &cli::InputOptions::timeColumn)
      .def_readwrite("item", &cli::InputOptions::itemColumn)
      .def_readwrite("skip_invalid", &cli::InputOptions::skipInvalid)
      .def_property(
          "time_format",
          [](const cli::InputOptions& o) { return o.timeFormat.text; },
          [](cli::InputOptions& o, const std::string& text) {
            setParsed<std::string>(&o.timeFormat, text, "time_format",
                                   cli::parseTimeFormat);
          })
      .def_property(
          "delimiter",
          [](const cli::InputOptions& o) { return o.delimiter.text; },
          [](cli::InputOptions& o, const std::string& text) {
            setParsed<char>(&o.delimiter, text, "delimiter",
                            cli::parseDelimiter);
          });

  py::class_<cli::PredictSettings>(m, "PredictSettings")
      .def(py::init<>())
      .def_readwrite("current", &cli::PredictSettings::current)
      .def_readwrite("last_set_only", &cli::PredictSettings::lastSetOnly)
      .def_readwrite("top", &cli::PredictSettings::top)
      .def_readwrite("rank", &cli::PredictSettings::rank)
      .def_readwrite("new_only", &cli::PredictSettings::newOnly)
      .def_readwrite("repeat_only", &cli::PredictSettings::repeatOnly)
      .def_readwrite("explain", &cli::PredictSettings::explain)
      .def_readwrite("customer", &cli::PredictSettings::customer)
      .def_readwrite("prior", &cli::PredictSettings::priorStrength)
      .def_readwrite("earlier_weight", &cli::PredictSettings::earlierSetWeight)
      .def_readwrite("sequence_weight", &cli::PredictSettings::sequenceWeight)
      .def_readwrite("context_sets", &cli::PredictSettings::contextSets)
      .def_readwrite("context_customers",
                     &cli::PredictSettings::minContextCustomers)
      .def_readwrite("max_dropped", &cli::PredictSettings::maxDropped)
      .def_readwrite("decay", &cli::PredictSettings::decay)
      .def_readwrite("next_weight", &cli::PredictSettings::nextWeight)
      .def_readwrite("popularity_power",
                     &cli::PredictSettings::popularityPower);

  py::class_<cli::RuleBounds>(m, "RuleBounds")
      .def(py::init<>())
      .def_readwrite("min_support", &cli::RuleBounds::minSupport)
      .def_readwrite("max_support", &cli::RuleBounds::maxSupport)
      .def_readwrite("min_confidence", &cli::RuleBounds::minConfidence)
      .def_readwrite("max_confidence", &cli::RuleBounds::maxConfidence)
      .def_readwrite("min_cause", &cli::RuleBounds::minCause)
      .def_readwrite("max_cause", &cli::RuleBounds::maxCause)
      .def_readwrite("maximal", &cli::RuleBounds::maximal)
      .def_property(
          "sort", [](const cli::RuleBounds& b) { return b.sortName; },
          [](cli::RuleBounds& b, const std::string& name) {
            std::vector<std::string> names = cli::ruleSortNames(true);
            if (std::find(names.begin(), names.end(), name) == names.end()) {
              throw py::value_error(
                  "sort: expected \"support\", \"confidence\", \"cause\", "
                  "\"lift\", \"leverage\" or \"conviction\", not \"" +
                  name + "\"");
            }
            cli::setRuleSort(&b, name);
          });

  py::class_<cli::RuleFilters>(m, "RuleFilters")
      .def(py::init<>())
      .def_readwrite("min_lift", &cli::RuleFilters::minLift)
      .def_readwrite("antecedent_has", &cli::RuleFilters::antecedentHas)
      .def_readwrite("consequent", &cli::RuleFilters::consequent);

  using Kind = cli::PatternQuery::Kind;
  py::enum_<Kind>(m, "PatternQueryKind")
      .value("all", Kind::kAll)
      .value("contains", Kind::kContains)
      .value("beginning", Kind::kBeginning)
      .value("ending", Kind::kEnding);
  py::class_<cli::PatternQuery>(m, "PatternQuery")
      .def(py::init<>())
      .def_readwrite("kind", &cli::PatternQuery::kind)
      .def_readwrite("sequence", &cli::PatternQuery::sequence)
      .def_readwrite("size", &cli::PatternQuery::size)
      .def_readwrite("maximal", &cli::PatternQuery::maximal)
      .def_readwrite("min_count", &cli::PatternQuery::minCount)
      .def_readwrite("max_count", &cli::PatternQuery::maxCount);
}

void bindModel(py::module_& m) {
  py::class_<PyModel>(m, "Model")
      .def_static("mine_file", &mineFile)
      .def_static("mine_columns", &mineColumns, py::arg("customer"),
                  py::arg("time"), py::arg("item"), py::arg("customers"),
                  py::arg("item_labels"), py::arg("settings"),
                  py::arg("input_name"), py::arg("pattern_file"),
                  py::arg("pattern_format"), py::arg("dated") = false)
      .def_static("from_records",
                  [](const Records& records, const PatternModelParts& parts) {
                    auto result = std::make_unique<PyModel>();
                    result->model = unlocked(nullptr, [&] {
                      return modelFromRecords(records, parts);
                    });
                    return result;
                  })
      .def_static("load", &loadModel)
      .def("save",
           [](PyModel& self, const std::string& path, bool xml) {
             unlocked(&self, [&] {
               cli::saveModel(self.model, path, xml);
               self.model.xml = xml;
               self.name = path;
             });
           })
      .def("rules",
           [](PyModel& self, const cli::RuleBounds& bounds,
              const cli::RuleFilters& filters, int top) {
             std::vector<std::string> unknown;
             cli::ResultTable table = unlocked(&self, [&] {
               return cli::ruleTable(self.model, bounds, filters, top,
                                     &unknown);
             });
             return withUnknown(table, unknown);
           })
      .def("patterns",
           [](PyModel& self, const cli::PatternQuery& query) {
             std::vector<std::string> unknown;
             cli::ResultTable table = unlocked(&self, [&] {
               return cli::patternTable(self.model, query, &unknown);
             });
             return withUnknown(table, unknown);
           })
      .def("predict_history", &predictHistory)
      .def("predict_file", &predictFile)
      .def("predict_columns", &predictColumns)
      .def("info", &info)
      .def("to_pmml",
           [](PyModel& self, const std::string& path,
              const cli::RuleBounds& bounds) {
             unlocked(&self,
                      [&] { cli::exportPmml(self.model, bounds, path); });
           })
      .def("to_lattice_xml",
           [](PyModel& self, const std::string& path, double minSupport) {
             unlocked(&self, [&] {
               cli::exportLattice(self.model, minSupport, path);
             });
           })
      .def("to_dot", [](PyModel& self, const std::string& path, int top) {
        unlocked(&self, [&] {
          cli::writeOutput(path, [&](std::ostream& out) {
            cli::writeDotGraph(out, *self.model.dictionary, self.model.items,
                               top);
          });
        });
      });
}

}  // namespace

PYBIND11_MODULE(_seqlattice, m) {
  m.doc() =
      "C++ side of the seqlattice package; use the seqlattice module, not "
      "this one.";
  registerErrors(m);
  bindSettings(m);
  bindModel(m);
  bindDistributed(m);
  m.def("read_log", &readLog);
  m.def("parse_times", &parseTimes);
  m.def("parse_item_sequence", &parseItemSequence);
}

}  // namespace seqlattice_python
