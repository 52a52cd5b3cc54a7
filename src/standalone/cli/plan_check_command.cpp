#include "standalone/cli/plan_check_command.h"

#include <algorithm>
#include <iostream>
#include <thread>

#include "module/command/plan/plan_methods.h"
#include "module/command/plan/plan_reader.h"
#include "standalone/cli/arguments.h"
#include "standalone/cli/plan_check.h"
#include "standalone/cli/plan_words.h"
#include "standalone/files/data_reader.h"
#include "standalone/output/json_writer.h"
#include "standalone/session/embedded_session.h"
#include "standalone/text/ascii.h"
#include "standalone/text/terminal_text.h"

namespace standalone {

namespace {

// ---- text ----

void PutLine(std::ostream& out, const std::string& label, const std::string& value) {
  constexpr std::size_t kLabelWidth = 28;
  out << WithoutTrailingBlanks(PadRight(label, kLabelWidth) + ' ' + WithoutControls(value)) << '\n';
}

void PutCases(std::ostream& out, const PlanCheck& check) {
  const auto put = [&out](const char* label, std::size_t count) {
    PutLine(out, label, std::to_string(count));
  };
  put("Cases", check.cases);
  put("  in the sample", check.CasesInSample());
  put("  weight missing", check.weightMissing);
  put("  weight 0", check.weightZero);
  put("  weight negative", check.weightNegative);
  put("  stratum or cluster missing", check.designMissing);
}

void PutStages(std::ostream& out, const PlanCheck& check) {
  for (const StageCounts& stage : check.stages) {
    out << '\n';
    PutLine(out, "Stage " + std::to_string(stage.number), stage.label);
    PutLine(out, "  Estimator", MethodText(stage.method));
    PutLine(out, "  Strata", std::to_string(stage.strata));
    PutLine(out, "  Units", std::to_string(stage.units));
    PutLine(out, "  Units of a stratum",
            std::to_string(stage.fewestUnits) + " to " + std::to_string(stage.mostUnits));
    PutLine(out, "  Strata with a single unit", std::to_string(stage.singleUnitStrata));
  }
}

void PutFindings(std::ostream& out, const PlanCheck& check) {
  out << '\n';
  if (check.findings.empty()) out << "Nothing speaks against a run.\n";
  for (const PlanFinding& finding : check.findings) {
    out << (finding.stopsRun ? "stops a run: " : "biases results: ") << WithoutControls(finding.text) << '\n';
    for (const std::string& example : finding.examples)
      out << "  " << WithoutControls(example) << '\n';
    if (finding.more > 0) out << "  and " << finding.more << " more\n";
  }
}

void WriteReport(std::ostream& out, const PlanCheckArguments& arguments, const PlanCheck& check) {
  PutLine(out, "Plan file", arguments.plan);
  PutLine(out, "Data file", arguments.data);
  if (check.dataRead) PutCases(out, check);
  PutStages(out, check);
  PutFindings(out, check);
}

// ---- JSON ----

void WriteText(JsonWriter& json, std::string_view key, std::string_view text) {
  json.Key(key);
  json.Text(text);
}

void WriteCount(JsonWriter& json, std::string_view key, std::size_t count) {
  json.Key(key);
  json.Number(static_cast<double>(count));
}

void WriteCounts(JsonWriter& json, const PlanCheck& check) {
  WriteCount(json, "cases", check.cases);
  WriteCount(json, "cases_in_sample", check.CasesInSample());
  WriteCount(json, "weight_missing", check.weightMissing);
  WriteCount(json, "weight_zero", check.weightZero);
  WriteCount(json, "weight_negative", check.weightNegative);
  WriteCount(json, "design_missing", check.designMissing);
  json.Key("stages");
  json.BeginArray(true);
  for (const StageCounts& stage : check.stages) {
    json.BeginObject();
    WriteCount(json, "number", static_cast<std::size_t>(stage.number));
    WriteText(json, "label", stage.label);
    WriteText(json, "method", tavo::WordOf(stage.method));
    WriteCount(json, "strata", stage.strata);
    WriteCount(json, "units", stage.units);
    WriteCount(json, "fewest_units", stage.fewestUnits);
    WriteCount(json, "most_units", stage.mostUnits);
    WriteCount(json, "single_unit_strata", stage.singleUnitStrata);
    json.EndObject();
  }
  json.EndArray();
}

void WriteFindings(JsonWriter& json, const PlanCheck& check) {
  json.Key("findings");
  json.BeginArray(true);
  for (const PlanFinding& finding : check.findings) {
    json.BeginObject();
    WriteText(json, "effect", finding.stopsRun ? "stops" : "biases");
    WriteText(json, "text", finding.text);
    json.Key("examples");
    json.BeginArray();
    for (const std::string& example : finding.examples)
      json.Text(example);
    json.EndArray();
    WriteCount(json, "more", finding.more);
    json.EndObject();
  }
  json.EndArray();
}

void WriteReportAsJson(std::ostream& out, const PlanCheckArguments& arguments, const PlanCheck& check) {
  JsonWriter json(out);
  json.BeginObject(true);
  WriteText(json, "tavoreg", TAVOREG_VERSION);
  WriteText(json, "plan", arguments.plan);
  WriteText(json, "data", arguments.data);
  if (check.dataRead) WriteCounts(json, check);
  WriteFindings(json, check);
  json.EndObject();
  out << '\n';
}

bool ReadData(const PlanCheckArguments& arguments, Table& table) {
  Session& session = SessionScope::Current();
  const int threads = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  ReadResult result = ReadDataFile({arguments.data, arguments.schema, threads});
  for (const std::string& warning : result.warnings)
    session.AddTextMessage(false, "Data file problem...", warning);
  if (!result.ok) session.AddTextMessage(true, "Data file problem...", result.error);
  table = std::move(result.table);
  return result.ok;
}

}  // namespace

int CheckPlanFile(const PlanCheckArguments& arguments) {
  tavo::OrvPlanData plan;
  tavo::OrvPlanReader reader(plan);
  const tavo::PlanStatus status = reader.ReadAnalysis(arguments.plan);
  if (status == tavo::PlanStatus::kInvalidFile) {
    tavo::OrvPlanMessages::Report(status, reader.Detail());
    return kBadCall;
  }
  Table table;
  if (!ReadData(arguments, table)) return kBadCall;
  PlanCheck check;
  if (status == tavo::PlanStatus::kOK) {
    check = CheckPlan(plan, table);
  } else {
    check.findings.push_back({true, StatusSentence(status, reader.Detail()), {}, 0});
  }
  if (arguments.format == OutputFormat::kJson) {
    WriteReportAsJson(std::cout, arguments, check);
  } else {
    WriteReport(std::cout, arguments, check);
  }
  std::cout.flush();
  if (!std::cout) return kOutputFailed;
  return check.findings.empty() ? kRan : kCommandFailed;
}

}  // namespace standalone
