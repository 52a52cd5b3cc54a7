// tavoreg plan create
#include <chrono>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <optional>
#include <ostream>

#include "host/output.h"
#include "module/command/plan/plan_methods.h"
#include "module/command/plan/plan_reader.h"
#include "module/command/plan/plan_writer.h"
#include "standalone/cli/commands.h"
#include "standalone/cli/plan_matrix_file.h"
#include "standalone/files/atomic_file.h"
#include "standalone/session/embedded_session.h"
#include "standalone/text/ascii.h"
#include "standalone/text/numbers.h"
#include "standalone/text/suggestion.h"

namespace standalone {

namespace {

namespace fs = std::filesystem;
using tavo::OrvPlanData;
using tavo::OrvPlanStage;
using tavo::PlanMethod;
using tavo::PlanStatus;
using tavo::PlanValueKind;
using tavo::PlanValueWay;

bool Refuse(const std::string& text) {
  SessionScope::Current().AddTextMessage(true, "Plan not made...", text);
  return false;
}

/// Hyphens may stand for the low lines of the methods' names.
std::string Underscored(std::string word) {
  for (char& c : word) {
    if (c == '-') c = '_';
  }
  return word;
}

bool IsTableName(const std::string& text) {
  return UpperOf(fs::path(text).extension().string()) == ".CSV";
}

/// Fills a plan from the options. What a reader of the plan would refuse is left to it.
class PlanBuilder {
 public:
  explicit PlanBuilder(const PlanCreateArguments& arguments) : fArguments(arguments) {}

  bool Build(OrvPlanData& plan) {
    plan.mode = tavo::PlanMode::ANALYSIS_MODE;
    if (!BuildWhole(plan)) return false;
    for (const PlanStageArguments& given : fArguments.stages) {
      OrvPlanStage& stage = plan.stages.emplace_back();
      stage.stageNumber = static_cast<int>(plan.stages.size());
      fStage = "stage " + std::to_string(stage.stageNumber);
      if (!BuildStage(given, stage)) return false;
    }
    return true;
  }

 private:
  bool BuildWhole(OrvPlanData& plan) const {
    if (fArguments.stages.size() == 1 && fArguments.stages.front().Empty()) {
      return Refuse("The plan has no stage. Say how the sample was drawn: --strata, --cluster, --estimator.");
    }
    if (fArguments.weight.empty()) {
      return Refuse(
          "The plan names no weight variable, without which the sample cannot stand for its population. Add "
          "--weight VARIABLE.");
    }
    plan.weight = fArguments.weight;
    if (fArguments.srs == "wr") plan.srsEstimator = tavo::PlanSRSEstimator::WR;
    if (fArguments.srs != "wr" && fArguments.srs != "wor" && !fArguments.srs.empty()) {
      return Refuse("--srs is wr or wor, not " + fArguments.srs + ".");
    }
    if (!tavo::OrvPlanWriter::CanHold(fArguments.description)) return RefuseText("description");
    return true;
  }

  bool BuildStage(const PlanStageArguments& given, OrvPlanStage& stage) const {
    if (!tavo::OrvPlanWriter::CanHold(given.label)) return RefuseText("label");
    stage.label = given.label;
    stage.strata.assign(given.strata.begin(), given.strata.end());
    stage.clusters.assign(given.clusters.begin(), given.clusters.end());
    return ReadMethod(given, stage) && CheckSizes(given, stage) && ReadSizes(given, stage);
  }

  bool RefuseText(const std::string& what) const {
    return Refuse("The " + what +
                  " holds characters that no XML document can hold, or is no UTF-8. Leave them out.");
  }

  // Sizes are of use to one method only, so they say which.
  bool ReadMethod(const PlanStageArguments& given, OrvPlanStage& stage) const {
    const bool hasSizes = !given.population.empty() || !given.probability.empty();
    if (given.estimator.empty() && hasSizes) {
      stage.method = PlanMethod::EQUAL_WOR;
      return true;
    }
    if (given.estimator.empty()) {
      return Refuse("The plan doesn't say how the units of " + fStage +
                    " were drawn. Add --estimator wr (with replacement), equal_wor or unequal_wor (without "
                    "replacement, with equal or unequal probabilities).");
    }
    stage.method = tavo::EstimationMethodOf(Underscored(given.estimator));
    if (stage.method != PlanMethod::NO_VALUE) return true;
    const std::vector<std::string> names = {"wr", "equal_wor", "unequal_wor"};
    const std::string nearest = NearestWord(given.estimator, names);
    return Refuse("--estimator of " + fStage + " is wr, equal_wor or unequal_wor, not " + given.estimator +
                  "." + (nearest.empty() ? "" : " Did you mean " + nearest + "?"));
  }

  bool CheckSizes(const PlanStageArguments& given, const OrvPlanStage& stage) const {
    const bool hasBoth = !given.population.empty() && !given.probability.empty();
    const bool hasNone = given.population.empty() && given.probability.empty();
    if (hasBoth) {
      return Refuse("There are both --population and --probability for " + fStage +
                    ". One follows from the other: give one of them.");
    }
    if (stage.method == PlanMethod::EQUAL_WOR && hasNone) {
      return Refuse("The units of " + fStage +
                    " were drawn without replacement, so their variance depends on how many there were. Add "
                    "--population or --probability.");
    }
    if (stage.method != PlanMethod::EQUAL_WOR && !hasNone) {
      return Refuse("The estimator " + std::string(tavo::WordOf(stage.method)) + " of " + fStage +
                    " uses no population sizes and no probabilities. Leave them out, or set --estimator "
                    "equal_wor.");
    }
    return true;
  }

  bool ReadSizes(const PlanStageArguments& given, OrvPlanStage& stage) const {
    if (stage.method != PlanMethod::EQUAL_WOR) return true;
    const bool isSize = !given.population.empty();
    const std::string& text = isSize ? given.population : given.probability;
    stage.valueKind = isSize ? PlanValueKind::POPSIZE : PlanValueKind::INCLPROB;
    const std::optional<double> number = DoubleFromText(text);
    if (number && std::isfinite(*number)) {  // "inf" and "nan" are names of variables
      stage.valueWay = PlanValueWay::BY_VALUE;
      stage.value = *number;
    } else if (IsTableName(text)) {
      stage.valueWay = PlanValueWay::BY_VARCATLIST;
      const std::string error = ReadMatrixFile(text, isSize ? "size" : "probability", stage.valueMatrix);
      if (!error.empty()) return Refuse("The table for " + fStage + " cannot be used: " + error);
    } else {
      stage.valueWay = PlanValueWay::BY_VARNAME;
      stage.valueVariable = text;
    }
    return true;
  }

  const PlanCreateArguments& fArguments;
  std::string fStage;
};

std::string Now() {
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm parts{};
  // Universal time, so that plans made in different places can be put in order.
  ::gmtime_r(&now, &parts);
  char text[32];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts)};
}

/// Reads the text as a run would, and says what it would refuse.
bool IsSound(const std::string& text) {
  OrvPlanData plan;
  tavo::OrvPlanReader reader(plan);
  const PlanStatus status = reader.ReadAnalysisText(text, "the plan");
  tavo::OrvPlanMessages::Report(status, reader.Detail());
  if (status != PlanStatus::kOK) return false;
  const std::string fault = tavo::OrvPlanReader::SchemaFaultOfText(text, "the plan");
  if (!fault.empty()) return Refuse("The plan breaks its schema: " + fault + ".");
  const OrvPlanStage& first = plan.stages.front();
  if (first.method != PlanMethod::UNEQUAL_WOR || !first.clusters.empty()) return true;
  return Refuse(
      "Unequal probabilities belong to pairs of units, and stage 1 has no cluster variables that tell its "
      "units apart. Add --cluster.");
}

bool MayWrite(const PlanCreateArguments& arguments) {
  std::error_code ignored;
  const fs::file_status status = fs::symlink_status(arguments.output, ignored);
  const bool isKept = fs::is_regular_file(status) || fs::is_symlink(status);
  if (!isKept || arguments.overwrite) return true;
  return Refuse("The file " + arguments.output +
                " is there already. Give the plan another name, or replace the file with --force.");
}

int Write(const std::string& path, const std::string& text) {
  if (path.empty()) {
    std::cout << text << std::flush;
    return std::cout ? kRan : kOutputFailed;
  }
  const std::string error = WriteFileAtomically(path, [&](std::ostream& out) { out << text; });
  if (!error.empty()) Refuse("The plan file " + error + ".");
  return error.empty() ? kRan : kOutputFailed;
}

}  // namespace

int CreatePlan(const PlanCreateArguments& arguments) {
  OrvPlanData plan;
  if (!MayWrite(arguments) || !PlanBuilder(arguments).Build(plan)) return kBadCall;
  tavo::PlanHeader header;
  header.copyright = "Made with tavoreg";
  header.description = arguments.description;
  header.application = "tavoreg";
  header.timestamp = Now();
  const std::string text = tavo::OrvPlanWriter::Write(header, nullptr, &plan);
  return IsSound(text) ? Write(arguments.output, text) : kBadCall;
}

}  // namespace standalone
