#include "standalone/command/syntax_parser.h"

namespace host {

int UniversalParser::getCommandSpecifications() {
  standalone::SessionMessageSink messages;
  standalone::SyntaxParser parser(fTokens.Tokens(), fDescriptor, fSpecification, messages);
  return parser.Parse() ? 0 : 1;
}

}  // namespace host
