#include "module/command/command_parser.h"

#include <optional>
#include <utility>

#include "host/files.h"
#include "host/session.h"
#include "module/command/grammar.h"
#include "module/command/hypothesis_readers.h"
#include "module/command/model_reader.h"
#include "module/command/option_readers.h"
#include "module/command/parse_context.h"
#include "module/command/plan/plan_reader.h"
#include "module/command/plan_checks.h"

namespace tavo {

namespace {

using host::SubComObj;

using Reader = bool (*)(ParseContext&, const SubComObj&);

/// The tokens of a subcommand without keywords, which the grammar gives exactly one nameless parameter.
const std::vector<host::TokenInfoObj>& TokensOf(const SubComObj& subcommand) {
  return subcommand.exportParamObj()->getTokenList();
}

}  // namespace

class TavoCommandParser::Impl {
 public:
  Impl(const host::VORN_TokenSequence& tokens, TavoValidSpecs& specs, host::ProcedureDataSource& data)
      : fTokens(tokens), fContext{specs, data} {}

  bool Parse();

 private:
  bool ReadSyntax();
  bool VisitSubcommands();
  bool VisitVariableList();
  bool VisitModel();
  /// Visits a subcommand when it was given.
  bool Visit(const char* name, Reader read);
  /// Visits all occurrences of a subcommand, in the order of the command.
  template <class ReadOne>
  bool VisitEach(const char* name, ReadOne read);
  bool VisitCustomTests();
  bool VisitOddsRatios();
  void SetDefaults();
  bool ReadPlan();
  bool CheckStageNumbers();
  void SwitchOffSplitAndWeight();

  const host::VORN_TokenSequence& fTokens;
  ParseContext fContext;
  host::CommandSpec fCommand;
  OrvPlanData fPlan;
};

bool TavoCommandParser::Impl::Parse() {
  if (!ReadSyntax() || !VisitSubcommands()) return false;
  SetDefaults();
  if (!ReadPlan() || !CheckStageNumbers()) return false;
  const bool hasJointProbFile = fCommand.getSubComObj("JOINTPROB") != nullptr;
  fContext.messages.SetSubcommand(nullptr);
  if (!ResolvePlan(fContext, fPlan, hasJointProbFile)) return false;
  // Behind the plan, which may have settled the name of the joint probabilities.
  if (!CheckOutputFiles(fContext, fCommand.getSubComObj("OUTFILE"))) return false;
  SwitchOffSplitAndWeight();
  fContext.specs.NumberColumns();
  return true;
}

bool TavoCommandParser::Impl::ReadSyntax() {
  const host::CommandDescriptor grammar = BuildGrammar();
  host::UniversalParser parser(fTokens, fCommand, grammar);
  if (parser.getCommandSpecifications() != 0) return false;
  return fCommand.getSubComListSize() > 0 || fContext.messages.NoSubcommands();
}

// In this order, whatever the order of the command: a later subcommand may rest on what an earlier one has
// settled.
bool TavoCommandParser::Impl::VisitSubcommands() {
  if (!VisitVariableList() || !Visit("PLAN", ReadPlanFile) || !Visit("JOINTPROB", ReadJointProbFile))
    return false;
  if (!VisitModel() || !Visit("CRITERIA", ReadCriteria)) return false;
  if (!VisitCustomTests() || !VisitOddsRatios()) return false;
  constexpr std::pair<const char*, Reader> kOptions[] = {
      {"STATISTICS", ReadStatistics}, {"TEST", ReadTest}, {"DOMAIN", ReadDomain},  {"MISSING", ReadMissing},
      {"PRINT", ReadPrint},           {"SAVE", ReadSave}, {"OUTFILE", ReadOutfile}};
  for (const auto& [name, read] : kOptions) {
    if (!Visit(name, read)) return false;
  }
  return true;
}

bool TavoCommandParser::Impl::VisitVariableList() {
  const SubComObj& list = *fCommand.getSubComObj("");  // the grammar requires it
  fContext.messages.SetSubcommand(&list);
  return ReadVariableList(fContext, TokensOf(list));
}

bool TavoCommandParser::Impl::VisitModel() {
  std::vector<OrvModelEffect> effects;
  const SubComObj* model = fCommand.getSubComObj("MODEL");
  if (model != nullptr) {
    fContext.messages.SetSubcommand(model);
    if (!ReadModel(fContext, TokensOf(*model), effects)) return false;
  }
  return Visit("INTERCEPT", ReadIntercept) && FixModel(fContext, model, std::move(effects));
}

bool TavoCommandParser::Impl::Visit(const char* name, Reader read) {
  const SubComObj* subcommand = fCommand.getSubComObj(name);
  if (subcommand == nullptr) return true;
  fContext.messages.SetSubcommand(subcommand);
  return read(fContext, *subcommand);
}

template <class ReadOne>
bool TavoCommandParser::Impl::VisitEach(const char* name, ReadOne read) {
  std::vector<const SubComObj*> occurrences;
  const std::size_t count = fCommand.getSubComObj(occurrences, name);
  for (std::size_t ordinal = 0; ordinal < count; ++ordinal) {
    fContext.messages.SetSubcommand(occurrences[ordinal], ordinal, count);
    if (!read(*occurrences[ordinal])) return false;
  }
  return true;
}

bool TavoCommandParser::Impl::VisitCustomTests() {
  std::vector<OrvCustomTest> tests;
  std::vector<std::string> labels;
  const auto read = [&](const SubComObj& custom) {
    return ReadCustom(fContext, custom, tests.emplace_back(), labels.emplace_back());
  };
  if (!VisitEach("CUSTOM", read)) return false;
  fContext.specs.SetCustomTests(std::move(tests), std::move(labels));
  return true;
}

bool TavoCommandParser::Impl::VisitOddsRatios() {
  std::vector<OrvOddsRatioSpec> requests;
  std::vector<OddsRatioItems> items;
  const auto read = [&](const SubComObj& oddsRatios) {
    return ReadOddsRatios(fContext, oddsRatios, requests.emplace_back(), items.emplace_back());
  };
  if (!VisitEach("ODDSRATIOS", read)) return false;
  fContext.specs.SetOddsRatios(std::move(requests), std::move(items));
  return true;
}

void TavoCommandParser::Impl::SetDefaults() {
  if (fCommand.getSubComObj("PRINT") == nullptr) {
    for (const PrintOption option :
         {PrintOption::SAMPLEINFO, PrintOption::VARIABLEINFO, PrintOption::SUMMARY}) {
      fContext.specs.AddPrintOption(option);
    }
  }
  if (const int threads = host::GETTHREADS(); threads != 0) fContext.specs.SetMaximumProcessors(threads);
}

bool TavoCommandParser::Impl::ReadPlan() {
  OrvPlanReader reader(fPlan);
  const PlanStatus status = reader.ReadAnalysis(host::BEPesGetInputPath(fContext.specs.PlanFileName()));
  // First, as what was passed over is often the reason why the rest doesn't hold together.
  for (const PlanRemark& remark : reader.Remarks())
    OrvPlanMessages::Report(remark);
  if (status != PlanStatus::kOK) {
    OrvPlanMessages::Report(status, reader.Detail());
    return false;
  }
  return fPlan.mode == PlanMode::ANALYSIS_MODE || fContext.messages.NoPlanSpecifications();
}

bool TavoCommandParser::Impl::CheckStageNumbers() {
  std::vector<int> numbers;
  bool isSequence = true;
  for (const OrvPlanStage& stage : fPlan.stages) {
    numbers.push_back(stage.stageNumber);
    isSequence = isSequence && stage.stageNumber == static_cast<int>(numbers.size());
  }
  return isSequence || fContext.messages.InvalidStageSequence(numbers);
}

/// The design's own weight takes the place of the host's, and there is one analysis, not one per split group.
/// The caller restores both fields after the run.
void TavoCommandParser::Impl::SwitchOffSplitAndWeight() {
  host::CommonBlock& common = host::pvGetCmnGlb();
  if (common.errorFlag != 0) return;
  if (common.splitFileCount > 0) {
    fContext.messages.SplitFileIgnored();
    common.splitFileCount = 0;
  }
  if (common.weightVariable > 0) {
    fContext.messages.CaseWeightIgnored();
    common.weightVariable = 0;
  }
}

TavoCommandParser::TavoCommandParser(const host::VORN_TokenSequence& tokens, TavoValidSpecs& specs,
                                     host::ProcedureDataSource& data)
    : fpImpl(std::make_unique<Impl>(tokens, specs, data)) {}

TavoCommandParser::~TavoCommandParser() = default;

int TavoCommandParser::Parse() {
  return fpImpl->Parse() ? 1 : 0;
}

}  // namespace tavo
