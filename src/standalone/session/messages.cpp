#include "standalone/session/messages.h"

#include <utility>

#include "host/output.h"
#include "standalone/command/syntax_parser.h"
#include "standalone/output/catalogue.h"
#include "standalone/output/content_text.h"
#include "standalone/output/template.h"
#include "standalone/session/embedded_session.h"
#include "standalone/text/suggestion.h"

namespace standalone {

namespace {

std::string Sentence(std::string_view key, const std::vector<std::string>& arguments,
                     const MessageContext& context) {
  std::string text;
  if (!context.groupText.empty()) text = MessageArgument(CatalogueText(context.groupText)) + ": ";
  text += FillMessage(CatalogueText(key), {arguments.begin(), arguments.end()});
  if (const std::string nearest = NearestWord(context.misspelt, context.candidates); !nearest.empty()) {
    text += ' ' + FillMessage(CatalogueText("Did you mean ^1?"), {nearest});
  }
  return text;
}

}  // namespace

void SendMessage(bool isError, std::string_view key, const std::vector<std::string>& arguments,
                 const MessageContext& context) {
  Session& session = SessionScope::Current();
  Message message{isError, std::string(key), Sentence(key, arguments, context), {}, {}};
  // A plan's faults are found by a command, but their lines are those of another file: then there is no
  // place.
  if (const SourceText* source = session.Source(); source != nullptr && context.position.line > 0) {
    message.location = source->Location(context.position);
    message.excerpt = source->Excerpt(context.position);
  }
  session.AddMessage(std::move(message));
}

}  // namespace standalone

// The host's free functions and value classes have no object that could know the session: they find the
// current one, and hand it on to what they make.
namespace host {

int UniversalParser::getCommandSpecifications() {
  standalone::SessionMessageSink messages;
  standalone::SyntaxParser parser(fTokens.Tokens(), fDescriptor, fSpecification, messages);
  return parser.Parse() ? 0 : 1;
}

void ParserMessage::GenericError(std::string_view key, const std::vector<std::string>& arguments) {
  Send(key, arguments, true);
}

void ParserMessage::GenericWarning(std::string_view key, const std::vector<std::string>& arguments) {
  Send(key, arguments, false);
}

// The session stores a message with the command that runs, so the command's name and title need not travel
// with it.
void ParserMessage::Send(std::string_view key, const std::vector<std::string>& arguments, bool isError) {
  standalone::MessageContext context;
  context.groupText = std::exchange(fGroupText, {});
  context.position = std::exchange(fPosition, {});
  context.candidates = std::exchange(fCandidates, {});
  if (!context.candidates.empty() && !arguments.empty()) context.misspelt = arguments.front();
  standalone::SendMessage(isError, key, arguments, context);
}

void BpError(const BpCellText& text, BpErrorLevel level) {
  const bool isError = level == BpErrorLevel::kError;
  standalone::SessionScope::Current().AddMessage(
      {isError, standalone::KeyOf(text), standalone::MessageTextOf(text), {}, {}});
}

void AddNotes(int group, std::string_view label, const BpCellText& text) {
  standalone::SessionScope::Current().Report().AddNote(
      {group, standalone::CatalogueText(label), standalone::TextOf(text)});
}

}  // namespace host
