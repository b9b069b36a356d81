#include "resultcolumns.h"

#include <pybind11/numpy.h>

#include <string>
#include <unordered_map>

namespace seqlattice_python {

namespace py = pybind11;
using seqlattice_cli::Json;

namespace {

class LabelCache {
 public:
  py::str get(const std::string& label) {
    auto found = strings_.find(label);
    if (found != strings_.end()) return found->second;
    py::str text(label);
    strings_.emplace(label, text);
    return text;
  }

  py::object value(const Json& cell) {
    if (cell.is_string()) return get(cell.get_ref<const std::string&>());
    if (cell.is_number_integer()) return py::int_(cell.get<long long>());
    if (cell.is_number()) return py::float_(cell.get<double>());
    if (cell.is_array()) {
      py::tuple tuple(cell.size());
      for (std::size_t i = 0; i < cell.size(); ++i) tuple[i] = value(cell[i]);
      return std::move(tuple);
    }
    return py::none();
  }

 private:
  std::unordered_map<std::string, py::str> strings_;
};

template <class T, class Get>
py::array_t<T> numericColumn(const std::vector<std::vector<Json>>& rows,
                             std::size_t column, Get get) {
  py::array_t<T> values(static_cast<py::ssize_t>(rows.size()));
  T* out = values.mutable_data();
  for (std::size_t r = 0; r < rows.size(); ++r) out[r] = get(rows[r][column]);
  return values;
}

}  // namespace

py::object cellValue(const Json& cell) { return LabelCache().value(cell); }

py::dict resultColumns(const seqlattice_cli::ResultTable& table) {
  const auto& rows = table.cells();
  LabelCache cache;
  py::dict columns;
  for (std::size_t c = 0; c < table.columns().size(); ++c) {
    bool integers = !rows.empty();
    bool numbers = !rows.empty();
    for (const auto& row : rows) {
      integers = integers && row[c].is_number_integer();
      numbers = numbers && row[c].is_number();
    }
    py::str name(table.columns()[c]);
    if (integers) {
      columns[name] = numericColumn<std::int64_t>(
          rows, c, [](const Json& cell) { return cell.get<std::int64_t>(); });
    } else if (numbers) {
      columns[name] = numericColumn<double>(
          rows, c, [](const Json& cell) { return cell.get<double>(); });
    } else {
      py::list values(rows.size());
      for (std::size_t r = 0; r < rows.size(); ++r) {
        values[r] = cache.value(rows[r][c]);
      }
      columns[name] = std::move(values);
    }
  }
  return columns;
}

}  // namespace seqlattice_python
