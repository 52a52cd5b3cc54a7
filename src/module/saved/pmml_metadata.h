// What a model document says about variables and about the program.
#pragma once

#include <string>
#include <vector>

namespace tavo {

/// One variable of the document. All values are texts: what a scoring program compares its data with.
struct OrvPMMLVariable {
  enum class Level : int { kUnknown = 0, kContinuous = 1, kNominal = 2, kOrdinal = 3 };
  enum class DataType : int { kNumeric = 0, kString = 1 };

  int index = -1;  // in the dictionary
  std::string name;
  std::string label;
  Level level = Level::kUnknown;
  DataType type = DataType::kNumeric;
  std::vector<std::string> missingValues;
  std::vector<std::string> missingLabels;  // in parallel, empty for none
  bool hasMissingInterval = false;
  std::string missingLow;
  std::string missingHigh;
  std::vector<std::string> categoryValues;  // in code order
  std::vector<std::string> categoryLabels;  // in parallel, empty for none

  bool IsCategorical() const { return level == Level::kNominal || level == Level::kOrdinal; }
};

/// What counts as an event of a survival model.
struct OrvPMMLEvents {
  /// A range of the status variable, both bounds in it.
  struct Interval {
    double low = 0;
    double high = 0;
  };
  int statusVariable = -1;  // in the dictionary
  std::vector<std::string> values;
  std::vector<Interval> intervals;
};

class OrvPMMLMetadata {
 public:
  /// False, with nothing added, for a variable without name or with a negative index, and for one whose name
  /// or index is there already.
  bool AddVariable(OrvPMMLVariable variable);
  /// The variable of a dictionary index, or null; good until the next AddVariable.
  const OrvPMMLVariable* Find(int index) const;
  const std::vector<OrvPMMLVariable>& Variables() const { return fVariables; }

  // About the program; empty: not known.
  std::string applicationName;
  std::string applicationVersion;
  std::string copyright;
  bool isUTF8 = false;  // characters stand in the document as they are, not as references
  OrvPMMLEvents events;

 private:
  std::vector<OrvPMMLVariable> fVariables;  // in the order added
  std::vector<int> fPositions;              // by dictionary index, -1 for none
};

}  // namespace tavo
