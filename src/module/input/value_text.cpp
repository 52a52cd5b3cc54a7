#include "module/input/value_text.h"

namespace tavo {

std::string PrintedValue(const host::VORN_Variable& variable, const host::OBS* cells) {
  std::string text;
  if (cells != nullptr) host::ToString(cells, variable.GetFormat(), text);
  text.erase(text.find_last_not_of(' ') + 1);
  text.erase(0, text.find_first_not_of(' '));
  return text;
}

}  // namespace tavo
