#include "component/estimation/parameter_list.h"

#include <cassert>
#include <cmath>

#include "component/numerics/machine_constants.h"

namespace tavo {

using MCCommonMath::MCPower;

namespace {

// Neighbouring doubles are apart by up to a machine epsilon of their size. Values within two of them are
// those of a constant that was computed, such as 0.1 + 0.2 beside 0.3.
constexpr double kSpreadOfConstant = 2 * MCPower::gMachineEpsilon;

bool HasSpread(double centre, double scale) {
  return std::isfinite(centre) && std::isfinite(scale) && scale > kSpreadOfConstant * std::abs(centre);
}

}  // namespace

OrvParameterList::OrvParameterList(const std::vector<OrvModelEffect>& effects, bool hasIntercept,
                                   const OrvResponseCategories& response, OrvFactorTables& tables,
                                   const OrvCancelInfo& cancel)
    : fbIntercept(hasIntercept), fNLogits(response.LogitCount()) {
  assert(fNLogits > 0);
  TakeTransformation(tables, effects.size() + (hasIntercept ? 1 : 0));
  const int firstCategory = response.Codes().front();
  if (hasIntercept) {
    OrvRegrParameter intercept;
    intercept.targetCategory = firstCategory;
    fFirst.push_back(0);
    fCounts.push_back(1);
    Append(intercept, 0.0, 1.0);
  }
  for (std::size_t e = 0; e < effects.size() && !cancel.IsCancelled(); ++e)
    AppendEffect(effects[e], static_cast<int>(e), tables, firstCategory);
  RepeatForOtherLogits(response.Codes());
}

void OrvParameterList::TakeTransformation(OrvFactorTables& tables, std::size_t effects) {
  fEffectCentres = tables.Centres(fbIntercept);
  fEffectScales = tables.Scales(fbIntercept);
  fEffectCentres.resize(effects, 0.0);
  fEffectScales.resize(effects, 1.0);
  for (std::size_t e = 0; e < effects; ++e) {
    if (HasSpread(fEffectCentres[e], fEffectScales[e])) continue;
    // The centre stays: it is the constant, by which the column is a multiple of the intercept's.
    if (!std::isfinite(fEffectCentres[e])) fEffectCentres[e] = 0;
    fEffectScales[e] = 0;
  }
}

void OrvParameterList::AppendEffect(const OrvModelEffect& effect, int index, OrvFactorTables& tables,
                                    int targetCategory) {
  OrvRegrParameter parameter;
  parameter.Set(effect, index);
  parameter.targetCategory = targetCategory;
  const int modelEffect = index + (fbIntercept ? 1 : 0);
  const double centre = fEffectCentres[static_cast<std::size_t>(modelEffect)];
  const double scale = fEffectScales[static_cast<std::size_t>(modelEffect)];
  const int count =
      tables.ParameterCount(modelEffect);  // level combinations that occurred; 1 without factors
  fFirst.push_back(BasicCount());
  fCounts.push_back(count);
  for (int level = 0; level < count; ++level) {
    if (!parameter.factors.empty()) {
      [[maybe_unused]] const bool isKnown = tables.EffectLevels(parameter.levels, modelEffect, level);
      assert(isKnown);
    }
    Append(parameter, centre, scale);
  }
}

void OrvParameterList::Append(const OrvRegrParameter& parameter, double centre, double scale) {
  fAll.push_back(parameter);
  fBasic.push_back(parameter);
  fCentres.push_back(centre);
  fScales.push_back(scale);
}

void OrvParameterList::RepeatForOtherLogits(const std::vector<int>& categories) {
  fAll.reserve(fBasic.size() * static_cast<std::size_t>(fNLogits));
  for (std::size_t j = 1; j < static_cast<std::size_t>(fNLogits); ++j) {
    for (const OrvRegrParameter& basic : fBasic) {
      fAll.push_back(basic);
      fAll.back().targetCategory = categories[j];
    }
  }
}

bool OrvParameterList::EffectRange(int effect, int& first, int& count) const {
  if (effect < 0 || effect >= static_cast<int>(fFirst.size())) return false;
  first = fFirst[static_cast<std::size_t>(effect)];
  count = fCounts[static_cast<std::size_t>(effect)];
  return true;
}

}  // namespace tavo
