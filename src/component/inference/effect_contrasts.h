// Which linear functions of the parameters can be estimated, and which of them make up the hypothesis of an
// effect.
#pragma once

#include <vector>

#include "component/frame/orv_cancel_info.h"
#include "component/frame/orv_status.h"
#include "component/input/model_effect.h"
#include "component/numerics/bit_set.h"
#include "component/numerics/rect_matrix.h"
#include "component/numerics/sym_matrix.h"

namespace tavo {

class TavoModel;

/// Contrasts of one logit with p design columns; the other logits have the same.
///
/// With the columns S kept by a sequence of sweeps of X'WX, each column u left out is a combination of them,
/// x_u = sum over s of C_su x_s, and the estimable functions of the parameters are spanned by b_s + sum over
/// u of C_su b_u, one for each s in S (Goodnight 1979).
///
/// The hypothesis of an effect E is that of type III (Goodnight 1976; Milliken and Johnson 1984, ch. 10): the
/// estimable functions that have no coefficient on an effect that doesn't contain E, and that are orthogonal
/// to those on the effects that contain E alone. It depends on the column space and on which cells have data,
/// but not on the order of effects or levels, nor on which redundant column is left out, nor on how many
/// cases a cell has. With all cells filled it compares unweighted marginal means.
class EffectContrasts {
 public:
  /// Model and cancel object are lent.
  EffectContrasts(const TavoModel& model, const OrvCancelInfo& cancel);

  /// Takes what is needed from the model's X'WX, which can go afterwards; without `withEffects` the basis
  /// alone. 91000 without X'WX, 95045, 1.
  OrvStatus Prepare(bool withEffects);
  /// The basis of the estimable functions, p rows and one column per kept parameter, in the units of the
  /// data.
  const MCCommonMath::MCRectMatrix& Basis() const { return fBasis; }
  /// The relative error that coefficients of the basis may have: 1e-12, or more when columns are nearly
  /// dependent.
  double Rounding() const { return fRounding; }
  /// The contrasts of an effect of Effects(): L gets p columns and one row per degree of freedom, none when
  /// the effect can't be told from others; `columns` the number (from 1) of the parameter to which each row
  /// belongs. 91000 an unknown effect, 95045, 1.
  OrvStatus Build(int effect, MCCommonMath::MCRectMatrix& L, std::vector<int>& columns) const;
  /// The settings' effects, after an effect for the intercept when the model has one.
  const std::vector<OrvModelEffect>& Effects() const { return fEffects; }

 private:
  /// X'WX on the scale of the fit, swept on the pivots in `pivots`.
  struct Swept {
    MCCommonMath::MCSymMatrix matrix;
    MCCommonMath::MCBitSet pivots;
  };
  /// The candidate functions of one effect (H) and those of the effects that contain it (G), by columns.
  struct Functions {
    MCCommonMath::MCRectMatrix H;
    MCCommonMath::MCRectMatrix G;
    MCCommonMath::MCBitSet parameters;  // those that H's columns belong to, in order
  };

  int ParameterCount() const;
  double RoundingOf(const Swept& swept) const;
  double LengthRatio(int pivot, int column) const;
  std::vector<double> InterceptTerms(const Swept& swept) const;
  bool BringToDataScale(Swept& swept) const;
  std::vector<int> ContainingEffects(int effect) const;
  bool SweepBackEffect(Swept& swept, int effect) const;
  int SweepEffect(Swept& swept, int effect) const;
  bool SweepInOrder(Swept& swept, int effect, const std::vector<int>& containing, int& own, int& above) const;
  OrvStatus BuildEffectContrast(int effect, Functions& functions) const;
  void ScaleToUnits(Functions& functions) const;
  bool ReduceEffectContrast(int effect, Functions& functions, MCCommonMath::MCRectMatrix& L,
                            std::vector<int>& columns) const;
  OrvStatus OutOfMemory() const;
  OrvStatus Unfinished() const;

  const TavoModel& fModel;
  const OrvCancelInfo& fCancel;
  std::vector<OrvModelEffect> fEffects;
  std::vector<double> fUnits;  // by parameter: the size of its column's values, 1 without covariates
  std::vector<double> fDiagonal;
  double fTolerance = 0;
  double fRounding = 0;
  MCCommonMath::MCRectMatrix fBasis;
  Swept fSwept;
};

}  // namespace tavo
