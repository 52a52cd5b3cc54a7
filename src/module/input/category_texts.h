// Categories as texts that tell them apart.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/output.h"
#include "module/input/reg_input_adapter.h"

namespace tavo {

/// How the categories of categorical variables are written. A category goes by its print format, or by its
/// value label; where another category of the variable would read the same, both are written in full: a
/// number with all its digits, a string in quotes with its blanks, and a value label with the value behind
/// it.
///
/// All outputs of a run take their texts from here, so that a category reads the same in each of them. The
/// categories of a variable must be settled before it is asked for the first time. Not for several threads.
class OrvCategoryTexts {
 public:
  /// Nothing is owned; both must outlive the object.
  OrvCategoryTexts(const host::VORN_DataSource& source, const OrvRegInputAdapter& adapter)
      : fSource(source), fAdapter(adapter) {}

  /// A category (dictionary index of its variable, code from 1) without its value label. Empty for a code out
  /// of range.
  std::string Printed(int variable, int code) const;
  /// The same in full, whatever the other categories are.
  std::string InFull(int variable, int code) const;
  /// A category for a table or a message, by its value label when it has one.
  host::BpDataValue Shown(int variable, int code) const;
  /// The same of a value that may be none of the categories.
  host::BpDataValue Shown(int variable, const host::OBS* cells) const;

 private:
  /// By code (entry 0 is not used): categories that another one could be taken for.
  struct LookAlikes {
    std::vector<bool> printed;
    std::vector<bool> labelled;
  };

  const host::VORN_Variable& Entry(int variable) const {
    return *fSource.GetVariable(static_cast<unsigned>(variable));
  }
  const LookAlikes& LookAlikesOf(int variable) const;
  std::string PrintedText(int variable, int code, bool inFull) const;
  std::string LabelledText(int variable, int code, bool inFull) const;

  const host::VORN_DataSource& fSource;
  const OrvRegInputAdapter& fAdapter;
  mutable std::map<int, LookAlikes> fKnown;  // by variable
};

}  // namespace tavo
