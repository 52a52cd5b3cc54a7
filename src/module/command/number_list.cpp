#include "module/command/number_list.h"

namespace tavo {

using host::OperatorCode;

namespace {

/// Divides by the denominator at the cursor, which stands behind the slash.
bool ReadDenominator(TokenCursor& cursor, TavoParseMessages& messages, const host::TokenInfoObj& numerator,
                     double& value) {
  const host::TokenInfoObj& denominator = cursor.Token();
  if (cursor.AtEnd() || cursor.IsAt(OperatorCode::kRowSeparator)) {
    return messages.At(numerator).NoDenominator(numerator.getString());
  }
  if (!denominator.IsNumber()) return messages.At(denominator).DenominatorNotANumber(denominator.getString());
  if (!(denominator.getNumeric() > 0)) {
    return messages.At(denominator).DenominatorNotPositive(denominator.getString());
  }
  value /= denominator.getNumeric();
  cursor.Step();
  return true;
}

}  // namespace

bool ReadNumber(TokenCursor& cursor, TavoParseMessages& messages, double& value) {
  if (cursor.AtEnd()) return messages.At(cursor.Position()).NumberMissingAfter(cursor.LastText());
  const host::TokenInfoObj& number = cursor.Token();
  if (!number.IsNumber()) return messages.At(number).NotANumber(number.getString());
  value = number.getNumeric();
  cursor.Step();
  if (!cursor.IsAt(OperatorCode::kSlash)) return true;
  cursor.Step();
  return ReadDenominator(cursor, messages, number, value);
}

bool ReadNumberList(TokenCursor& cursor, TavoParseMessages& messages, std::vector<double>& values) {
  values.clear();
  do {
    double value = 0;
    if (!ReadNumber(cursor, messages, value)) return false;
    values.push_back(value);
  } while (cursor.Token().IsNumber());
  return true;
}

}  // namespace tavo
