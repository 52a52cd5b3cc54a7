#include "module/input/value_text.h"

#include <array>
#include <charconv>

namespace tavo {

std::string PrintedValue(const host::VORN_Variable& variable, const host::OBS* cells) {
  std::string text;
  if (cells != nullptr) host::ToString(cells, variable.GetFormat(), text);
  text.erase(text.find_last_not_of(' ') + 1);
  text.erase(0, text.find_first_not_of(' '));
  return text;
}

std::string ValueInFull(const host::VORN_Variable& variable, const host::OBS* cells) {
  if (cells == nullptr) return {};
  // Adding 0 makes -0 a 0: to the data they are one value.
  if (variable.IsNumeric()) return ShortestText(cells->number + 0.0);
  // A print format may be narrower than the variable.
  std::string value(reinterpret_cast<const char*>(cells), static_cast<std::size_t>(variable.GetType()));
  value.erase(value.find_last_not_of(' ') + 1);
  std::string text = "'";
  for (const char c : value)
    text.append(c == '\'' ? 2 : 1, c);
  return text + "'";
}

std::string ShortestText(double number) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return {digits.data(), end};
}

}  // namespace tavo
