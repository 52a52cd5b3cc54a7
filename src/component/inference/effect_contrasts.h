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
/// With the columns S that the model's search for redundant columns keeps, each column u left out is a
/// combination of them, x_u = sum over s of C_su x_s, and the estimable functions of the parameters are
/// spanned by b_s + sum over u of C_su b_u, one for each s in S (Goodnight 1979).
///
/// The hypothesis of an effect E is that of type III (Goodnight 1976; Milliken and Johnson 1984, ch. 10): the
/// estimable functions that have no coefficient on an effect that doesn't contain E, and that are orthogonal
/// to those on the effects that contain E alone. It depends on the column space and on which cells have data,
/// but not on the order of effects or levels, nor on which redundant column is left out, nor on how many
/// cases a cell has. With all cells filled it compares unweighted marginal means.
///
/// It is found by eliminations among the estimable functions, in the units of the data, and not from
/// cross-products in another order: so no row is there that isn't estimable, their number can't exceed the
/// rank that the model found, and what is centred makes no difference. Columns kept are no matter of rounding
/// here however close to dependent they are, since a function of the basis has a coefficient on one of them.
///
/// An example: factors A and B of two levels each and their crossing, all four cells filled. The parameters
/// are m; a1, a2; b1, b2; ab11, ab12, ab21, ab22, of which m, a1, b1, ab11 are not redundant. For the effect
/// A:
///
/// 1. The functions of m and b1 go, since only they have coefficients on m and b1. Those of a1 and ab11 have
///    none on b2 either; otherwise one would go for that, after it is taken out of the others.
/// 2. The function of a1 is A's own, H: 1 at a1, -1 at a2, 1 at ab12 and -1 at ab22, as x_a2 = x_m - x_a1,
///    x_ab12 = x_a1 - x_ab11 and x_ab22 = x_m - x_b1 - x_a1 + x_ab11. This is a1 - a2 at level 2 of B:
///    estimable, but it singles out the level whose columns happen to be redundant.
/// 3. The function of ab11 is left for what contains A, G: 1, -1, -1, 1 at ab11 to ab22.
/// 4. Project H on what is orthogonal to G: H'G = -2 and G'G = 4, so H + G/2 is left,
///    a1 - a2 + (ab11 + ab12)/2 - (ab21 + ab22)/2: the difference of the two marginal means of A.
class EffectContrasts {
 public:
  /// Model and cancel object are not owned.
  EffectContrasts(const TavoModel& model, const OrvCancelInfo& cancel);

  /// Takes what is needed from the model's X'WX, which can go afterwards; without `withEffects` the basis
  /// alone. kUserError without X'WX, kTooManyParameters when memory runs out, kCancelled.
  OrvStatus Prepare(bool withEffects);
  /// The basis of the estimable functions, p rows and one column per non-redundant parameter of a logit, in
  /// the units of the data.
  const MCCommonMath::MCRectMatrix& Basis() const { return fBasis; }
  /// The relative error that coefficients of the basis may have: 1e-12, or more when columns are nearly
  /// dependent.
  double Rounding() const { return fRounding; }
  /// The contrasts of an effect of Effects(), by its position from 0; prepared with effects. L gets p columns
  /// and one row per degree of freedom, none when the effect can't be told from others; `columns` the number
  /// (from 1) of the parameter to which each row belongs. kTooManyParameters when memory runs out,
  /// kCancelled.
  OrvStatus Build(int effect, MCCommonMath::MCRectMatrix& L, std::vector<int>& columns) const;
  /// The settings' effects, after an effect for the intercept when the model has one.
  const std::vector<OrvModelEffect>& Effects() const { return fEffects; }

 private:
  /// X'WX on the scale of the fit, swept on the pivots in `pivots`.
  struct Swept {
    MCCommonMath::MCSymMatrix matrix;
    MCCommonMath::MCBitSet pivots;
  };
  /// Estimable functions by columns, while they are combined.
  struct Functions {
    MCCommonMath::MCRectMatrix matrix;
    std::vector<int> owners;      // by column: the parameter in whose units its coefficients are
    MCCommonMath::MCBitSet open;  // those that no parameter has been given yet
    MCCommonMath::MCBitSet inUse;
  };
  /// The candidate functions of one effect (H) and those of the effects that contain it (G), by columns.
  struct EffectFunctions {
    MCCommonMath::MCRectMatrix H;
    MCCommonMath::MCRectMatrix G;
    std::vector<int> parameters;  // those that H's columns belong to, in order
  };

  int ParameterCount() const;
  double RoundingOf(const Swept& swept) const;
  double LengthRatio(int pivot, int column) const;
  double Length(int column) const;
  double CoefficientSize(int pivot, int column) const;
  std::vector<double> InterceptTerms(const Swept& swept) const;
  bool BringToDataScale(Swept& swept) const;
  std::vector<int> ContainingEffects(int effect) const;
  bool TakeFunctions(const std::vector<int>& effects, Functions& functions) const;
  int FindPivot(Functions& functions, int parameter) const;
  void TakeOutOfOthers(Functions& functions, int parameter, int pivot) const;
  void GiveTo(Functions& functions, int parameter, int column) const;
  void DropFunctionsOn(int effect, Functions& functions) const;
  void GiveFunctionsTo(int effect, Functions& functions, std::vector<int>& given) const;
  OrvStatus BuildEffectContrast(int effect, EffectFunctions& result) const;
  bool ReduceEffectContrast(EffectFunctions& functions, MCCommonMath::MCRectMatrix& L,
                            std::vector<int>& columns) const;

  const TavoModel& fModel;
  const OrvCancelInfo& fCancel;
  std::vector<OrvModelEffect> fEffects;
  std::vector<double> fDiagonal;
  std::vector<double> fInterceptTerms;
  double fRounding = 0;
  MCCommonMath::MCRectMatrix fBasis;
  MCCommonMath::MCBitSet fNonRedundant;  // empty unless prepared with effects
};

}  // namespace tavo
