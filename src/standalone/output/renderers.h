// From the output document to what a person or a program reads. A renderer changes nothing in the document.
#pragma once

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

/// Tables with aligned columns. One that is wider than `width` columns is split into blocks of columns that
/// repeat the row labels.
void RenderText(std::ostream& out, const Document& document, std::size_t width = 120);
/// One table, as RenderText prints it.
void RenderTextTable(std::ostream& out, const PivotTable& table, std::size_t width = 120);
void RenderMarkdown(std::ostream& out, const Document& document);
/// One page that needs no other file.
void RenderHtml(std::ostream& out, const Document& document);
/// The document for programs: every number at full precision. A missing number is null.
void RenderJson(std::ostream& out, const Document& document);

void Render(std::ostream& out, const Document& document, OutputFormat format);

}  // namespace standalone
