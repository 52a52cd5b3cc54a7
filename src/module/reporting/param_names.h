// The names under which effects and parameters appear in the output.
#pragma once

#include <string>
#include <vector>

#include "component/estimation/regr_parameter.h"
#include "host/data.h"
#include "module/command/valid_specs.h"
#include "module/input/category_texts.h"

namespace tavo {

/// Effect names such as "A", "A * B", "A(B)", "A * x"; parameter names such as "[A=1] * x". Variables go by
/// their short names, values by the variable's print format; no two parameters have the same name.
class TavoParamNames {
 public:
  /// Nothing is owned; all of it is used in the constructor only. `parameters` are those of one equation, in
  /// order; the effect names exclude the intercept.
  TavoParamNames(const TavoValidSpecs& specs, const host::VORN_DataSource& source,
                 const OrvCategoryTexts& categories, const std::vector<OrvRegrParameter>& parameters);

  const std::vector<std::string>& Effects() const { return fEffects; }
  const std::vector<std::string>& Parameters() const { return fParameters; }

 private:
  std::vector<std::string> fEffects;
  std::vector<std::string> fParameters;
};

}  // namespace tavo
