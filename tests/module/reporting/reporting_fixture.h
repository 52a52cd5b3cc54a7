// Tables of commands over the small survey, and how tests look into them.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "module_run.h"
#include "output_query.h"

namespace tavo {

using test_support::FindCell;
using test_support::ModuleRun;
using test_support::NumberAt;
using test_support::T;

using Labels = std::vector<std::string>;

/// The labels of a dimension's categories, each by its own text.
inline Labels CategoriesOf(const standalone::PivotDimension& dimension) {
  Labels labels;
  for (const int category : dimension.Categories()) {
    labels.push_back(dimension.labels[static_cast<std::size_t>(category)].text);
  }
  return labels;
}

/// The same, each with its groups, joined by "/".
inline Labels PathsOf(const standalone::PivotDimension& dimension) {
  Labels labels;
  for (const int category : dimension.Categories()) {
    std::string path;
    for (const std::string& label : dimension.Path(category))
      path += (path.empty() ? "" : "/") + label;
    labels.push_back(path);
  }
  return labels;
}

inline const standalone::PivotDimension& DimensionOf(const standalone::PivotTable& table,
                                                     const std::string& label) {
  for (const standalone::PivotDimension& dimension : table.dimensions) {
    if (dimension.Label() == label) return dimension;
  }
  throw std::runtime_error("no dimension " + label);
}

/// Notes of the label of that text in a dimension.
inline Labels NotesOf(const standalone::PivotDimension& dimension, const std::string& text) {
  for (const standalone::PivotLabel& label : dimension.labels) {
    if (label.text == text) return label.notes;
  }
  return {"no such label"};
}

inline Labels CellNotes(const standalone::PivotTable* table, const Labels& row, const Labels& column) {
  const standalone::PivotCell* cell = FindCell(table, row, column);
  return cell == nullptr ? Labels{"no such cell"} : cell->notes;
}

/// True when the cell is there and holds a missing number.
inline bool IsMissingAt(const standalone::PivotTable* table, const Labels& row, const Labels& column) {
  const standalone::PivotCell* cell = FindCell(table, row, column);
  const auto* number = cell == nullptr ? nullptr : std::get_if<host::BpNumber>(&cell->content);
  return number != nullptr && number->value == host::kSystemMissing;
}

inline host::BpFormatSpec::Kind FormatAt(const standalone::PivotTable* table, const Labels& row,
                                         const Labels& column) {
  return std::get<host::BpNumber>(FindCell(table, row, column)->content).format.kind;
}

class Reporting : public ::testing::Test {
 protected:
  /// The table of that id; the test fails without it.
  const standalone::PivotTable* Table(const std::string& id) {
    const standalone::PivotTable* table = fRun.Output().FindTable(id);
    EXPECT_NE(table, nullptr) << id;
    return table;
  }
  std::string Caption(const std::string& id) {
    const standalone::PivotTable* table = Table(id);
    return table == nullptr ? "no such table" : table->caption;
  }

  ModuleRun fRun;
};

}  // namespace tavo
