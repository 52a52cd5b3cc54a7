// The file of joint inclusion probabilities, its checks, and the strata that are read from it.
#include "module/input/jprob_adapter.h"

#include <cmath>

#include "adapter_fixture.h"
#include "module/input/proc_joint_incl_probs.h"

namespace tavo {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Units = MCOrv::JointInclProbs::Units;
using Matrix = std::vector<double>;

/// Data with strata h (1, 2) and clusters psu (10, 20, 30), and a file beside them with the columns of
/// `file`.
class JointFile : public AdapterTest {
 protected:
  /// Reads the active data, whose categories get codes in this order: h 1, 2 and psu 10, 20, 30.
  void ReadData(bool hasStrata = true) {
    const int h = Add("h");
    const int psu = Add("psu");
    PlanStageSpec spec;
    spec.stage.stageNumber = 1;
    spec.stage.estimator = StageEstimator::kUnequalWor;
    if (hasStrata) spec.stage.strata = {h};
    spec.stage.clusters = {psu};
    fSpecs.AddStage(std::move(spec));
    fSpecs.NumberColumns();
    for (const auto& [stratum, unit] : {std::pair(1, 10), {1, 20}, {2, 10}, {2, 30}})
      fSource.AddCase({stratum, unit});
    Start();
    ReadAll();
  }
  void SetColumns(const std::vector<std::string>& names) {
    for (const std::string& name : names)
      fFile.AddVariable(name);
  }
  /// Columns h, psu, Unit_No_, p1, p2, p3.
  void SetUsualColumns() { SetColumns({"h", "psu", "Unit_No_", "p1", "p2", "p3"}); }
  OrvJProbAdapter::Error Read(bool includeUserMissing = false) {
    fpJoint = std::make_unique<OrvJProbAdapter>(*fAdapter, fSpecs, fSource, fFile, includeUserMissing);
    return fpJoint->GetError();
  }
  bool ReadStratum(const std::vector<std::int32_t>& key) {
    return fpJoint->ReadStratum(key, fUnits, fMatrix);
  }
  std::vector<std::string> Keys() {
    std::vector<std::string> keys;
    for (const standalone::Message& message : Messages())
      keys.push_back(message.key);
    return keys;
  }
  /// Reads the file, which must have no error, and its stratum of code 1, which must have this one.
  void ExpectBadStratum(const char* key) {
    ASSERT_EQ(Read(), OrvJProbAdapter::kNone);
    EXPECT_FALSE(ReadStratum({1}));
    EXPECT_THAT(Keys(), ElementsAre(key));
    EXPECT_TRUE(Messages().back().isError);
    EXPECT_THAT(fUnits, IsEmpty());
    EXPECT_THAT(fMatrix, IsEmpty());
  }
  void ExpectBadFile(OrvJProbAdapter::Error error, const char* key) {
    EXPECT_EQ(Read(), error);
    EXPECT_THAT(Keys(), ElementsAre(key));
    EXPECT_FALSE(Messages().back().isError);
    EXPECT_FALSE(ReadStratum({1}));
    EXPECT_EQ(Keys().size(), 1U) << "the file's error has been told";
  }

  ScriptedSource fFile;
  std::unique_ptr<OrvJProbAdapter> fpJoint;
  Units fUnits;
  Matrix fMatrix;
};

constexpr const char* kNotInFile = "Some strata or cluster variable not in joint prob file ...";
constexpr const char* kWrongTypes = "Some strata or cluster variable have wrong types in joint prob file ...";
constexpr const char* kMissingInFile = "No missing joint incl prob ...";
constexpr const char* kDuplicate = "Duplicate cluster or Unit_No_ ...";
constexpr const char* kInvalidUnit = "Invalid Unit_No_ value ...";

// ---- what is read ----

TEST_F(JointFile, GivesTheUnitsAndTheMatrixOfEachStratum) {
  ReadData();
  SetUsualColumns();
  fFile.AddCase({1, 10, 1, 0.5, 0.2, kMissing});
  fFile.AddCase({1, 20, 2, 0.2, 0.6, kMissing});
  fFile.AddCase({2, 30, 1, 0.9, 0.1, 0.3});
  fFile.AddCase({2, 10, 2, 0.1, 0.8, 0.7});
  fFile.AddCase({2, 20, 3, 0.3, 0.7, 0.75});
  ASSERT_EQ(Read(), OrvJProbAdapter::kNone);
  EXPECT_TRUE(ReadStratum({1}));
  EXPECT_EQ(fUnits, (Units{{{1}, 1}, {{2}, 2}}));
  EXPECT_EQ(fMatrix, (Matrix{0.5, 0.2, 0.2, 0.6})) << "columns beyond the stratum's units are not read";
  EXPECT_TRUE(ReadStratum({2}));
  EXPECT_EQ(fUnits, (Units{{{3}, 1}, {{1}, 2}, {{2}, 3}}));
  EXPECT_EQ(fMatrix, (Matrix{0.9, 0.1, 0.3, 0.1, 0.8, 0.7, 0.3, 0.7, 0.75}));
  EXPECT_THAT(Keys(), IsEmpty());
}

TEST_F(JointFile, MayHaveItsRowsAndStrataInAnyOrder) {
  ReadData();
  SetUsualColumns();
  fFile.AddCase({2, 30, 2, 0.1, 0.8, 0});
  fFile.AddCase({1, 20, 2, 0.2, 0.6, 0});
  fFile.AddCase({2, 10, 1, 0.9, 0.1, 0});
  fFile.AddCase({1, 10, 1, 0.5, 0.2, 0});
  ASSERT_EQ(Read(), OrvJProbAdapter::kNone);
  for (int again = 0; again < 2; ++again) {
    EXPECT_TRUE(ReadStratum({2}));
    EXPECT_EQ(fUnits, (Units{{{1}, 1}, {{3}, 2}}));
    EXPECT_EQ(fMatrix, (Matrix{0.9, 0.1, 0.1, 0.8}));
    EXPECT_TRUE(ReadStratum({1}));
    EXPECT_EQ(fMatrix, (Matrix{0.5, 0.2, 0.2, 0.6}));
  }
}

TEST_F(JointFile, WithoutStrataIsOneStratum) {
  ReadData(false);
  SetColumns({"psu", "Unit_No_", "p1", "p2"});
  fFile.AddCase({30, 2, 0.2, 0.6});
  fFile.AddCase({10, 1, 0.5, 0.2});
  ASSERT_EQ(Read(), OrvJProbAdapter::kNone);
  EXPECT_TRUE(ReadStratum({}));
  EXPECT_EQ(fUnits, (Units{{{1}, 1}, {{3}, 2}}));
}

TEST_F(JointFile, OfAStratumWithOneUnitGivesAOneByOneMatrix) {
  ReadData();
  SetUsualColumns();
  fFile.AddCase({1, 10, 1, 0.25, 0, kMissing});
  ASSERT_EQ(Read(), OrvJProbAdapter::kNone);
  EXPECT_TRUE(ReadStratum({1}));
  EXPECT_EQ(fMatrix, Matrix{0.25});
}

TEST_F(JointFile, AddsCodesForUnitsThatTheDataDoNotHave) {
  ReadData();
  SetUsualColumns();
  fFile.AddCase({1, 99, 1, 0.5, 0.2, 0.1});
  fFile.AddCase({1, 10, 2, 0.2, 0.6, 0.1});
  fFile.AddCase({1, 98, 3, 0.1, 0.1, 0.6});
  ASSERT_EQ(Read(), OrvJProbAdapter::kNone);
  EXPECT_TRUE(ReadStratum({1}));
  EXPECT_EQ(fUnits, (Units{{{4}, 1}, {{1}, 2}, {{5}, 3}}));
}

TEST_F(JointFile, MayHaveTheVariablesOfAGroupInAnotherOrderThanThePlan) {
  const int region = Add("region");
  const int district = Add("district", 5);
  const int psu = Add("psu");
  PlanStageSpec spec;
  spec.stage.stageNumber = 1;
  spec.stage.estimator = StageEstimator::kUnequalWor;
  spec.stage.strata = {region, district};
  spec.stage.clusters = {psu};
  fSpecs.AddStage(std::move(spec));
  fSpecs.NumberColumns();
  fSource.AddCase({7, "west", 3});
  fSource.AddCase({8, "north", 3});
  Start();
  ReadAll();
  fFile.AddVariable("district", 5);
  SetColumns({"region", "psu", "Unit_No_", "p1"});
  fFile.AddCase({"north", 7, 3, 1, 0.5});
  fFile.AddCase({"west", 8, 3, 1, 0.25});
  ASSERT_EQ(Read(), OrvJProbAdapter::kNone);
  EXPECT_TRUE(ReadStratum({1, 2}));  // region 7, north
  EXPECT_EQ(fMatrix, Matrix{0.5});
  EXPECT_TRUE(ReadStratum({2, 1}));
  EXPECT_EQ(fMatrix, Matrix{0.25});
}

TEST_F(JointFile, CountsTheIntegerPartOfAUnitNumber) {
  ReadData();
  SetUsualColumns();
  fFile.AddCase({1, 10, 1.9, 0.25, 0, 0});
  ASSERT_EQ(Read(), OrvJProbAdapter::kNone);
  EXPECT_TRUE(ReadStratum({1}));
}

// ---- faults of the file ----

TEST_F(JointFile, WithoutADesignVariableInItsPlaceHasError1) {
  ReadData();
  SetColumns({"psu", "h", "Unit_No_", "p1"});
  ExpectBadFile(OrvJProbAdapter::kVariableNotInFile, kNotInFile);
}

TEST_F(JointFile, WithAVariableThatTheDataDoNotHaveHasError1) {
  ReadData();
  SetColumns({"h", "cluster", "Unit_No_", "p1"});
  ExpectBadFile(OrvJProbAdapter::kVariableNotInFile, kNotInFile);
}

TEST_F(JointFile, WithoutAUnitNumberHasError1) {
  ReadData();
  SetColumns({"h", "psu"});
  ExpectBadFile(OrvJProbAdapter::kVariableNotInFile, kNotInFile);
}

TEST_F(JointFile, WithTooFewVariablesHasError1) {
  ReadData();
  SetColumns({"h"});
  ExpectBadFile(OrvJProbAdapter::kVariableNotInFile, kNotInFile);
}

TEST_F(JointFile, WithAnotherTypeOfADesignVariableHasError2) {
  ReadData();
  SetColumns({"h"});
  fFile.AddVariable("psu", 4);
  SetColumns({"Unit_No_", "p1"});
  ExpectBadFile(OrvJProbAdapter::kWrongType, kWrongTypes);
}

TEST_F(JointFile, WithTextWhereNumbersBelongHasError2) {
  ReadData();
  SetColumns({"h", "psu", "Unit_No_", "p1"});
  fFile.AddVariable("p2", 8);
  ExpectBadFile(OrvJProbAdapter::kWrongType, kWrongTypes);
}

TEST_F(JointFile, WithoutAStratumClusterOrUnitNumberInARowHasError3) {
  ReadData();
  SetUsualColumns();
  for (std::size_t gap = 0; gap < 3; ++gap) {
    std::vector<Value> row = {1, 10, 1, 0.5, 0.2, 0.1};
    row[gap] = kMissing;
    fFile.ClearCases();
    fFile.AddCase(row);
    EXPECT_EQ(Read(), OrvJProbAdapter::kValueMissing) << gap;
    EXPECT_FALSE(ReadStratum({1}));
  }
  EXPECT_THAT(Keys(), ElementsAre(kMissingInFile)) << "a message that repeats is shown once";
}

TEST_F(JointFile, TakesADeclaredMissingCodeWhenTheDataDo) {
  ReadData();
  SetUsualColumns();
  host::VORN_MissingValues missing;
  missing.values.push_back(Number(10));
  fFile.GetVariable(1)->SetMissingValues(missing);
  fFile.AddCase({1, 10, 1, 0.5, 0, 0});
  EXPECT_EQ(Read(true), OrvJProbAdapter::kNone);
  EXPECT_TRUE(ReadStratum({1}));
  EXPECT_EQ(Read(false), OrvJProbAdapter::kValueMissing);
}

TEST_F(JointFile, WithAUnitNumberTwiceInAStratumHasError4) {
  ReadData();
  SetUsualColumns();
  fFile.AddCase({1, 10, 1, 0.5, 0.2, 0.1});
  fFile.AddCase({1, 20, 1, 0.5, 0.2, 0.1});
  ExpectBadFile(OrvJProbAdapter::kDuplicateUnit, kDuplicate);
}

TEST_F(JointFile, WithoutAPassOverItIsNotReadable) {
  ReadData();
  SetUsualColumns();
  fFile.refusesPasses = true;
  EXPECT_EQ(Read(), OrvJProbAdapter::kNotReadable);
  EXPECT_FALSE(ReadStratum({1}));
  EXPECT_THAT(Keys(), IsEmpty());
}

TEST_F(JointFile, WithoutRowsHasNoStratum) {
  ReadData();
  SetUsualColumns();
  ExpectBadStratum("Some levels not in joint prob file ...");
}

// ---- faults of a stratum ----

TEST_F(JointFile, WithUnitNumbers1And3GivesTheInvalidValueMessage) {
  ReadData();
  SetUsualColumns();
  fFile.AddCase({1, 10, 1, 0.5, 0.2, 0.1});
  fFile.AddCase({1, 20, 3, 0.2, 0.5, 0.5});
  ExpectBadStratum(kInvalidUnit);
}

TEST_F(JointFile, WithUnitNumbersThatNoUnitCanHaveGivesTheInvalidValueMessage) {
  ReadData();
  SetUsualColumns();
  for (const double number : {0.0, -3.0, 2.0, 0.5, 1e300, -1e300}) {
    fFile.ClearCases();
    fFile.AddCase({1, 10, number, 0.5, 0.2, 0.1});
    ASSERT_EQ(Read(), OrvJProbAdapter::kNone);
    EXPECT_FALSE(ReadStratum({1}));
    EXPECT_EQ(Keys().back(), kInvalidUnit) << number;
  }
}

TEST_F(JointFile, WithMoreUnitsThanProbabilityColumnsSaysSo) {
  ReadData();
  SetColumns({"h", "psu", "Unit_No_", "p1"});
  fFile.AddCase({1, 10, 1, 0.5});
  fFile.AddCase({1, 20, 2, 0.5});
  ExpectBadStratum("Unit_No_ value too big ...");
}

TEST_F(JointFile, WithoutAStratumOfTheDataSaysSo) {
  ReadData();
  SetUsualColumns();
  fFile.AddCase({2, 10, 1, 0.5, 0.2, 0.1});
  ExpectBadStratum("Some levels not in joint prob file ...");
}

TEST_F(JointFile, WithAClusterTwiceInAStratumSaysSo) {
  ReadData();
  SetUsualColumns();
  fFile.AddCase({1, 10, 1, 0.5, 0.2, 0.1});
  fFile.AddCase({1, 10, 2, 0.2, 0.5, 0.1});
  ExpectBadStratum(kDuplicate);
}

TEST_F(JointFile, AcceptsAProbabilityOfOneAndNotOfZero) {
  ReadData();
  SetUsualColumns();
  fFile.AddCase({1, 10, 1, 1, 1, 0});
  fFile.AddCase({1, 20, 2, 1, 1, 0});
  fFile.AddCase({2, 10, 1, 0.5, 0, 0});
  fFile.AddCase({2, 20, 2, 0.1, 0.5, 0});
  ASSERT_EQ(Read(), OrvJProbAdapter::kNone);
  EXPECT_TRUE(ReadStratum({1}));
  EXPECT_EQ(fMatrix, (Matrix{1, 1, 1, 1}));
  EXPECT_FALSE(ReadStratum({2}));
  EXPECT_THAT(Keys(), ElementsAre("Invalid joint incl probability ..."));
}

TEST_F(JointFile, RefusesWhatIsNoProbability) {
  ReadData();
  SetUsualColumns();
  for (const Value& bad : {kMissing, Value(-0.1), Value(1.000001), Value(std::nan(""))}) {
    fFile.ClearCases();
    fFile.AddCase({1, 10, 1, 0.5, bad, 0.1});
    fFile.AddCase({1, 20, 2, 0.1, 0.5, 0.1});
    ASSERT_EQ(Read(), OrvJProbAdapter::kNone);
    EXPECT_FALSE(ReadStratum({1}));
    EXPECT_EQ(Keys().back(), "Invalid joint incl probability ...") << bad.number;
  }
}

TEST_F(JointFile, WithAPairMoreLikelyThanOneOfItsUnitsIsOutOfRange) {
  ReadData();
  SetUsualColumns();
  for (const auto& [own, other] : {std::pair(0.3, 0.6), {0.6, 0.3}}) {
    fFile.ClearCases();
    fFile.AddCase({1, 10, 1, own, 0.4, 0});
    fFile.AddCase({1, 20, 2, 0.2, other, 0});
    ASSERT_EQ(Read(), OrvJProbAdapter::kNone);
    EXPECT_FALSE(ReadStratum({1}));
    EXPECT_EQ(Keys().back(), "Joint incl prob out of range ...") << own;
  }
}

TEST_F(JointFile, MayBeAsymmetric) {
  ReadData();
  SetUsualColumns();
  fFile.AddCase({1, 10, 1, 0.5, 0.4, 0});
  fFile.AddCase({1, 20, 2, 0.1, 0.5, 0});
  ASSERT_EQ(Read(), OrvJProbAdapter::kNone);
  EXPECT_TRUE(ReadStratum({1}));
  EXPECT_EQ(fMatrix, (Matrix{0.5, 0.4, 0.1, 0.5}));
}

// ---- for the component ----

TEST_F(JointFile, AnswersTheComponentWithError2ForAFailedLookUp) {
  ReadData();
  SetUsualColumns();
  fFile.AddCase({1, 10, 1, 0.5, 0, 0});
  Read();
  OrvProcJointInclProbs joint(std::move(fpJoint));
  EXPECT_TRUE(joint.ReadStratum({1}, fUnits, fMatrix));
  EXPECT_EQ(joint.GetError(), 0);
  EXPECT_FALSE(joint.ReadStratum({2}, fUnits, fMatrix));
  EXPECT_EQ(joint.GetError(), 2);
}

TEST_F(JointFile, WithAnErrorMakesTheComponentRefuseEveryStratum) {
  ReadData();
  SetColumns({"h"});
  Read();
  OrvProcJointInclProbs joint(std::move(fpJoint));
  EXPECT_FALSE(joint.ReadStratum({1}, fUnits, fMatrix));
  EXPECT_EQ(joint.GetError(), 2);
}

TEST(ProcJointInclProbs, WithoutAnAdapterHaveError4) {
  OrvProcJointInclProbs joint(nullptr);
  Units units = {{{1}, 1}};
  Matrix matrix = {0.5};
  EXPECT_EQ(joint.GetError(), 4);
  EXPECT_FALSE(joint.ReadStratum({1}, units, matrix));
  EXPECT_THAT(units, IsEmpty());
  EXPECT_THAT(matrix, IsEmpty());
  EXPECT_EQ(joint.GetError(), 4);
}

}  // namespace
}  // namespace tavo
