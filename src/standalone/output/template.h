// Filling the templates of the message catalogue.
//
//   ^n                 argument n, from 1
//   [first:rest:]n     argument n is a list: the first group of its elements goes through `first`, in which
//                      %k is the group's k-th element, each later group through `rest`, in which ^k is. A
//                      group is as wide as the largest index in its pattern; a pattern without an index
//                      takes no element.
//
// So "Model: [%1:, ^1:]1" with the list a, b, c gives "Model: a, b, c", and "[:^1:]1" joins the elements.
#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace standalone {

using TemplateArgument = std::variant<std::string, std::vector<std::string>>;

/// Fills a template in one go: what an argument holds is never read as a template. An argument that isn't
/// given is empty, a list in the place of a single argument is joined by ", ", a single argument in the place
/// of a list is a list of one. An empty list gives nothing. A bracket that doesn't open a list group stands
/// for itself.
std::string FillTemplate(std::string_view text, const std::vector<TemplateArgument>& arguments);

/// An argument of a message: a text that would fill the screen is cut in the middle, since its ends tell best
/// which one it is. Whatever is put into the sentence of a message goes through here.
std::string MessageArgument(std::string text);

/// The same for all arguments.
std::string FillMessage(std::string_view text, std::vector<TemplateArgument> arguments);

}  // namespace standalone
