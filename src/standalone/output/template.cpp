#include "standalone/output/template.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "standalone/text/ascii.h"
#include "standalone/text/utf8.h"

namespace standalone {

namespace {

/// The number at `at` (at most two digits, which is more than any template uses), moving past it; 0 when none
/// is there.
std::size_t ReadIndex(std::string_view text, std::size_t& at) {
  std::size_t value = 0;
  const std::size_t end = std::min(text.size(), at + 2);
  while (at < end && IsDigit(text[at]))
    value = value * 10 + static_cast<std::size_t>(text[at++] - '0');
  return value;
}

struct ListGroup {
  std::string_view first, rest;
  std::size_t argument = 0;
  std::size_t end = 0;  // just behind the group
};

/// The group that opens at `at`, or nothing when the bracket is an ordinary one.
std::optional<ListGroup> ReadGroup(std::string_view text, std::size_t at) {
  const std::size_t colon = text.find(':', at + 1);
  if (colon == std::string_view::npos) return std::nullopt;
  const std::size_t close = text.find(":]", colon + 1);
  if (close == std::string_view::npos) return std::nullopt;
  ListGroup group;
  group.first = text.substr(at + 1, colon - at - 1);
  group.rest = text.substr(colon + 1, close - colon - 1);
  group.end = close + 2;
  group.argument = ReadIndex(text, group.end);
  if (group.argument == 0) return std::nullopt;
  return group;
}

std::size_t WidthOf(std::string_view pattern, char mark) {
  std::size_t width = 0;
  for (std::size_t i = 0; i < pattern.size();) {
    if (pattern[i++] == mark) width = std::max(width, ReadIndex(pattern, i));
  }
  return width;
}

void AppendPattern(std::string& out, std::string_view pattern, char mark,
                   const std::vector<std::string>& list, std::size_t start) {
  for (std::size_t i = 0; i < pattern.size();) {
    std::size_t next = i + 1;
    const std::size_t index = pattern[i] == mark ? ReadIndex(pattern, next) : 0;
    if (index == 0) {
      out += pattern[i++];
      continue;
    }
    if (start + index - 1 < list.size()) out += list[start + index - 1];
    i = next;
  }
}

void AppendList(std::string& out, const ListGroup& group, const std::vector<std::string>& list) {
  if (list.empty()) return;
  AppendPattern(out, group.first, '%', list, 0);
  const std::size_t step = WidthOf(group.rest, '^');
  if (step == 0) return;
  for (std::size_t at = WidthOf(group.first, '%'); at < list.size(); at += step) {
    AppendPattern(out, group.rest, '^', list, at);
  }
}

void AppendSingle(std::string& out, const TemplateArgument& argument) {
  if (const auto* text = std::get_if<std::string>(&argument)) {
    out += *text;
    return;
  }
  bool isFirst = true;
  for (const std::string& element : std::get<std::vector<std::string>>(argument)) {
    if (!isFirst) out += ", ";
    out += element;
    isFirst = false;
  }
}

std::vector<std::string> AsList(const TemplateArgument& argument) {
  if (const auto* text = std::get_if<std::string>(&argument)) return {*text};
  return std::get<std::vector<std::string>>(argument);
}

}  // namespace

std::string FillTemplate(std::string_view text, const std::vector<TemplateArgument>& arguments) {
  std::string out;
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] == '[') {
      if (const auto group = ReadGroup(text, i)) {
        if (group->argument <= arguments.size())
          AppendList(out, *group, AsList(arguments[group->argument - 1]));
        i = group->end;
        continue;
      }
    } else if (text[i] == '^') {
      std::size_t next = i + 1;
      if (const std::size_t index = ReadIndex(text, next); index > 0) {
        if (index <= arguments.size()) AppendSingle(out, arguments[index - 1]);
        i = next;
        continue;
      }
    }
    out += text[i++];
  }
  return out;
}

std::string MessageArgument(std::string text) {
  // Above the longest names of files and variables, so that only what is no name is cut.
  constexpr std::size_t kLongest = 1000;
  constexpr std::size_t kHalf = 200;
  if (text.size() <= kLongest) return text;
  std::size_t tail = text.size() - kHalf;
  while (tail < text.size() && (static_cast<unsigned char>(text[tail]) & 0xC0) == 0x80)
    ++tail;
  return std::string(CutText(text, kHalf)) + " ... " + text.substr(tail);
}

std::string FillMessage(std::string_view text, std::vector<TemplateArgument> arguments) {
  for (TemplateArgument& argument : arguments) {
    if (auto* single = std::get_if<std::string>(&argument)) {
      *single = MessageArgument(std::move(*single));
      continue;
    }
    for (std::string& element : std::get<std::vector<std::string>>(argument))
      element = MessageArgument(std::move(element));
  }
  return FillTemplate(text, arguments);
}

}  // namespace standalone
