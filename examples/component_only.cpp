// The engine without a program around it: plain settings, an array of records, a fitted model.
//
// A survey of schools: three regions (strata), in each of them a few schools (clusters) drawn with
// replacement, in each school a few pupils. Does the pupil pass the test, and does that depend on the kind of
// school and on the hours of practice? The standard errors must know that pupils of one school resemble each
// other.
#include <array>
#include <cstddef>
#include <cstdio>
#include <vector>

#include "component/input/comp_settings.h"
#include "component/input/record_iterator.h"
#include "component/run/component.h"
#include "component/run/output_stats.h"

namespace {

// A record is an array of doubles, one cell per column. Categories are whole codes from 1 on; a missing value
// would be MCCommonMath::MCMV::gMissingValue.
enum Column : int { kRegion, kSchool, kWeight, kPassed, kKind, kHours, kColumnCount };
using Row = std::array<double, kColumnCount>;

constexpr std::array<Row, 24> kPupils{{
    // region, school, weight, passed (1 yes, 2 no), kind of school (1 public, 2 private), hours
    {1, 1, 30, 1, 1, 4.0}, {1, 1, 30, 2, 1, 1.5}, {1, 1, 35, 1, 1, 3.0}, {1, 2, 25, 1, 2, 2.5},
    {1, 2, 25, 2, 2, 2.0}, {1, 2, 28, 1, 2, 5.0}, {1, 3, 32, 2, 1, 0.5}, {1, 3, 32, 2, 1, 2.5},
    {2, 1, 50, 1, 1, 3.5}, {2, 1, 50, 2, 1, 2.0}, {2, 1, 45, 2, 1, 1.0}, {2, 2, 40, 1, 2, 1.0},
    {2, 2, 40, 1, 2, 3.0}, {2, 2, 42, 2, 2, 0.5}, {2, 3, 48, 1, 1, 4.5}, {2, 3, 48, 2, 1, 3.5},
    {3, 1, 20, 2, 2, 1.5}, {3, 1, 20, 1, 2, 2.0}, {3, 1, 22, 1, 2, 4.0}, {3, 2, 24, 2, 1, 2.0},
    {3, 2, 24, 1, 1, 2.5}, {3, 2, 26, 2, 1, 3.0}, {3, 3, 21, 1, 2, 3.5}, {3, 3, 21, 2, 2, 1.0},
}};

// The component reads its records three times, always in the same order.
class PupilStream final : public MCCommon::MultiPassRecordIter {
 public:
  bool HasNext() const override { return fNext < kPupils.size(); }
  const MCCommon::Record* Next() override {
    if (!HasNext()) return nullptr;
    MCCommon::Record& record = fRecords[fNext % 2];  // a record stays intact until the call after next
    const Row& row = kPupils[fNext++];
    for (int column = 0; column < kColumnCount; ++column)
      record[column] = row[static_cast<std::size_t>(column)];
    return &record;
  }
  int IteratorStatus() const override { return HasNext() ? MCCommon::kAvailable : MCCommon::kExhausted; }
  int Reset() override {
    fNext = 0;
    return IteratorStatus();
  }

 private:
  std::array<MCCommon::Record, 2> fRecords{MCCommon::Record(kColumnCount), MCCommon::Record(kColumnCount)};
  std::size_t fNext = 0;
};

// Factors first, then covariates. Effects refer to this list, so it outlives the component.
const std::vector<int> kPredictors = {kKind, kHours};

tavo::TavoCompSettings DescribeSurvey() {
  tavo::TavoCompSettings settings;
  // How the sample was drawn: one stage, schools within regions, with replacement.
  settings.AddDesignCategorical(kRegion, tavo::DesignVariableKind::kStrata, 1);
  settings.AddDesignCategorical(kSchool, tavo::DesignVariableKind::kCluster, 1);
  settings.SetStageEstimator(tavo::StageEstimator::kWithReplacement, 1);
  settings.SetWeightVar(kWeight);

  // What to explain, and by what: an intercept, the kind of school, the hours.
  settings.SetDependent(kPassed, 2, 0);  // the last category is the reference
  settings.AddFactor(kKind, 2);
  settings.AddCovariate(kHours);
  tavo::OrvModelEffect kind(1, 1, &kPredictors);
  kind.AddFactor(kKind, false);
  settings.AddEffect(kind);
  tavo::OrvModelEffect hours(1, 1, &kPredictors);
  hours.AddCovariate(kHours);
  settings.AddEffect(hours);
  return settings;
}

}  // namespace

int main() {
  tavo::TavoComponent component(DescribeSurvey());
  PupilStream pupils;
  const tavo::OrvStatus status = component.BuildModel(pupils);
  const tavo::TavoOutputStats* statistics = nullptr;
  if (status.IsError() || component.OutputStatistics(statistics).IsError()) {
    std::fprintf(stderr, "%s\n", component.StatusText().c_str());
    return 1;
  }

  std::printf("%d regions, %d schools, %.0f pupils in the population\n", statistics->StrataCount(),
              statistics->UnitCount(), statistics->PopulationSize());
  // One parameter for each level of a factor; the last one depends on the others and is redundant.
  const std::array<const char*, 4> names = {"intercept", "public school", "private school", "hours"};
  for (const tavo::OrvParamStats& row : statistics->ParamStats()) {
    const char* const name = names[static_cast<std::size_t>(row.parameterIndex)];
    if (row.redundant) {
      std::printf("%-15s %9.5f  (redundant)\n", name, row.estimate);
    } else {
      std::printf("%-15s %9.5f  SE %.5f  p %.4f\n", name, row.estimate, row.standardError, row.significance);
    }
  }
  return 0;
}
