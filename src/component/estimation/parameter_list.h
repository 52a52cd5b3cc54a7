// The list of the regression parameters.
#pragma once

#include <vector>

#include "component/estimation/regr_parameter.h"
#include "component/estimation/response_categories.h"
#include "component/frame/orv_cancel_info.h"
#include "component/input/model_effect.h"
#include "component/tabulation/factor_tables.h"

namespace tavo {

/// Each logit has the same p basic design columns, one basic parameter for each: the intercept first when
/// there is one, then the effects in order, an effect with factors with one parameter for each level
/// combination that occurred. The list of all parameters is the basic list repeated K-1 times: parameter j*p
/// + k is column k of logit j. With an intercept, model effect 0 is the intercept and effect e of the
/// settings is model effect e + 1.
///
/// The fit works on an internal scale: a column enters as (v - c)/s with its effect's centre c, subtracted
/// only in a model with an intercept, and scale s. A column without spread (a constant covariate beside an
/// intercept) has scale 0 and enters as 0, so that it is found redundant.
class OrvParameterList {
 public:
  /// No parameters.
  OrvParameterList() = default;
  /// `tables` have their parameters assigned, over the same effects. A cancel leaves the list incomplete.
  OrvParameterList(const std::vector<OrvModelEffect>& effects, bool hasIntercept,
                   const OrvResponseCategories& response, OrvFactorTables& tables,
                   const OrvCancelInfo& cancel);

  bool HasIntercept() const { return fbIntercept; }
  int LogitCount() const { return fNLogits; }
  /// Model effects, the intercept included.
  int EffectCount() const { return static_cast<int>(fEffectCentres.size()); }
  const std::vector<OrvRegrParameter>& All() const { return fAll; }
  const std::vector<OrvRegrParameter>& Basic() const { return fBasic; }
  int AllCount() const { return static_cast<int>(fAll.size()); }
  int BasicCount() const { return static_cast<int>(fBasic.size()); }
  /// First basic parameter and count of a model effect. False, with nothing changed, for one that isn't
  /// there.
  bool EffectRange(int effect, int& first, int& count) const;
  /// By basic parameter; the intercept's are 0 and 1.
  const std::vector<double>& Centres() const { return fCentres; }
  const std::vector<double>& Scales() const { return fScales; }
  /// By model effect.
  const std::vector<double>& EffectCentres() const { return fEffectCentres; }
  const std::vector<double>& EffectScales() const { return fEffectScales; }

 private:
  void TakeTransformation(OrvFactorTables& tables, std::size_t effects);
  void AppendEffect(const OrvModelEffect& effect, int index, OrvFactorTables& tables, int targetCategory);
  void Append(const OrvRegrParameter& parameter, double centre, double scale);
  void RepeatForOtherLogits(const std::vector<int>& categories);

  bool fbIntercept = false;
  int fNLogits = 0;
  std::vector<OrvRegrParameter> fAll;
  std::vector<OrvRegrParameter> fBasic;
  std::vector<double> fCentres;
  std::vector<double> fScales;
  std::vector<int> fFirst;   // by model effect
  std::vector<int> fCounts;  // by model effect
  std::vector<double> fEffectCentres;
  std::vector<double> fEffectScales;
};

}  // namespace tavo
