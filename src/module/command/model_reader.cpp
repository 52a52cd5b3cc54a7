#include "module/command/model_reader.h"

#include <algorithm>
#include <utility>

#include "module/command/effect_reader.h"
#include "module/command/token_cursor.h"

namespace tavo {

namespace {

std::vector<OrvModelEffect> MainEffects(const CommandPredictors& predictors) {
  std::vector<OrvModelEffect> effects;
  for (const int covariate : predictors.covariates) {
    effects.push_back(predictors.MakeEffect());
    effects.back().AddCovariate(covariate);
  }
  for (const int factor : predictors.factors) {
    effects.push_back(predictors.MakeEffect());
    effects.back().AddFactor(factor, false);
  }
  return effects;
}

/// Hands the predictors that stand in an effect to the validated specs, and warns of the others.
void SetUsedPredictors(ParseContext& context, const std::vector<OrvModelEffect>& effects) {
  const CommandPredictors& predictors = context.predictors;
  const MCCommonMath::MCBitSet used = OrvModelEffect::UsedPositions(effects);
  std::vector<int> factors, covariates;
  std::vector<std::string> unused;
  for (std::size_t i = 0; i < predictors.all.size(); ++i) {
    if (!used.IsIn(static_cast<int>(i))) {
      unused.push_back(predictors.names[i]);
    } else {
      (i < predictors.factors.size() ? factors : covariates).push_back(predictors.all[i]);
    }
  }
  // Unused ones stay in the record: a case without them is left out all the same, as the variable list names
  // them.
  context.specs.SetUsedFactors(std::move(factors));
  context.specs.SetUsedCovariates(std::move(covariates));
  if (!unused.empty()) context.messages.UnusedPredictors(unused);
}

}  // namespace

bool ReadModel(ParseContext& context, const std::vector<host::TokenInfoObj>& tokens,
               std::vector<OrvModelEffect>& effects) {
  EffectReader reader(context.predictors, context.messages);
  TokenCursor cursor(tokens);
  bool hasDuplicate = false;
  host::SourcePosition duplicate;
  while (!cursor.AtEnd()) {
    const host::SourcePosition start = cursor.Position();
    OrvModelEffect effect = context.predictors.MakeEffect();
    if (!reader.Read(cursor, effect)) return false;
    const bool isKnown = std::any_of(effects.begin(), effects.end(),
                                     [&](const OrvModelEffect& e) { return e.Equals(effect); });
    if (!isKnown) {
      effects.push_back(std::move(effect));
    } else if (!std::exchange(hasDuplicate, true)) {
      duplicate = start;
    }
  }
  if (hasDuplicate) context.messages.At(duplicate).DuplicateEffect();
  return true;
}

bool FixModel(ParseContext& context, const host::SubComObj* model, std::vector<OrvModelEffect> effects) {
  const CommandPredictors& predictors = context.predictors;
  TavoParseMessages& messages = context.messages;
  // MODEL may come before or behind INTERCEPT in a command, so what the two make together is judged here.
  if (!context.specs.UsesIntercept() && predictors.all.empty()) return messages.NothingInModel();
  if (context.interceptOnly && model != nullptr) {
    return messages.At(model->position).SubcommandInvalidWithValue("MODEL", "INTERCEPT", "ONLY");
  }
  context.specs.SetFactors(predictors.factors);
  context.specs.SetCovariates(predictors.covariates);
  if (context.interceptOnly) {
    if (!predictors.all.empty()) messages.UnusedPredictors(predictors.names);
    return true;
  }
  if (model == nullptr) effects = MainEffects(predictors);
  if (effects.empty() && !context.specs.UsesIntercept()) {
    if (model != nullptr) messages.At(model->position);
    return messages.NothingInModel();
  }
  SetUsedPredictors(context, effects);
  context.specs.SetEffects(std::move(effects));
  return true;
}

}  // namespace tavo
