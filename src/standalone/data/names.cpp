#include "standalone/data/names.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

#include "host/data.h"
#include "standalone/text/ascii.h"
#include "standalone/text/utf8.h"

namespace standalone {

namespace {

constexpr std::size_t kLongestName = 64;  // bytes
constexpr std::array<std::string_view, 4> kReservedWords = {"ALL", "BY", "TO", "WITH"};

bool IsNameStart(char c) {
  const char upper = UpperOf(c);
  return (upper >= 'A' && upper <= 'Z') || c == '@' || c == '#' || c == '$' ||
         static_cast<unsigned char>(c) > 127;
}

bool IsNameCharacter(char c) {
  return IsNameStart(c) || IsDigit(c) || c == '.' || c == '_';
}

bool IsReservedWord(std::string_view name) {
  return std::any_of(kReservedWords.begin(), kReservedWords.end(),
                     [name](std::string_view word) { return IsSameWord(word, name); });
}

/// A legal name from a header text; `place` counts from 1 and names a column without a text.
std::string MakeLegal(std::string_view header, std::size_t place) {
  if (header.empty()) return "V" + std::to_string(place);
  // A header may be as long as its file; what lies that far behind is cut off in any case.
  std::string name(CutText(header, 4 * kLongestName));
  std::replace_if(
      name.begin(), name.end(), [](char c) { return !IsNameCharacter(c); }, '_');
  if (!IsNameStart(name.front())) name.insert(name.begin(), 'V');
  name = CutText(name, kLongestName);
  if (name.back() == '.') name.back() = '_';
  if (IsReservedWord(name)) name += '_';
  return name;
}

/// Names in use, in upper case, with the counters of the numbers put behind names that were taken.
class NameRegister {
 public:
  bool Take(std::string_view name) { return fTaken.insert(UpperOf(name)).second; }

  /// The name, or the name with the first free number behind it.
  std::string TakeWithNumber(const std::string& name) {
    if (Take(name)) return name;
    std::size_t& number = fNumbers[UpperOf(name)];
    for (;;) {
      const std::string suffix = "_" + std::to_string(++number);
      std::string candidate = std::string(CutText(name, kLongestName - suffix.size())) + suffix;
      if (Take(candidate)) return candidate;
    }
  }

 private:
  std::unordered_set<std::string> fTaken;
  std::unordered_map<std::string, std::size_t> fNumbers;
};

}  // namespace

NameList MakeNames(const std::vector<std::string>& headers) {
  NameList list;
  list.names.resize(headers.size());
  NameRegister names;
  // Legal names first, so that no made-up name takes one that the file uses further on.
  for (std::size_t i = 0; i < headers.size(); ++i) {
    if (host::ValidateVORNName(headers[i]) && names.Take(headers[i])) list.names[i] = headers[i];
  }
  for (std::size_t i = 0; i < headers.size(); ++i) {
    if (!list.names[i].empty()) continue;
    list.names[i] = names.TakeWithNumber(MakeLegal(headers[i], i + 1));
    list.renamed.push_back(i);
  }
  return list;
}

}  // namespace standalone

namespace host {

std::string GetUpperVarName(std::string_view name) {
  return standalone::UpperOf(name);
}

std::string VORN_Variable::GetUpperCaseName() const {
  return GetUpperVarName(fName);
}

bool operator==(const VornVarName& a, const VornVarName& b) {
  return standalone::IsSameWord(a.fName, b.fName);
}

bool ValidateVORNName(std::string_view name) {
  if (name.empty() || name.size() > standalone::kLongestName) return false;
  if (!standalone::IsNameStart(name.front()) || name.back() == '.') return false;
  return std::all_of(name.begin(), name.end(), standalone::IsNameCharacter) &&
         !standalone::IsReservedWord(name);
}

}  // namespace host
