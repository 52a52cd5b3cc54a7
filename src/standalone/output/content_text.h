// What the contents of cells, labels, notes and messages show.
#pragma once

#include <string>

#include "host/output.h"
#include "standalone/output/document.h"

namespace standalone {

/// The text of any content: keys in the words of the catalogue, templates filled, numbers by their formats,
/// variables and values as they are labelled. Carriage returns become line feeds.
std::string TextOf(const host::BpCellText& content);

/// The text of a message: as TextOf, but with its arguments cut to what a message may hold.
std::string MessageTextOf(const host::BpCellText& content);

/// The text of a label: as TextOf, but a number keeps all its digits.
std::string LabelOf(const host::BpCellText& content);

/// What tells a label from its neighbours: the text that it shows, for numbers and data values the value
/// itself.
std::string IdentityOf(const host::BpCellText& content);

/// The content for a cell of the document.
CellContent ContentOf(const host::BpCellText& content);

/// The dictionary key of a message, or the text itself when it is none.
std::string KeyOf(const host::BpCellText& content);

/// The name of a variable or its label; without a label the name.
std::string VariableText(const host::VORN_Variable& variable, host::BpShow show);

/// A value by its variable's print format, without the blanks around it.
std::string ValueText(const host::VORN_Variable& variable, const host::OBS* cells);

}  // namespace standalone
