// What a dictionary must keep to before it goes into a file, and after it comes from one.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "standalone/data/table.h"

namespace standalone {

/// What is wrong with a table's dictionary or documents; empty when they are sound: at least one variable,
/// legal and unique names, formats that fit the types, texts in UTF-8 without NUL, values of the variable's
/// type, finite numbers.
std::string DictionaryFault(const Table& table);

/// A name in quotes for a message, invalid bytes and excess characters replaced.
std::string QuotedName(std::string_view name);

/// What to say of a case's value (row from 0) that no file can hold: a number that isn't finite, a text that
/// isn't UTF-8 or holds a NUL.
std::string BadNumberClause(const Column& column, std::size_t row);
std::string BadTextClause(const Column& column, std::size_t row);

}  // namespace standalone
