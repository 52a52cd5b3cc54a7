#include <gtest/gtest.h>

#include <limits>

#include "component/input/record_extractor.h"
#include "component/input/record_validator.h"
#include "component/numerics/missing_value.h"

namespace tavo {
namespace {

constexpr double kMissing = MCCommonMath::MCMV::gMissingValue;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

MCCommon::Record RecordOf(const std::vector<double>& cells) {
  MCCommon::Record record(static_cast<int>(cells.size()));
  for (std::size_t i = 0; i < cells.size(); ++i)
    record[static_cast<int>(i)] = cells[i];
  return record;
}

enum class Answer { kEnters, kLeavesSilently, kInvalid };

/// What the validator says of a value in a column of one role. A factor has 4 levels, a dependent
/// `categories`.
Answer AnswerFor(VariableRole role, double value, int categories = 3) {
  const OrvRecordValidator validator({VariableRole::kNone, role}, {1}, {4}, categories);
  OrvStatus status;
  const bool enters = validator.Validate(RecordOf({kNaN, value}), status);
  if (enters) return status.IsOK() ? Answer::kEnters : Answer::kInvalid;
  if (status.IsOK()) return Answer::kLeavesSilently;
  EXPECT_EQ(status.Code(), StatusCode::kInvalidValue);
  EXPECT_EQ(status.Integer(1), 1);
  if (value == value) {
    EXPECT_EQ(status.Real(1), value);
  }
  return Answer::kInvalid;
}

TEST(OrvRecordExtractor, RowHoldsDependentFactorsCovariatesWeight) {
  OrvRecordExtractor extractor;
  extractor.Set(4, {7, 5}, {1}, 0);
  EXPECT_EQ(extractor.Size(), 5);
  EXPECT_EQ(extractor.Columns(), (std::vector<int>{4, 7, 5, 1, 0}));
  EXPECT_EQ(extractor.DependentOffset(), 0);
  EXPECT_EQ(extractor.FactorOffsets(), (std::vector<int>{1, 2}));
  EXPECT_EQ(extractor.CovariateOffsets(), (std::vector<int>{3}));
  EXPECT_EQ(extractor.WeightOffset(), 4);
  const MCCommon::Record record = RecordOf({100, 101, 102, 103, 104, 105, 106, 107});
  std::vector<double> row(5);
  extractor.Extract(record.GetAll(), row.data());
  EXPECT_EQ(row, (std::vector<double>{104, 107, 105, 101, 100}));
}

TEST(OrvRecordExtractor, SettingAgainReplacesEverything) {
  OrvRecordExtractor extractor;
  extractor.Set(4, {7, 5}, {1}, 0);
  extractor.Set(2, {}, {}, 3);
  EXPECT_EQ(extractor.Columns(), (std::vector<int>{2, 3}));
  EXPECT_TRUE(extractor.FactorOffsets().empty());
  EXPECT_EQ(extractor.WeightOffset(), 1);
}

TEST(OrvRecordValidator, CategoryBelowOneHalfFailsSilentlyOneHalfFailsHardAndOnePasses) {
  for (const VariableRole role : {VariableRole::kDesignCategory, VariableRole::kCategory,
                                  VariableRole::kFactor, VariableRole::kDependent}) {
    EXPECT_EQ(AnswerFor(role, 0.4), Answer::kLeavesSilently);
    EXPECT_EQ(AnswerFor(role, 0.5), Answer::kInvalid);
    EXPECT_EQ(AnswerFor(role, 1.0), Answer::kEnters);
    EXPECT_EQ(AnswerFor(role, kMissing), Answer::kLeavesSilently);
  }
}

TEST(OrvRecordValidator, FactorCodeAboveTheLimitFailsHard) {
  EXPECT_EQ(AnswerFor(VariableRole::kFactor, 4), Answer::kEnters);
  EXPECT_EQ(AnswerFor(VariableRole::kFactor, 5), Answer::kInvalid);
  EXPECT_EQ(AnswerFor(VariableRole::kDependent, 3), Answer::kEnters);
  EXPECT_EQ(AnswerFor(VariableRole::kDependent, 4), Answer::kInvalid);
}

TEST(OrvRecordValidator, ZeroWeightLeavesSilently) {
  EXPECT_EQ(AnswerFor(VariableRole::kWeight, 0), Answer::kLeavesSilently);
  EXPECT_EQ(AnswerFor(VariableRole::kWeight, -2), Answer::kLeavesSilently);
  EXPECT_EQ(AnswerFor(VariableRole::kWeight, kMissing), Answer::kLeavesSilently);
  EXPECT_EQ(AnswerFor(VariableRole::kWeight, 1e-300), Answer::kEnters);
}

TEST(OrvRecordValidator, MissingInclusionProbabilityGoesOn) {
  EXPECT_EQ(AnswerFor(VariableRole::kInclusionProbability, kMissing), Answer::kEnters);
  EXPECT_EQ(AnswerFor(VariableRole::kInclusionProbability, 1.0), Answer::kEnters);
  EXPECT_EQ(AnswerFor(VariableRole::kInclusionProbability, 0.0), Answer::kInvalid);
  EXPECT_EQ(AnswerFor(VariableRole::kInclusionProbability, 1.01), Answer::kInvalid);
}

TEST(OrvRecordValidator, PopulationSizeOfOneHalfFailsHardWithColumnAndValue) {
  const OrvRecordValidator validator(
      {VariableRole::kNone, VariableRole::kNone, VariableRole::kPopulationSize}, {}, {}, 2);
  OrvStatus status;
  EXPECT_FALSE(validator.Validate(RecordOf({1, 1, 0.5}), status));
  EXPECT_TRUE(status.IsError());
  EXPECT_EQ(status.Code(), StatusCode::kInvalidValue);
  EXPECT_EQ(status.Integer(1), 2);
  EXPECT_EQ(status.Real(1), 0.5);
  EXPECT_EQ(AnswerFor(VariableRole::kPopulationSize, kMissing), Answer::kEnters);
  EXPECT_EQ(AnswerFor(VariableRole::kPopulationSize, 1), Answer::kEnters);
}

TEST(OrvRecordValidator, OtherRolesFollowTheirRules) {
  EXPECT_EQ(AnswerFor(VariableRole::kCovariate, kMissing), Answer::kLeavesSilently);
  EXPECT_EQ(AnswerFor(VariableRole::kCovariate, -3.5), Answer::kEnters);
  EXPECT_EQ(AnswerFor(VariableRole::kTwoValued, 0), Answer::kEnters);
  EXPECT_EQ(AnswerFor(VariableRole::kTwoValued, 0.5), Answer::kInvalid);
  EXPECT_EQ(AnswerFor(VariableRole::kWholeNumber, -7), Answer::kEnters);
  EXPECT_EQ(AnswerFor(VariableRole::kWholeNumber, 0.25), Answer::kInvalid);
  EXPECT_EQ(AnswerFor(VariableRole::kNone, kNaN), Answer::kEnters);
  EXPECT_EQ(AnswerFor(VariableRole::kDependent, kMissing, 0), Answer::kLeavesSilently);
  EXPECT_EQ(AnswerFor(VariableRole::kDependent, -0.3, 0), Answer::kEnters);
}

TEST(OrvRecordValidator, ValuesThatWouldSpoilEverySumFailHard) {
  for (const VariableRole role :
       {VariableRole::kWeight, VariableRole::kCovariate, VariableRole::kPopulationSize,
        VariableRole::kDesignCategory, VariableRole::kFactor}) {
    EXPECT_EQ(AnswerFor(role, kInfinity), Answer::kInvalid);
    EXPECT_EQ(AnswerFor(role, kNaN), Answer::kInvalid);
  }
  EXPECT_EQ(AnswerFor(VariableRole::kDesignCategory, 2147483648.0), Answer::kInvalid);
  EXPECT_EQ(AnswerFor(VariableRole::kDesignCategory, 2147483647.0), Answer::kEnters);
}

TEST(OrvRecordValidator, AShortRecordIsAnError) {
  const OrvRecordValidator validator({VariableRole::kWeight, VariableRole::kNone}, {}, {}, 2);
  OrvStatus status;
  EXPECT_FALSE(validator.Validate(RecordOf({1}), status));
  EXPECT_EQ(status.Code(), StatusCode::kShortRecord);
  OrvStatus clean;
  EXPECT_TRUE(validator.Validate(RecordOf({1, 2, 3}), clean));
}

TEST(OrvRecordValidator, TheFirstColumnThatFailsDecides) {
  const OrvRecordValidator validator({VariableRole::kWeight, VariableRole::kTwoValued}, {}, {}, 2);
  OrvStatus status;
  EXPECT_FALSE(validator.Validate(RecordOf({0, 7}), status));
  EXPECT_TRUE(status.IsOK());
}

TEST(OrvRecordValidator, AStartTimeMustLieBeforeTheEnd) {
  const OrvRecordValidator validator({VariableRole::kStartTime, VariableRole::kDependent}, {}, {}, 0);
  OrvStatus status;
  EXPECT_TRUE(validator.Validate(RecordOf({1, 2}), status));
  EXPECT_FALSE(validator.Validate(RecordOf({2, 2}), status));
  EXPECT_EQ(status.Code(), StatusCode::kStartNotBeforeEnd);
  EXPECT_EQ(status.Real(1), 2);
  OrvStatus clean;
  EXPECT_FALSE(validator.Validate(RecordOf({kMissing, 2}), clean));
  EXPECT_TRUE(clean.IsOK());
}

}  // namespace
}  // namespace tavo
