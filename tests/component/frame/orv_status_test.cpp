#include "component/frame/orv_status.h"

#include <gtest/gtest.h>

#include <limits>

namespace tavo {
namespace {

TEST(OrvStatus, DefaultRecordIsOK) {
  const OrvStatus status;
  EXPECT_TRUE(status.IsOK());
  EXPECT_FALSE(status.IsError());
  EXPECT_FALSE(status.IsWarning());
  EXPECT_EQ(status.Code(), 0u);
}

TEST(OrvStatus, TheFlagDecidesBetweenWarningAndError) {
  EXPECT_TRUE(OrvStatus(StatusCode::kInconsistentDesignValue, true).IsWarning());
  EXPECT_FALSE(OrvStatus(StatusCode::kInconsistentDesignValue, true).IsError());
  EXPECT_TRUE(OrvStatus(StatusCode::kInconsistentDesignValue, false).IsError());
  EXPECT_FALSE(OrvStatus(StatusCode::kInconsistentDesignValue, false).IsWarning());
}

TEST(OrvStatus, RecordsWithUnequalParametersAreUnequal) {
  const OrvStatus base = OrvStatus::Warning(StatusCode::kInconsistentDesignValue);
  EXPECT_EQ(base, OrvStatus::Warning(StatusCode::kInconsistentDesignValue));
  EXPECT_NE(base, OrvStatus::Error(StatusCode::kInconsistentDesignValue));
  EXPECT_NE(base, OrvStatus::Warning(StatusCode::kMissingInclusionProb));
  EXPECT_NE(base, OrvStatus(base).SetInteger(0, 1));
  EXPECT_NE(base, OrvStatus(base).SetReal(2, 1.5));
}

TEST(OrvStatus, ANaNParameterMakesARecordUnequalToItself) {
  const OrvStatus status =
      OrvStatus::Error(StatusCode::kInvalidValue).SetReal(1, std::numeric_limits<double>::quiet_NaN());
  const OrvStatus copy = status;
  EXPECT_FALSE(status == copy);
}

TEST(OrvStatus, OutOfMemoryNamesTheParametersAndNoLimit) {
  const OrvStatus status = OutOfMemory(9000);
  EXPECT_TRUE(status.IsError());
  EXPECT_EQ(status.Code(), StatusCode::kTooManyParameters);
  EXPECT_EQ(status.Integer(0), 9000);
  EXPECT_EQ(status.Integer(1), 0);
}

TEST(OrvStatus, NumbersOfCodesAreStable) {
  EXPECT_EQ(StatusCode::kUserError, 91000u);
  EXPECT_EQ(StatusCode::kPopulationSizeNotWhole, 91030u);
  EXPECT_EQ(StatusCode::kNoDependent, 95001u);
  EXPECT_EQ(StatusCode::kStartNotBeforeEnd, 95049u);
}

TEST(OrvStatus, ACodeWithoutTextPrintsErrorCodeNotFound) {
  EXPECT_EQ(StatusCodeText(StatusCode::kCancelled), "Error code not found.");
  EXPECT_EQ(StatusCodeText(StatusCode::kOneDependentValue), "Error code not found.");
  EXPECT_EQ(StatusCodeText(12345), "Error code not found.");
}

TEST(OrvStatus, CodesHaveTheirTexts) {
  EXPECT_EQ(StatusCodeText(StatusCode::kUserError), "User Error.");
  EXPECT_EQ(StatusCodeText(StatusCode::kInvalidValue), "Record with invalid value found.");
  EXPECT_EQ(StatusCodeText(StatusCode::kRecordLeftOut), "Record omitted due to missing values found.");
  EXPECT_EQ(StatusCodeText(StatusCode::kModelNotBuilt),
            "A call to BuildModel() is necessary before this operation.");
  EXPECT_EQ(StatusCodeText(StatusCode::kInvalidEffect), "Invalid effect index for test of model effect.");
}

}  // namespace
}  // namespace tavo
