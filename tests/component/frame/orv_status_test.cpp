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
  EXPECT_TRUE(OrvStatus(91005, true).IsWarning());
  EXPECT_FALSE(OrvStatus(91005, true).IsError());
  EXPECT_TRUE(OrvStatus(91005, false).IsError());
  EXPECT_FALSE(OrvStatus(91005, false).IsWarning());
}

TEST(OrvStatus, RecordsWithUnequalParametersAreUnequal) {
  const OrvStatus base = OrvStatus::Warning(91005);
  EXPECT_EQ(base, OrvStatus::Warning(91005));
  EXPECT_NE(base, OrvStatus::Error(91005));
  EXPECT_NE(base, OrvStatus::Warning(91008));
  EXPECT_NE(base, OrvStatus(base).SetInteger(0, 1));
  EXPECT_NE(base, OrvStatus(base).SetReal(2, 1.5));
}

TEST(OrvStatus, ANaNParameterMakesARecordUnequalToItself) {
  const OrvStatus status = OrvStatus::Error(91006).SetReal(1, std::numeric_limits<double>::quiet_NaN());
  const OrvStatus copy = status;
  EXPECT_FALSE(status == copy);
}

TEST(OrvStatus, ACodeWithoutTextPrintsErrorCodeNotFound) {
  EXPECT_EQ(StatusCodeText(StatusCode::kCancelled), "Error code not found.");
  EXPECT_EQ(StatusCodeText(StatusCode::kOneDependentValue), "Error code not found.");
  EXPECT_EQ(StatusCodeText(12345), "Error code not found.");
}

TEST(OrvStatus, CodesHaveTheirTexts) {
  EXPECT_EQ(StatusCodeText(StatusCode::kUserError), "User Error.");
  EXPECT_EQ(StatusCodeText(StatusCode::kInvalidValue), "Record with invalid value found.");
  EXPECT_EQ(StatusCodeText(91007), "Record omitted due to missing values found.");
  EXPECT_EQ(StatusCodeText(StatusCode::kModelNotBuilt),
            "A call to BuildModel() is necessary before this operation.");
  EXPECT_EQ(StatusCodeText(StatusCode::kInvalidEffect), "Invalid effect index for test of model effect.");
}

}  // namespace
}  // namespace tavo
