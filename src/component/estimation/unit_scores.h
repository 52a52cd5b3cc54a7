// The score totals of the units of a design.
#pragma once

#include <cstddef>
#include <vector>

#include "component/estimation/model.h"
#include "component/numerics/precise_vectors.h"

namespace tavo {

/// Adds up the scores of a unit's cases. A total has one element per parameter of all logits; when the fit
/// was refined in twice the precision, one per non-redundant parameter, in the basis in which the information
/// is the identity, and rounded only there: see TavoPreciseFit.
class OrvUnitScores {
 public:
  /// The model is not owned; it has its estimates.
  explicit OrvUnitScores(TavoModel& model)
      : fModel(model), fTotals(static_cast<std::size_t>(model.ScoreCount())), fSums(PreciseLength(model)) {}

  void StartUnit();
  /// See TavoModel::AddCaseScores.
  void Add(const double* dataRow);
  /// Of the cases since the start of the unit; good until the next call.
  const std::vector<double>& Totals();

 private:
  static std::size_t PreciseLength(const TavoModel& model) {
    return model.PreciseFit() == nullptr ? 0 : static_cast<std::size_t>(model.ScoreCount());
  }

  TavoModel& fModel;
  std::vector<double> fTotals;
  MCCommonMath::PreciseColumn fSums;  // of a refined fit
};

}  // namespace tavo
