// The lines with which a matrix file says how it came about.
#pragma once

#include <string>
#include <vector>

#include "host/files.h"
#include "module/command/valid_specs.h"

namespace tavo {

/// Texts that go into a document in pieces of a given width.
class OrvRegDocumentStrings {
 public:
  /// Returns its length.
  std::size_t AddString(std::string text);
  std::size_t Count() const { return fStrings.size(); }
  const std::string& At(std::size_t index) const { return fStrings[index]; }
  /// Pieces of a string of at most `width` bytes, which never end inside a UTF-8 character: 0 for an empty one
  /// and an index out of range. A width below that of a character splits it nevertheless.
  std::size_t ChunkCount(std::size_t index, std::size_t width) const;
  /// A piece from 0 on; empty when out of range.
  std::string ChunkLine(std::size_t index, std::size_t number, std::size_t width) const;

 private:
  std::vector<std::string> fStrings;
};

/// What the lines say: plan, weight, stages, dependent variable with its reference, model, subpopulation.
/// `reference` is the reference category as text. Without effect names there is no line of the model.
OrvRegDocumentStrings DocumentLines(const TavoValidSpecs& specs, const host::VORN_DataSource& source,
                                    const std::string& reference,
                                    const std::vector<std::string>& effectNames);

/// The lines as a document of 80 columns, with the date of today at its end.
host::DSDocument BuildDocument(const OrvRegDocumentStrings& lines);

}  // namespace tavo
