#include "component/estimation/fit_progress.h"

#include <gtest/gtest.h>

#include "component/frame/orv_cancel_info.h"
#include "component/numerics/missing_value.h"

namespace {

using tavo::OrvCancelInfo;
using tavo::OrvIterationData;
using tavo::OrvIterationReporter;

TEST(IterationReporter, AnswersByNameAndZeroForUnknownNames) {
  const std::vector<double> estimates{1, 2};
  OrvIterationReporter reporter;
  reporter.Set(&estimates, 4, 2, -7.5, 0.25);
  EXPECT_EQ(reporter.GetInt("iterNum"), 4);
  EXPECT_EQ(reporter.GetInt("stepHalving"), 2);
  EXPECT_EQ(reporter.GetDouble("loglik"), -7.5);
  EXPECT_EQ(reporter.GetDouble("time"), 0.25);
  EXPECT_EQ(reporter.GetVector("paramEstim"), &estimates);
  EXPECT_EQ(reporter.GetInt("loglik"), 0);
  EXPECT_EQ(reporter.GetDouble("iterNum"), 0);
  EXPECT_EQ(reporter.GetVector("iterNum"), nullptr);
}

TEST(IterationData, KeepsACopyOfEachReportWithMinusTwoLogLikelihood) {
  OrvIterationData history;
  OrvIterationReporter reporter;
  std::vector<double> estimates{1.5};
  reporter.Set(&estimates, 0, 0, -10, 0);
  history.Update(reporter);
  estimates[0] = 2.5;
  reporter.Set(&estimates, 1, 3, MCCommonMath::MCMV::gMissingValue, 0);
  history.Update(reporter);
  ASSERT_EQ(history.Rows().size(), 2u);
  EXPECT_EQ(history.Rows()[0].minusTwoLogLikelihood, 20);
  EXPECT_EQ(history.Rows()[0].estimates, std::vector<double>{1.5});
  EXPECT_EQ(history.Rows()[1].iteration, 1);
  EXPECT_EQ(history.Rows()[1].stepHalvings, 3);
  EXPECT_EQ(history.Rows()[1].minusTwoLogLikelihood, MCCommonMath::MCMV::gMissingValue);
}

TEST(IterationData, AReportOfAnotherTypeAddsNoRow) {
  class Plain : public tavo::ProgressReport {
    int GetInt(std::string_view) const override { return 1; }
    double GetDouble(std::string_view) const override { return 1; }
  };
  OrvIterationData history;
  history.Update(Plain());
  EXPECT_TRUE(history.Rows().empty());
}

class StopAt : public host::MCStopProcessor {
 public:
  explicit StopAt(int call) : fCall(call) {}
  bool IsStopRequested() override { return ++calls >= fCall; }
  int calls = 0;

 private:
  int fCall;
};

TEST(CancelInfo, LatchesAndAsksTheHostNoMore) {
  StopAt stop(3);
  const OrvCancelInfo cancel(&stop);
  EXPECT_FALSE(cancel.IsCancelled());
  EXPECT_FALSE(cancel.IsCancelled());
  EXPECT_TRUE(cancel.IsCancelled());
  EXPECT_TRUE(cancel.IsCancelled());
  EXPECT_EQ(stop.calls, 3);
}

TEST(CancelInfo, WithoutASourceOnlyCancelStops) {
  OrvCancelInfo cancel;
  EXPECT_FALSE(cancel.IsCancelled());
  cancel.Cancel();
  EXPECT_TRUE(cancel.IsCancelled());
}

}  // namespace
