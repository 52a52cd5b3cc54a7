// Tables for tests of data files, and their comparison.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "standalone/data/table.h"

namespace sample {

/// A variable with its values, for tables written by hand. A text is padded; a number is taken as it is.
standalone::Column& AddNumbers(standalone::Table& table, const std::string& name, std::vector<double> values);
standalone::Column& AddTexts(standalone::Table& table, const std::string& name, int width,
                             const std::vector<std::string>& values);

/// A table whose variables have every attribute and whose values are the hard ones: the extremes of doubles,
/// all widths at which the number of cells changes, quotes, line ends, blanks at both ends.
standalone::Table EveryAttribute();

/// A table of random shape, attributes and values.
standalone::Table RandomTable(std::mt19937_64& random);

/// What of a table a file keeps, as text, so that two can be compared and a difference can be read. A blank
/// among the missing values of a string stands first, as their order has no meaning.
std::string Dump(const standalone::Table& table);

}  // namespace sample
