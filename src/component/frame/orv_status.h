// The status record with which every operation of the component answers.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tavo {

/// OK, error or warning, a code, and up to six numbers that a message needs. A plain value; see StatusCode
/// for the codes and what their parameters mean.
class OrvStatus {
 public:
  constexpr OrvStatus() = default;
  /// A warning when `isWarning`, otherwise an error.
  constexpr OrvStatus(std::uint32_t code, bool isWarning)
      : fCode(code), fSeverity(static_cast<std::int16_t>(2 * static_cast<int>(isWarning) - 1)) {}

  static constexpr OrvStatus Error(std::uint32_t code) { return OrvStatus(code, false); }
  static constexpr OrvStatus Warning(std::uint32_t code) { return OrvStatus(code, true); }

  constexpr bool IsError() const { return fSeverity < 0; }
  constexpr bool IsOK() const { return fSeverity == 0; }
  constexpr bool IsWarning() const { return fSeverity > 0; }
  constexpr std::uint32_t Code() const { return fCode; }

  /// Parameters by index 0 to 2, unchecked.
  constexpr std::int32_t Integer(int i) const { return fIntegers[static_cast<std::size_t>(i)]; }
  constexpr double Real(int i) const { return fReals[static_cast<std::size_t>(i)]; }
  constexpr OrvStatus& SetInteger(int i, std::int32_t value) {
    fIntegers[static_cast<std::size_t>(i)] = value;
    return *this;
  }
  constexpr OrvStatus& SetReal(int i, double value) {
    fReals[static_cast<std::size_t>(i)] = value;
    return *this;
  }

  /// All fields equal; a NaN parameter makes a record unequal even to itself.
  friend constexpr bool operator==(const OrvStatus&, const OrvStatus&) = default;

 private:
  std::uint32_t fCode = 0;
  std::int16_t fSeverity = 0;
  std::array<std::int32_t, 3> fIntegers{};
  std::array<double, 3> fReals{};
};

/// The codes. Those from 91000 concern input and design, those from 95000 the model and the component's order
/// of calls. Numbers are stable; they may be stored in scripts.
namespace StatusCode {
inline constexpr std::uint32_t kCancelled = 1;
inline constexpr std::uint32_t kUserError = 91000;
inline constexpr std::uint32_t kNoRecords = 91001;
inline constexpr std::uint32_t kNullRecord = 91002;
inline constexpr std::uint32_t kNullRecordData = 91003;
inline constexpr std::uint32_t kShortRecord = 91004;
inline constexpr std::uint32_t kInconsistentDesignValue = 91005;  // integer 1: index of the constant variable
inline constexpr std::uint32_t kInvalidValue = 91006;             // integer 1: column; real 1: the value
inline constexpr std::uint32_t kRecordLeftOut = 91007;            // reserved: no operation answers with it
inline constexpr std::uint32_t kMissingInclusionProb = 91008;     // integer 1: index of the constant variable
inline constexpr std::uint32_t kPopulationBelowSample = 91009;    // integer 1: node index in the design tree
inline constexpr std::uint32_t kClusterNotInJointFile = 91010;
inline constexpr std::uint32_t kJointFileHasMoreUnits = 91011;
inline constexpr std::uint32_t kJointFileUnreadable = 91012;
inline constexpr std::uint32_t kNoStage = 91021;
inline constexpr std::uint32_t kFirstStageNotOne = 91022;
inline constexpr std::uint32_t kStageNumbersBroken = 91023;
inline constexpr std::uint32_t kNoWeight = 91024;
inline constexpr std::uint32_t kStageWithoutClusters = 91025;  // integer 1, here and below: stage number
inline constexpr std::uint32_t kStageWithoutEstimator = 91026;
inline constexpr std::uint32_t kUnequalWorNotFirst = 91027;
inline constexpr std::uint32_t kEqualWorWithoutProb = 91028;
inline constexpr std::uint32_t kInclusionRateOutOfRange = 91029;
inline constexpr std::uint32_t kPopulationSizeNotWhole = 91030;
inline constexpr std::uint32_t kNoDependent = 95001;
inline constexpr std::uint32_t kEmptyModel = 95002;
inline constexpr std::uint32_t kDataProcessedTwice = 95003;
inline constexpr std::uint32_t kDataNotProcessed = 95004;
inline constexpr std::uint32_t kModelBuiltTwice = 95005;
inline constexpr std::uint32_t kModelNotBuilt = 95006;
inline constexpr std::uint32_t kEmptySubpopulation = 95007;
inline constexpr std::uint32_t kNoDesignCovariance = 95008;
inline constexpr std::uint32_t kWrongLMatrixWidth = 95009;  // integer 0: row
inline constexpr std::uint32_t kInvalidEffect = 95010;
inline constexpr std::uint32_t kNoColumns = 95016;
inline constexpr std::uint32_t kNothingEstimable = 95017;
inline constexpr std::uint32_t kNotEstimable = 95018;
inline constexpr std::uint32_t kRowWithoutCoefficients = 95019;  // integer 0: row
inline constexpr std::uint32_t kWrongCoefficientCount = 95020;   // integers: row, effect, expected count
inline constexpr std::uint32_t kInterceptRowNotAllowed = 95021;  // integer 0: row
inline constexpr std::uint32_t kUnknownEffect = 95022;           // integers: row, effect
inline constexpr std::uint32_t kVarianceZero = 95023;
inline constexpr std::uint32_t kMoreThanOneRow = 95024;
inline constexpr std::uint32_t kNegativeVariance = 95025;          // integer 0: count
inline constexpr std::uint32_t kVarianceZeroSomeNegative = 95026;  // integer 0: count
inline constexpr std::uint32_t kOneDependentValue = 95028;
inline constexpr std::uint32_t kReferenceNotInUse = 95029;
inline constexpr std::uint32_t kOutsideSubpopulation = 95037;
inline constexpr std::uint32_t kAllRowsMixed = 95039;
inline constexpr std::uint32_t kOddsFactorOneLevel = 95041;  // integers: variable, requested code
inline constexpr std::uint32_t kOddsReferenceNotInUse = 95042;
inline constexpr std::uint32_t kOddsControlNotInUse = 95043;
inline constexpr std::uint32_t kSRSVarianceZero = 95044;
inline constexpr std::uint32_t kTooManyParameters = 95045;  // integers: count, limit (0: see OutOfMemory)
inline constexpr std::uint32_t kDesignCovarianceSingular = 95046;
inline constexpr std::uint32_t kStartNotBeforeEnd = 95049;  // real 1: the start value
}  // namespace StatusCode

/// What every operation of the component answers that runs out of memory: kTooManyParameters without a limit
/// (integer 1 stays 0), and the number of parameters of all logits in integer 0, 0 where it isn't known.
///
/// One answer for all, because one advice helps: what first outgrows a memory are the matrices over all pairs
/// of parameters, so whoever meets it asks for fewer parameters. Memory that ends over the records says the
/// same.
constexpr OrvStatus OutOfMemory(int parameters) {
  return OrvStatus::Error(StatusCode::kTooManyParameters).SetInteger(0, parameters);
}

/// The diagnostic text of a code, or "Error code not found.".
std::string_view StatusCodeText(std::uint32_t code);

}  // namespace tavo
