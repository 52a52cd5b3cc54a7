#include "component/frame/orv_status.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tavo {

namespace {

using CodeText = std::pair<std::uint32_t, std::string_view>;

// For a developer's eyes, so most codes go without: what a user reads is made of the code and its parameters
// where messages are sent.
constexpr std::array<CodeText, 19> kTexts{{
    {StatusCode::kUserError, "User Error."},
    {StatusCode::kNoRecords, "No records found in the data source."},
    {StatusCode::kNullRecord, "Data source iterator error."},
    {StatusCode::kNullRecordData, "Invalid data source pointer."},
    {StatusCode::kShortRecord, "Record shorter than expected."},
    {StatusCode::kInconsistentDesignValue, "Inconsistent inclusion probabilities."},
    {StatusCode::kInvalidValue, "Record with invalid value found."},
    {StatusCode::kRecordLeftOut, "Record omitted due to missing values found."},
    {StatusCode::kMissingInclusionProb, "Missing value given for an inclusion probability."},
    {StatusCode::kPopulationBelowSample, "Population size is less than the sample size."},
    {StatusCode::kUnequalWorNotFirst, "Analysis for UNEQUAL_WOR estimator is currently unavailable."},
    {StatusCode::kNoDependent, "A dependent variable must be specified."},
    {StatusCode::kEmptyModel, "An intercept or at least one other effect must be specified."},
    {StatusCode::kDataProcessedTwice, "A call to ProcessData() when the data already processed."},
    {StatusCode::kDataNotProcessed, "Data must be processed before a model can be built."},
    {StatusCode::kModelBuiltTwice, "A call to BuildModel() when the model is already built."},
    {StatusCode::kModelNotBuilt, "A call to BuildModel() is necessary before this operation."},
    {StatusCode::kWrongLMatrixWidth, "Number of columns in L-Matrix does not equal # parameters."},
    {StatusCode::kInvalidEffect, "Invalid effect index for test of model effect."},
}};

}  // namespace

std::string_view StatusCodeText(std::uint32_t code) {
  const auto* found = std::find_if(kTexts.begin(), kTexts.end(),
                                   [code](const CodeText& entry) { return entry.first == code; });
  return found == kTexts.end() ? "Error code not found." : found->second;
}

}  // namespace tavo
