#include "markup.h"

#include <algorithm>
#include <array>
#include <sstream>

namespace {

/// The value of an attribute of a tag, or nothing.
std::string Attribute(const std::string& tag, const std::string& name) {
  const auto at = tag.find(' ' + name + "=\"");
  if (at == std::string::npos) {
    const auto bare = tag.find(' ' + name + '=');
    if (bare == std::string::npos) return {};
    return tag.substr(bare + name.size() + 2, tag.find_first_of(" />", bare + 1) - bare - name.size() - 2);
  }
  const auto start = at + name.size() + 3;
  return tag.substr(start, tag.find('"', start) - start);
}

int Span(const std::string& tag, const std::string& name) {
  const std::string value = Attribute(tag, name);
  return value.empty() ? 1 : std::stoi(value);
}

/// Lays the cells of the rows of a table's part into a grid.
class Grid {
 public:
  void StartPart(HtmlTable& table) {
    table.rowWidths.emplace_back();
    fHeld.clear();
  }
  void StartRow() {
    fWidth = static_cast<int>(std::count_if(fHeld.begin(), fHeld.end(), [](int rows) { return rows > 0; }));
    for (int& rows : fHeld)
      rows = std::max(0, rows - 1);
  }
  void AddCell(const std::string& tag) {
    const int columns = Span(tag, "colspan");
    fWidth += columns;
    for (int i = 0; i < columns; ++i)
      fHeld.push_back(Span(tag, "rowspan") - 1);
  }
  void EndRow(HtmlTable& table) const {
    if (!table.rowWidths.empty()) table.rowWidths.back().push_back(fWidth);
  }

 private:
  std::vector<int> fHeld;  // of each cell seen: the rows below that it still fills
  int fWidth = 0;
};

bool IsVoid(const std::string& name) {
  static constexpr std::array kVoid = {"br", "hr", "img", "meta", "link", "input", "wbr", "col"};
  return std::find(kVoid.begin(), kVoid.end(), name) != kVoid.end();
}

class HtmlReader {
 public:
  explicit HtmlReader(const std::string& page) : fText(page) {}

  HtmlPage Read() {
    std::size_t place = 0;
    while (fPage.fault.empty() && place < fText.size()) {
      const auto open = fText.find('<', place);
      if (IsInBody()) fPage.text += fText.substr(place, open - place);
      if (open == std::string::npos) break;
      const auto close = fText.find('>', open);
      if (close == std::string::npos) {
        fPage.fault = "a tag that never ends";
        break;
      }
      const std::string tag = fText.substr(open + 1, close - open - 1);
      place = close + 1;
      if (tag.starts_with("!")) continue;
      tag.starts_with("/") ? End(tag.substr(1)) : Start(tag);
      if (tag == "style") place = fText.find("</style>", place);
    }
    if (fPage.fault.empty() && !fOpen.empty()) fPage.fault = fOpen.back() + " is never closed";
    return fPage;
  }

 private:
  bool IsInBody() const { return std::find(fOpen.begin(), fOpen.end(), "body") != fOpen.end(); }

  void Start(const std::string& tag) {
    const std::string name = tag.substr(0, tag.find_first_of(" /\n"));
    if (name == "figure") fPage.tables.push_back({Attribute(tag, "data-table"), {}});
    if (!fPage.tables.empty()) {
      if (name == "thead" || name == "tbody") fGrid.StartPart(fPage.tables.back());
      if (name == "tr") fGrid.StartRow();
      if (name == "td" || name == "th") fGrid.AddCell(tag);
    }
    if (!IsVoid(name)) fOpen.push_back(name);
  }

  void End(const std::string& name) {
    if (fOpen.empty() || fOpen.back() != name) {
      fPage.fault = "</" + name + "> stands in " + (fOpen.empty() ? "nothing" : fOpen.back());
      return;
    }
    fOpen.pop_back();
    if (name == "tr" && !fPage.tables.empty()) fGrid.EndRow(fPage.tables.back());
  }

  const std::string& fText;
  HtmlPage fPage;
  std::vector<std::string> fOpen;
  Grid fGrid;
};

}  // namespace

HtmlPage ReadHtml(const std::string& page) {
  return HtmlReader(page).Read();
}

std::vector<MarkdownTable> ReadMarkdownTables(const std::string& text) {
  std::vector<MarkdownTable> tables;
  std::istringstream lines(text);
  std::string title;
  bool isInTable = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("#")) title = line.substr(line.find_first_not_of("# "));
    const bool isRow = line.starts_with("|");
    if (isRow && !isInTable) tables.push_back({title, {}});
    isInTable = isRow;
    if (!isRow) continue;
    std::size_t bars = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
      if (line[i] == '\\') {
        ++i;
      } else if (line[i] == '|') {
        ++bars;
      }
    }
    tables.back().cells.push_back(bars - 1);
  }
  return tables;
}
