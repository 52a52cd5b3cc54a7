// From the output document to what a person or a program reads. A renderer changes nothing in the document.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

#include "standalone/output/document.h"

namespace standalone {

enum class OutputFormat { kText, kMarkdown, kHtml, kJson };

/// The format of a name (text, markdown, html, json), or nothing.
std::optional<OutputFormat> FormatOfName(std::string_view name);
/// The format that a file's ending says (.txt, .md, .html, .htm, .json; in any case), or nothing.
std::optional<OutputFormat> FormatOfFile(std::string_view path);

struct TextOptions {
  std::size_t width =
      120;  // columns; a wider table is split into blocks of columns that repeat the row labels
  /// The reader has seen the messages as they came, right above the text: it only counts them.
  bool messagesStandAbove = false;
};

/// Tables with aligned columns.
void RenderText(std::ostream& out, const Document& document, const TextOptions& options = {});
/// One table, as RenderText prints it: title, grid, caption and footnotes.
void RenderTextTable(std::ostream& out, const PivotTable& table, std::size_t width = TextOptions().width);
/// Headings and tables in the dialect with tables; markup inside texts is escaped.
void RenderMarkdown(std::ostream& out, const Document& document);
/// One page that needs no other file.
void RenderHtml(std::ostream& out, const Document& document);
/// The document for programs: every number at full precision. A missing number is null.
void RenderJson(std::ostream& out, const Document& document);

/// In any format. Only the text looks at `options`: the others are kept or read by programs, and stay whole.
void Render(std::ostream& out, const Document& document, OutputFormat format,
            const TextOptions& options = {});

}  // namespace standalone
