#include "standalone/session/messages.h"

#include <algorithm>
#include <ostream>

#include "standalone/output/catalogue.h"
#include "standalone/output/content_text.h"
#include "standalone/output/message_text.h"
#include "standalone/output/template.h"
#include "standalone/session/embedded_session.h"
#include "standalone/text/suggestion.h"
#include "standalone/text/terminal_text.h"

namespace standalone {

namespace {

std::string Sentence(std::string_view key, const std::vector<std::string>& arguments,
                     const MessageContext& context) {
  std::string text;
  if (!context.groupText.empty()) text = CatalogueText(context.groupText) + ": ";
  text += FillTemplate(CatalogueText(key), {arguments.begin(), arguments.end()});
  if (const std::string nearest = NearestWord(context.misspelt, context.candidates); !nearest.empty()) {
    text += ' ' + FillTemplate(CatalogueText("Did you mean ^1?"), {nearest});
  }
  return text;
}

}  // namespace

void SendMessage(bool isError, std::string_view key, const std::vector<std::string>& arguments,
                 const MessageContext& context) {
  Session& session = SessionScope::Current();
  Message message{isError, std::string(key), Sentence(key, arguments, context), {}, {}};
  if (const SourceText* source = session.Source(); source != nullptr && context.position.line > 0) {
    message.location = source->Location(context.position);
    message.excerpt = source->Excerpt(context.position);
  }
  session.AddMessage(std::move(message));
}

void WriteMessage(std::ostream& stream, const Message& message) {
  stream << (message.isError ? "error: " : "warning: ") << WithoutControls(message.text) << '\n';
  if (!message.location.empty()) stream << "  at " << WithoutControls(message.location) << '\n';
  for (const std::string& line : LinesOf(message.excerpt))
    stream << "  | " << WithoutControls(line) << '\n';
  stream.flush();
}

}  // namespace standalone

namespace host {

void BpError(const BpCellText& text, BpErrorLevel level) {
  const bool isError = level == BpErrorLevel::kError;
  standalone::SessionScope::Current().AddMessage(
      {isError, standalone::KeyOf(text), standalone::TextOf(text), {}, {}});
}

void AddNotes(int group, std::string_view label, const BpCellText& text) {
  standalone::CommandOutput* output = standalone::SessionScope::Current().CurrentOutput();
  if (output == nullptr) return;
  auto& notes = output->notes;
  const auto place =
      std::upper_bound(notes.begin(), notes.end(), group,
                       [](int g, const standalone::CommandNote& note) { return g < note.group; });
  notes.insert(place, {group, standalone::CatalogueText(label), standalone::TextOf(text)});
}

}  // namespace host
