#include "standalone/output/renderers.h"

#include <filesystem>

#include "standalone/text/ascii.h"

namespace standalone {

std::optional<OutputFormat> FormatOfName(std::string_view name) {
  if (name == "text") return OutputFormat::kText;
  if (name == "markdown") return OutputFormat::kMarkdown;
  if (name == "html") return OutputFormat::kHtml;
  if (name == "json") return OutputFormat::kJson;
  return std::nullopt;
}

std::optional<OutputFormat> FormatOfFile(std::string_view path) {
  const std::string ending = UpperOf(std::filesystem::path(path).extension().string());
  if (ending == ".TXT") return OutputFormat::kText;
  if (ending == ".MD") return OutputFormat::kMarkdown;
  if (ending == ".HTML" || ending == ".HTM") return OutputFormat::kHtml;
  if (ending == ".JSON") return OutputFormat::kJson;
  return std::nullopt;
}

void Render(std::ostream& out, const Document& document, OutputFormat format, const TextOptions& options) {
  switch (format) {
    case OutputFormat::kText:
      RenderText(out, document, options);
      break;
    case OutputFormat::kMarkdown:
      RenderMarkdown(out, document);
      break;
    case OutputFormat::kHtml:
      RenderHtml(out, document);
      break;
    case OutputFormat::kJson:
      RenderJson(out, document);
      break;
  }
}

}  // namespace standalone
