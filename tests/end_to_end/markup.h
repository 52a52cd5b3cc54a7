// Reading the program's HTML and Markdown, as far as their structure goes.
#pragma once

#include <string>
#include <vector>

struct HtmlTable {
  std::string name;                         // data-table of its figure
  std::vector<std::vector<int>> rowWidths;  // of each part (head, body): the columns that each row fills
};

struct HtmlPage {
  std::string fault;  // the first tag that doesn't fit, empty when all tags are balanced
  std::vector<HtmlTable> tables;
  std::string text;  // between the tags of the body
};

/// Reads a page of tags with quoted attributes, such as the program writes.
HtmlPage ReadHtml(const std::string& page);

struct MarkdownTable {
  std::string title;               // the heading before it
  std::vector<std::size_t> cells;  // of each line
};

std::vector<MarkdownTable> ReadMarkdownTables(const std::string& text);
