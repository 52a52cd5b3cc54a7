// Custom hypotheses as the user stated them: L times the parameters equals K.
#pragma once

#include <vector>

#include "component/numerics/missing_value.h"

namespace tavo {

/// How a row of an L matrix is written.
enum class MatrixRowType : int {
  kValueEffectList = 0,  // a coefficient of the intercept, then effects each with its values
  kEffectList = 1,       // effects each with its values
  kAll = 2,              // one value per parameter of all logits
  kInvalid = 3           // not yet given a type
};

/// One row of an L matrix. Effects are positions in the settings' effect list, in the order written, each
/// with one value per parameter of the effect, redundant ones included. Setters that are refused return
/// false.
class TavoMatrixRow {
 public:
  /// The only negative effect index that a row may hold, and only as its first: it stands in a row of type
  /// kValueEffectList in place of a first value. Nothing that names effects of a model writes it.
  static constexpr int kNoFirstValue = -10;

  TavoMatrixRow() = default;
  /// `modelEffects`: the number of effects in the model.
  TavoMatrixRow(MatrixRowType type, int modelEffects) : fNModelEffects(modelEffects), fType(type) {}

  /// Stores both in every case. False for kInvalid, and for a negative count on a row that isn't kAll.
  bool SetType(MatrixRowType type, int modelEffects);
  /// The coefficient of the intercept; kValueEffectList only.
  bool SetFirstValue(double value);
  /// Refused: an index outside the model's effects (but kNoFirstValue as the first), an empty list of values,
  /// a row type other than the two with effects.
  bool AddEffect(int effect, std::vector<double> values);
  /// Replaces the values of a kAll row; refused for other types and for an empty list.
  bool SetAllValues(std::vector<double> values);
  /// Drops the first value and all lists, and takes the type.
  void Reset(MatrixRowType type);

  /// Whether the content agrees with the type: exactly one list that isn't empty for kAll; otherwise one list
  /// per effect, for kEffectList at least one and no first value, for kValueEffectList a first value or
  /// kNoFirstValue in front.
  bool IsValid() const;
  /// Of all values, the first value included.
  int ValueCount() const;

  MatrixRowType Type() const { return fType; }
  int ModelEffectCount() const { return fNModelEffects; }
  double FirstValue() const { return fFirstValue; }  // missing when not set
  int EffectCount() const { return static_cast<int>(fEffects.size()); }
  /// -1 when there is no such effect.
  int EffectIndex(int i) const;
  /// By position in the row; null when there is no such list.
  const std::vector<double>* Values(int i) const;
  /// The one list of a kAll row, else null.
  const std::vector<double>* AllValues() const;

 private:
  int fNModelEffects = -1;
  MatrixRowType fType = MatrixRowType::kInvalid;
  double fFirstValue = MCCommonMath::MCMV::gMissingValue;
  std::vector<int> fEffects;
  std::vector<std::vector<double>> fValues;
};

/// One custom hypothesis. A test without rows and with one K value is about the intercept.
class OrvCustomTest {
 public:
  /// Appends the row and a 0 to K. Refused once K was set, and for a row that isn't valid.
  bool AddRow(const TavoMatrixRow& row);
  /// Refused when there are rows and the length isn't their number.
  bool SetK(std::vector<double> values);
  /// Rows and K agree in number, there is at least one row, every row is valid, all kAll rows have the same
  /// number of values, and all others the same number of model effects.
  bool IsValid() const;
  void Clear();

  int RowCount() const { return static_cast<int>(fRows.size()); }
  /// Null when there is no such row.
  const TavoMatrixRow* Row(int i) const;
  const std::vector<TavoMatrixRow>& Rows() const { return fRows; }
  const std::vector<double>& K() const { return fK; }
  bool IsKSet() const { return fbKSet; }

 private:
  std::vector<TavoMatrixRow> fRows;
  std::vector<double> fK;
  bool fbKSet = false;
};

}  // namespace tavo
