#include "standalone/data/json_check.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>

#include "standalone/text/utf8.h"

namespace standalone {

namespace {

using nlohmann::json;

constexpr int kDeepest = 32;

/// Reads characters and tells how far it has come; all copies share the count. The parser itself tells its
/// place only when it fails, and the lines of sound fields are needed too.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(const char* place, const char** shared) : fpPlace(place), fppShared(shared) {}
  reference operator*() const { return *fpPlace; }
  CountingIterator& operator++() {
    ++fpPlace;
    if (fppShared != nullptr) *fppShared = fpPlace;
    return *this;
  }
  friend bool operator==(const CountingIterator& a, const CountingIterator& b) {
    return a.fpPlace == b.fpPlace;
  }
  friend bool operator!=(const CountingIterator& a, const CountingIterator& b) { return !(a == b); }

 private:
  const char* fpPlace;
  const char** fppShared;
};

/// The reason in the parser's words, without its code and its own way to tell the place.
std::string ReasonOf(std::string_view what) {
  for (const std::string_view front : {"] ", ": "}) {
    const std::size_t found = what.find(front);
    if (found != std::string_view::npos) what.remove_prefix(found + front.size());
  }
  return Shortened(what, 120);
}

/// Follows the events of the parser; builds nothing.
class Checker final : public nlohmann::json_sax<json> {
 public:
  Checker(std::string_view text, const char* const& place) : fText(text), fpPlace(place) {}

  JsonCheck Take() { return std::move(fCheck); }

  bool null() override { return true; }
  bool boolean(bool) override { return true; }
  bool number_integer(number_integer_t) override { return true; }
  bool number_unsigned(number_unsigned_t) override { return true; }
  bool number_float(number_float_t, const string_t&) override { return true; }
  bool string(string_t&) override { return true; }
  bool binary(binary_t&) override { return true; }

  bool key(string_t& name) override {
    if (fDepth == 1) fbInFields = name == "fields";
    return true;
  }
  bool start_object(std::size_t) override {
    if (fDepth == 2 && fbInFields) fCheck.fieldLines.push_back(LineOf(fpPlace - fText.data()));
    return Enter();
  }
  bool end_object() override { return Leave(); }
  bool start_array(std::size_t) override { return Enter(); }
  bool end_array() override { return Leave(); }

  bool parse_error(std::size_t position, const std::string&,
                   const nlohmann::detail::exception& error) override {
    Fail(static_cast<std::ptrdiff_t>(position), ReasonOf(error.what()));
    return false;
  }

 private:
  bool Enter() {
    if (++fDepth <= kDeepest) return true;
    Fail(fpPlace - fText.data(), "nested deeper than " + std::to_string(kDeepest) + " levels");
    return false;
  }
  bool Leave() {
    --fDepth;
    return true;
  }
  void Fail(std::ptrdiff_t offset, std::string fault) {
    fCheck.fault = std::move(fault);
    fCheck.faultLine = LineOf(offset);
  }
  int LineOf(std::ptrdiff_t offset) {
    const auto stop =
        std::min(static_cast<std::size_t>(std::max<std::ptrdiff_t>(offset - 1, 0)), fText.size());
    // Events come in the order of the text, so each line feed is counted once.
    for (; fCounted < stop; ++fCounted)
      fLine += fText[fCounted] == '\n';
    return fLine;
  }

  std::string_view fText;
  const char* const& fpPlace;
  int fDepth = 0;
  bool fbInFields = false;
  std::size_t fCounted = 0;
  int fLine = 1;
  JsonCheck fCheck;
};

}  // namespace

JsonCheck CheckJson(std::string_view text) {
  const char* const begin = text.data();
  const char* place = begin;
  Checker checker(text, place);
  json::sax_parse(CountingIterator(begin, &place), CountingIterator(begin + text.size(), nullptr), &checker);
  return checker.Take();
}

}  // namespace standalone
