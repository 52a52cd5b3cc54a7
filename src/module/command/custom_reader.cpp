// CUSTOM: a hypothesis of the user's own, as rows of the contrast matrices L and K.
#include <algorithm>
#include <utility>

#include "module/command/effect_reader.h"
#include "module/command/hypothesis_readers.h"
#include "module/command/token_cursor.h"

namespace tavo {

namespace {

using host::OperatorCode;
using host::SourcePosition;
using host::TokenInfoObj;

bool AtRowEnd(const TokenCursor& cursor) {
  return cursor.AtEnd() || cursor.IsAt(OperatorCode::kRowSeparator);
}

// Fractions are there for contrasts such as 1/3 1/3 1/3, which no decimal number says exactly. A sign belongs
// to the numerator, so the denominator is above 0.
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

/// Reads a number, or a fraction such as -1/3, and moves past it. False after a message.
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

/// Reads at least one number, up to the first token that is none. False after a message.
bool ReadNumberList(TokenCursor& cursor, TavoParseMessages& messages, std::vector<double>& values) {
  values.clear();
  do {
    double value = 0;
    if (!ReadNumber(cursor, messages, value)) return false;
    values.push_back(value);
  } while (cursor.Token().IsNumber());
  return true;
}

class LMatrixReader {
 public:
  LMatrixReader(ParseContext& context, const std::vector<TokenInfoObj>& tokens, OrvCustomTest& test);

  bool Read();

 private:
  bool ReadRow(TavoMatrixRow& row);
  /// The type of a row, from the token that it opens with; kInvalid after a message.
  MatrixRowType ReadOpening(double& interceptValue);
  bool ReadEffects(TavoMatrixRow& row);
  bool ReadEffect(TavoMatrixRow& row);
  bool ReadAllValues(TavoMatrixRow& row);
  /// Position of an equal effect in the model, or -1.
  int FindEffect(const OrvModelEffect& effect) const;
  /// True when the rows so far agree with this number of values of an effect.
  bool FitsWidth(std::size_t effect, std::size_t values);

  ParseContext& fContext;
  TavoParseMessages& fMessages;
  const std::vector<OrvModelEffect>& fEffects;
  OrvCustomTest& fTest;
  EffectReader fEffectReader;
  TokenCursor fCursor;
  MatrixRowType fRowType = MatrixRowType::kInvalid;  // of the rows so far
  std::vector<std::size_t> fWidths;  // values per effect, 0 not yet known; the first also of ALL
  std::vector<bool> fUsed;           // effects of the row in work
};

LMatrixReader::LMatrixReader(ParseContext& context, const std::vector<TokenInfoObj>& tokens,
                             OrvCustomTest& test)
    : fContext(context),
      fMessages(context.messages),
      fEffects(context.specs.Effects()),
      fTest(test),
      fEffectReader(context.predictors, context.messages),
      fCursor(tokens),
      fWidths(std::max<std::size_t>(fEffects.size(), 1), 0) {}

bool LMatrixReader::Read() {
  for (;;) {
    TavoMatrixRow row;
    if (!ReadRow(row)) return false;
    fTest.AddRow(row);
    if (fCursor.AtEnd()) return true;
    fCursor.Step();
  }
}

bool LMatrixReader::ReadRow(TavoMatrixRow& row) {
  if (fCursor.AtEnd()) return fMessages.At(fCursor.Position()).InvalidSyntax(fCursor.LastText());
  const TokenInfoObj& opening = fCursor.Token();
  double interceptValue = 0;
  const MatrixRowType type = ReadOpening(interceptValue);
  if (type == MatrixRowType::kInvalid) return false;
  if (fCursor.AtEnd() && type != MatrixRowType::kValueEffectList) {
    return fMessages.At(fCursor.Position()).InvalidSyntax(fCursor.LastText());
  }
  if (fRowType == MatrixRowType::kInvalid) fRowType = type;
  if (type != fRowType) return fMessages.At(opening).OtherRowTypeExpected(fRowType, opening.getString());

  row = TavoMatrixRow(type, static_cast<int>(fEffects.size()));
  if (type == MatrixRowType::kAll) return ReadAllValues(row);
  if (type == MatrixRowType::kValueEffectList) {
    row.SetFirstValue(interceptValue);
    if (AtRowEnd(fCursor)) return true;
  }
  return ReadEffects(row);
}

// The first token tells what kind of row follows, and all rows of a matrix are of one kind: mixed ones would
// have columns of different meaning. A number that opens a row is the coefficient of the intercept. It takes
// no fraction, since what follows it are effects: a slash there is reported as an effect that can't begin so.
MatrixRowType LMatrixReader::ReadOpening(double& interceptValue) {
  const TokenInfoObj& token = fCursor.Token();
  if (token.IsNumber()) {
    if (!fContext.specs.UsesIntercept()) {
      fMessages.At(token).InterceptNotInModel();
      return MatrixRowType::kInvalid;
    }
    interceptValue = token.getNumeric();
    fCursor.Step();
    return MatrixRowType::kValueEffectList;
  }
  if (token.IsVarName()) return MatrixRowType::kEffectList;
  if (fCursor.IsAt(OperatorCode::kAll)) {
    fCursor.Step();
    return MatrixRowType::kAll;
  }
  fMessages.At(token).InvalidRowType(token.getString());
  return MatrixRowType::kInvalid;
}

bool LMatrixReader::ReadEffects(TavoMatrixRow& row) {
  fUsed.assign(fEffects.size(), false);
  do {
    if (!ReadEffect(row)) return false;
  } while (!AtRowEnd(fCursor));
  return true;
}

bool LMatrixReader::ReadEffect(TavoMatrixRow& row) {
  const std::size_t start = fCursor.Index();
  const SourcePosition position = fCursor.Position();
  OrvModelEffect effect = fContext.predictors.MakeEffect();
  std::vector<double> values;
  if (!fEffectReader.Read(fCursor, effect)) return false;
  const std::string text = fCursor.TextFrom(start);
  if (!ReadNumberList(fCursor, fMessages, values)) return false;
  const int index = FindEffect(effect);
  if (index < 0) return fMessages.At(position).EffectNotInModel(text);
  const auto place = static_cast<std::size_t>(index);
  if (fUsed[place]) return fMessages.At(position).DuplicateEffectInRow(text);
  if (!FitsWidth(place, values.size())) return fMessages.At(position).ValueCountsDifferForEffect();
  row.AddEffect(index, std::move(values));
  fUsed[place] = true;
  return true;
}

int LMatrixReader::FindEffect(const OrvModelEffect& effect) const {
  const auto found = std::find_if(fEffects.begin(), fEffects.end(),
                                  [&](const OrvModelEffect& known) { return known.Equals(effect); });
  return found == fEffects.end() ? -1 : static_cast<int>(found - fEffects.begin());
}

// How many coefficients an effect has is known only when the model is built. What can be told here is that
// two rows disagree. A row of ALL has no effects, and its width stands in the first place.
bool LMatrixReader::FitsWidth(std::size_t effect, std::size_t values) {
  if (fWidths[effect] == 0) fWidths[effect] = values;
  return fWidths[effect] == values;
}

bool LMatrixReader::ReadAllValues(TavoMatrixRow& row) {
  const SourcePosition position = fCursor.Position();
  std::vector<double> values;
  if (!ReadNumberList(fCursor, fMessages, values)) return false;
  if (!AtRowEnd(fCursor)) return fMessages.At(fCursor.Position()).NotANumber(fCursor.Text());
  if (!FitsWidth(0, values.size())) return fMessages.At(position).ValueCountsDifferForEffect();
  // With nothing but an intercept the number of parameters of a logit is known after all.
  if (fEffects.empty() && values.size() != 1) return fMessages.At(position).OnlyInterceptInModel();
  row.SetAllValues(std::move(values));
  return true;
}

class KMatrixReader {
 public:
  KMatrixReader(ParseContext& context, const host::ParamObj& matrix)
      : fContext(context), fMessages(context.messages), fMatrix(matrix), fCursor(matrix.getTokenList()) {}

  bool Read(OrvCustomTest& test);

 private:
  bool ReadRow();
  bool CheckRows(int lRows);

  ParseContext& fContext;
  TavoParseMessages& fMessages;
  const host::ParamObj& fMatrix;
  TokenCursor fCursor;
  std::vector<double> fValues;
  static constexpr int kUnknown = -1;
  int fWidth = kUnknown;        // values per row so far
  SourcePosition fSecondValue;  // of the first row
  int fNRows = 0;
};

bool KMatrixReader::Read(OrvCustomTest& test) {
  if (!ReadRow()) return false;
  while (!fCursor.AtEnd()) {
    fCursor.Step();
    if (!ReadRow()) return false;
  }
  if (!CheckRows(test.RowCount())) return false;
  test.SetK(std::move(fValues));
  return true;
}

bool KMatrixReader::ReadRow() {
  if (fCursor.AtEnd()) return fMessages.At(fCursor.Position()).InvalidSyntax(fCursor.LastText());
  const SourcePosition position = fCursor.Position();
  int width = 0;
  for (; !AtRowEnd(fCursor); fCursor.Step(), ++width) {
    if (!fCursor.Token().IsNumber()) return fMessages.At(fCursor.Position()).NotANumber(fCursor.Text());
    if (fNRows == 0 && width < 2) fSecondValue = fCursor.Position();
    fValues.push_back(fCursor.Token().getNumeric());
  }
  // A row without any number is a row of another width, so that no value can slip into another row.
  if (fWidth == kUnknown) fWidth = width;
  if (width != fWidth) return fMessages.At(position).ValueCountsDiffer();
  ++fNRows;
  return true;
}

// Once all rows are read, so that rows that differ are told before rows that are all too wide. Without rows
// of L the hypothesis is about the intercept, which must be in the model then.
bool KMatrixReader::CheckRows(int lRows) {
  if (fWidth != 1) return fMessages.At(fWidth == 0 ? fMatrix.position : fSecondValue).OneValuePerRow();
  if (lRows > 0) {
    return fNRows == lRows || fMessages.At(fMatrix.position).RowCountsDiffer("LMATRIX", "KMATRIX");
  }
  if (!fContext.specs.UsesIntercept()) {
    return fMessages.At(fMatrix.position).RequiredWithValue("LMATRIX", "INTERCEPT INCLUDE", "NO");
  }
  return fNRows == 1 || fMessages.At(fMatrix.position).ScalarRequiredWithout("KMATRIX", "LMATRIX");
}

}  // namespace

bool ReadCustom(ParseContext& context, const host::SubComObj& custom, OrvCustomTest& test,
                std::string& label) {
  TavoParseMessages& messages = context.messages;
  const host::ParamObj* lMatrix = custom.getParamObj("LMATRIX");
  const host::ParamObj* kMatrix = custom.getParamObj("KMATRIX");
  if (lMatrix == nullptr && kMatrix == nullptr) {
    return messages.AtSubcommand().EitherOrBothRequired("LMATRIX", "KMATRIX");
  }
  // Before the matrices, so that a faulty label is told first.
  if (const host::ParamObj* text = custom.getParamObj("LABEL"); text != nullptr) {
    text->getLiteral(label);
    if (label.empty()) return messages.At(ValuePosition(*text)).EmptyLabel();
  }
  if (lMatrix != nullptr) {
    messages.SetParameter(lMatrix->name);
    if (!LMatrixReader(context, lMatrix->getTokenList(), test).Read()) return false;
  }
  if (kMatrix == nullptr) return true;
  messages.SetParameter(kMatrix->name);
  return KMatrixReader(context, *kMatrix).Read(test);
}

}  // namespace tavo
