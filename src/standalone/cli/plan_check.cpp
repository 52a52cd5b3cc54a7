#include "standalone/cli/plan_check.h"

#include <algorithm>
#include <memory>

#include "standalone/cli/stage_value.h"
#include "standalone/cli/unit_tally.h"
#include "standalone/data/table.h"
#include "standalone/output/content_text.h"
#include "standalone/text/numbers.h"
#include "standalone/text/suggestion.h"

namespace standalone {

namespace {

using host::kSystemMissing;
using tavo::OrvPlanData;
using tavo::OrvPlanStage;
using tavo::PlanMethod;
using tavo::PlanValueWay;

std::string Plural(std::size_t count, const std::string& one, const std::string& many) {
  return count == 1 ? "1 " + one : std::to_string(count) + " " + many;
}

// ---- the plan against the dictionary ----

/// The variables of a stage, by their place in the data.
struct StageVariables {
  std::vector<int> strata, clusters, matrix;
  int value = -1;
};

class Dictionary {
 public:
  Dictionary(const Table& table, std::vector<PlanFinding>& findings) : fTable(table), fFindings(findings) {
    for (std::size_t i = 0; i < table.ColumnCount(); ++i)
      fNames.push_back(table.At(i).variable.GetName());
  }

  /// The place of a variable; -1 after a finding. `role` says what it is for.
  int Find(const std::string& name, const std::string& role, bool mustBeNumeric) {
    const int index = fTable.Find(name);
    if (index < 0) {
      const std::string nearest = NearestWord(name, fNames);
      Stop("The data have no variable " + name + " (" + role + ")." +
           (nearest.empty() ? "" : " Did you mean " + nearest + "?"));
      return -1;
    }
    if (mustBeNumeric && !fTable.At(static_cast<std::size_t>(index)).variable.IsNumeric()) {
      Stop("Variable " + name + " (" + role + ") is a string; it must be numeric.");
      return -1;
    }
    return index;
  }

  std::vector<int> FindAll(const std::vector<host::VornVarName>& names, const std::string& role) {
    std::vector<int> places;
    for (const host::VornVarName& name : names)
      places.push_back(Find(name.Text(), role, false));
    return places;
  }

  StageVariables FindStage(const OrvPlanStage& stage) {
    const std::string of = " of stage " + std::to_string(stage.stageNumber);
    StageVariables places;
    places.strata = FindAll(stage.strata, "stratum" + of);
    places.clusters = FindAll(stage.clusters, "cluster" + of);
    if (stage.valueWay == PlanValueWay::BY_VARNAME) {
      places.value = Find(stage.valueVariable.Text(), StageValue::Name(stage) + of, true);
    }
    if (stage.valueWay == PlanValueWay::BY_VARCATLIST) {
      for (const std::string& name : stage.valueMatrix.copyVarList())
        places.matrix.push_back(Find(name, "matrix" + of, false));
    }
    return places;
  }

  void Stop(const std::string& text) { fFindings.push_back({true, text, {}, 0}); }

 private:
  const Table& fTable;
  std::vector<PlanFinding>& fFindings;
  std::vector<std::string> fNames;
};

/// What a run refuses in a plan that the reader accepts.
void CheckCompleteness(const OrvPlanData& plan, Dictionary& dictionary) {
  if (plan.stages.empty()) dictionary.Stop("The plan has no stage.");
  if (plan.weight.Empty()) dictionary.Stop("The plan names no weight variable.");
  for (std::size_t k = 0; k < plan.stages.size(); ++k) {
    const OrvPlanStage& stage = plan.stages[k];
    const std::string name = "Stage " + std::to_string(k + 1);
    if (stage.stageNumber != static_cast<int>(k) + 1) {
      dictionary.Stop(name + " has the number " + std::to_string(stage.stageNumber) +
                      "; stages are numbered 1, 2, 3 in their order.");
    }
    if (stage.method == PlanMethod::NO_VALUE)
      dictionary.Stop(name + " has no estimation method that is known.");
    if (stage.method == PlanMethod::EQUAL_WOR && stage.valueWay == PlanValueWay::NOT_GIVEN) {
      dictionary.Stop(name + " gives neither population sizes nor inclusion probabilities.");
    }
    if (stage.method == PlanMethod::UNEQUAL_WOR && stage.clusters.empty()) {
      dictionary.Stop(name + " has unequal probabilities and no cluster variables.");
    }
  }
}

// ---- the cases ----

struct StageState {
  const OrvPlanStage* plan;
  UnitTally tally;
  StageValue value;
};

class CasePass {
 public:
  CasePass(const OrvPlanData& plan, const std::vector<StageVariables>& places, int weight, const Table& table,
           host::ProcedureDataSource& source, PlanCheck& check)
      : fPlaces(places),
        fTable(table),
        fpIterator(source.NewInputIterator(0)),
        fWeight(*fpIterator, static_cast<unsigned>(weight)),
        fCheck(check) {
    fStages.reserve(plan.stages.size());
    for (std::size_t k = 0; k < plan.stages.size(); ++k) {
      fStages.push_back({&plan.stages[k],
                         {source, *fpIterator, places[k].strata, places[k].clusters},
                         {plan.stages[k], places[k].value, places[k].matrix, source, *fpIterator}});
    }
  }

  void Run() {
    while (fpIterator->NextCase() != 0) {
      if (IsInSample()) EnterCase();
      ++fCheck.cases;
    }
    ReportLeftOut();
    bool addsVariance = true;
    for (std::size_t k = 0; k < fStages.size(); ++k) {
      Count(fStages[k]);
      ReportStage(k, addsVariance);
      // What is drawn with replacement shows its whole variance between its units; the stages below add none.
      addsVariance = addsVariance && fStages[k].plan->method != PlanMethod::WR;
    }
  }

 private:
  bool IsInSample() {
    if (fWeight.IsMissing()) return ++fCheck.weightMissing, false;
    if (fWeight.Number() < 0) return ++fCheck.weightNegative, false;
    if (fWeight.Number() == 0) return ++fCheck.weightZero, false;
    const bool isMissing =
        std::any_of(fStages.begin(), fStages.end(), [](const StageState& s) { return s.tally.IsMissing(); });
    if (isMissing) ++fCheck.designMissing;
    return !isMissing;
  }

  void EnterCase() {
    std::size_t unit = 0;
    for (StageState& stage : fStages) {
      unit = stage.tally.Enter(unit, fCheck.cases);
      if (stage.value.Varies()) stage.tally.EnterValue(stage.value.Current(fCheck.cases + 1));
    }
  }

  void ReportLeftOut() {
    const auto add = [this](std::size_t count, const std::string& why) {
      if (count == 0) return;
      fCheck.findings.push_back({false, Plural(count, "case", "cases") + why, {}, 0});
    };
    add(fCheck.weightMissing, " without a weight: a run leaves them out.");
    add(fCheck.weightZero, " with weight 0: a run leaves them out, as if they had not been drawn.");
    add(fCheck.weightNegative, " with a negative weight: a run leaves them out.");
    add(fCheck.designMissing, " without a stratum or cluster: a run leaves them out.");
    if (fCheck.CasesInSample() == 0) {
      fCheck.findings.push_back({true, "No case is left that a run could use.", {}, 0});
    }
  }

  void Count(const StageState& stage) {
    StageCounts& counts = fCheck.stages.emplace_back();
    counts.number = stage.plan->stageNumber;
    counts.label = stage.plan->label;
    counts.method = stage.plan->method;
    counts.units = stage.tally.UnitCount();
    counts.strata = stage.tally.Strata().size();
    for (const UnitTally::Stratum& stratum : stage.tally.Strata()) {
      const bool isFirst = counts.fewestUnits == 0;
      counts.fewestUnits = isFirst ? stratum.units : std::min(counts.fewestUnits, stratum.units);
      counts.mostUnits = std::max(counts.mostUnits, stratum.units);
      if (stratum.units == 1) ++counts.singleUnitStrata;
    }
  }

  double ValueOf(const StageState& stage, const UnitTally::Stratum& stratum) const {
    return stage.value.Varies() ? stratum.value : stage.value.Constant();
  }

  /// Lists the strata of a stage for which `applies`; nothing when there is none.
  template <class Applies, class Describe>
  void ListStrata(std::size_t k, bool stopsRun, const std::string& text, Applies&& applies,
                  Describe&& describe) {
    const UnitTally& tally = fStages[k].tally;
    const auto count = std::count_if(tally.Strata().begin(), tally.Strata().end(), applies);
    if (count == 0) return;
    PlanFinding finding{stopsRun, {}, {}, 0};
    for (const UnitTally::Stratum* stratum : tally.SortedStrata()) {
      if (!applies(*stratum)) continue;
      if (finding.TakesExample())
        finding.examples.push_back(Place(k, stratum->firstCase) + describe(*stratum));
    }
    finding.text =
        StageName(k) + ": " + Plural(static_cast<std::size_t>(count), "stratum ", "strata ") + text;
    fCheck.findings.push_back(std::move(finding));
  }

  void ReportStage(std::size_t k, bool addsVariance) {
    StageState& stage = fStages[k];
    const OrvPlanStage& plan = *stage.plan;
    const std::string name = StageValue::Name(plan);
    const auto nothing = [](const UnitTally::Stratum&) { return std::string(); };
    stage.value.AddFindings(StageName(k), fCheck.findings);
    if (stage.value.Varies()) {
      ListStrata(
          k, true, "with no " + name + " in any case.",
          [](const auto& s) { return s.lacksValue && s.value == kSystemMissing; }, nothing);
      ListStrata(
          k, false, "with no " + name + " in some cases.",
          [](const auto& s) { return s.lacksValue && s.value != kSystemMissing; }, nothing);
      ListStrata(
          k, false, "with more than one " + name + "; a run uses one of them.",
          [](const auto& s) { return s.hasUnequalValues; }, nothing);
    }
    if (plan.method == PlanMethod::EQUAL_WOR && StageValue::IsSize(plan)) {
      ListStrata(
          k, true, "with more units in the sample than in the population.",
          [&](const auto& s) {
            const double size = ValueOf(stage, s);
            return size != kSystemMissing && static_cast<double>(s.units) > size;
          },
          [&](const auto& s) {
            return ": " + Plural(s.units, "unit", "units") + ", population " +
                   ShortestText(ValueOf(stage, s));
          });
    }
    // A stratum of which everything was drawn has no variance that could be missed.
    if (addsVariance) {
      ListStrata(
          k, false, "with a single unit, which shows no variance: standard errors come out too small.",
          [&](const auto& s) { return s.units == 1 && ValueOf(stage, s) != 1; }, nothing);
    }
  }

  std::string StageName(std::size_t k) const { return "Stage " + std::to_string(k + 1); }

  /// What leads to a stratum of a stage: the values of the strata and clusters above, and its own.
  std::string Place(std::size_t stage, std::size_t caseNumber) const {
    std::string place;
    const auto add = [&](const std::vector<int>& variables) {
      for (const int variable : variables) {
        const Column& column = fTable.At(static_cast<std::size_t>(variable));
        place += (place.empty() ? "" : ", ") + column.variable.GetName() + "=" +
                 ValueText(column.variable, column.cells.data() + caseNumber * column.Stride());
      }
    };
    for (std::size_t k = 0; k <= stage; ++k) {
      add(fPlaces[k].strata);
      if (k < stage) add(fPlaces[k].clusters);
    }
    return place.empty() ? "the whole sample" : place;
  }

  const std::vector<StageVariables>& fPlaces;
  const Table& fTable;
  std::unique_ptr<host::VORN_InputCaseIterator> fpIterator;
  host::CaseValue fWeight;
  std::vector<StageState> fStages;
  PlanCheck& fCheck;
};

}  // namespace

PlanCheck CheckPlan(const OrvPlanData& plan, Table& table) {
  PlanCheck check;
  Dictionary dictionary(table, check.findings);
  CheckCompleteness(plan, dictionary);
  std::vector<StageVariables> places;
  for (const OrvPlanStage& stage : plan.stages)
    places.push_back(dictionary.FindStage(stage));
  const int weight = plan.weight.Empty() ? -1 : dictionary.Find(plan.weight.Text(), "weight", true);
  // Without its variables a plan can't be counted, and findings about cases would only repeat these.
  if (!check.findings.empty()) return check;
  const std::unique_ptr<host::ProcedureDataSource> source = MakeProcedureDataSource(table);
  CasePass(plan, places, weight, table, *source, check).Run();
  check.dataRead = true;
  return check;
}

}  // namespace standalone
