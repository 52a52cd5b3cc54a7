// The message catalogue: from a dictionary key to the sentence or label that a person reads, in English. The
// entries stand in one file per family; a key stands in one of them only.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "standalone/command/parser_keys.h"

namespace standalone {

/// Mistakes in the values of a command.
std::span<const CatalogueEntry> CommandCatalogue();
/// Mistakes about effects, custom tests and odds ratios.
std::span<const CatalogueEntry> ModelCatalogue();
/// Plan files, designs and joint probabilities.
std::span<const CatalogueEntry> DesignCatalogue();
/// Messages of a run: cases, fit, saved results, the host itself.
std::span<const CatalogueEntry> RunCatalogue();
/// Titles, labels, captions and notes of the tables.
std::span<const CatalogueEntry> TableCatalogue();

/// True when the catalogue has the key.
bool HasCatalogueText(std::string_view key);
/// The text of a key; a key without an entry is its own text.
std::string CatalogueText(std::string_view key);

}  // namespace standalone
