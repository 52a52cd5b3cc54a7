// The new variables that predictions go to.
#pragma once

#include <string>
#include <vector>

#include "host/data.h"
#include "module/command/valid_specs.h"
#include "module/input/reg_input_adapter.h"

namespace tavo {

/// Where predictions are written. Columns are dictionary indices.
struct PredictedVariables {
  int valueColumn = -1;  // of the predicted category; -1: not asked for
  std::vector<int> probabilityColumns;
  std::vector<std::size_t> categories;  // the place of each probability's category in the model's order
};

/// Makes the variables that the command asks for, with formats, labels and notes. `categories` are the
/// model's response category codes, reference last. False when the host can't make a variable.
bool MakePredictedVariables(const TavoValidSpecs& specs, host::ProcedureDataSource& source,
                            const OrvRegInputAdapter& adapter, const std::vector<int>& categories,
                            PredictedVariables& made);

/// Names for `count` probabilities: the root, "_" and the number padded to the digits of `count`; when one of
/// them is taken, all get a further "_1", "_2", … A root that is too long is cut so that the suffix fits into
/// 64 bytes.
std::vector<std::string> MakeProbabilityNames(const std::string& root, int count,
                                              const host::VORN_DataSource& source);

}  // namespace tavo
