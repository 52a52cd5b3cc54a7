// tavoreg plan check
#include <algorithm>
#include <iostream>
#include <thread>

#include "module/command/plan/plan_methods.h"
#include "module/command/plan/plan_reader.h"
#include "standalone/cli/commands.h"
#include "standalone/cli/plan_check.h"
#include "standalone/cli/plan_words.h"
#include "standalone/files/data_reader.h"
#include "standalone/output/json_writer.h"
#include "standalone/session/embedded_session.h"
#include "standalone/text/terminal_text.h"

namespace standalone {

namespace {

// ---- text ----

void PutCases(std::ostream& out, const PlanCheck& check) {
  const auto put = [&out](int depth, const char* label, std::size_t count) {
    out << LabelledLine(depth, label, std::to_string(count));
  };
  put(0, "Cases", check.cases);
  put(1, "in the sample", check.CasesInSample());
  put(1, "weight missing", check.weightMissing);
  put(1, "weight 0", check.weightZero);
  put(1, "weight negative", check.weightNegative);
  put(1, "stratum or cluster missing", check.designMissing);
}

void PutStages(std::ostream& out, const PlanCheck& check) {
  for (const StageCounts& stage : check.stages) {
    out << '\n';
    out << LabelledLine(0, "Stage " + std::to_string(stage.number), stage.label);
    out << LabelledLine(1, "Estimator", MethodText(stage.method));
    out << LabelledLine(1, "Strata", std::to_string(stage.strata));
    out << LabelledLine(1, "Units", std::to_string(stage.units));
    out << LabelledLine(1, "Units of a stratum",
                        std::to_string(stage.fewestUnits) + " to " + std::to_string(stage.mostUnits));
    out << LabelledLine(1, "Strata with a single unit", std::to_string(stage.singleUnitStrata));
  }
}

void PutFindings(std::ostream& out, const PlanCheck& check) {
  out << '\n';
  if (check.findings.empty()) out << "Nothing speaks against a run.\n";
  for (const PlanFinding& finding : check.findings) {
    out << (finding.stopsRun       ? "stops a run: "
            : finding.breaksFormat ? "breaks the format: "
                                   : "biases results: ")
        << WithoutControls(finding.text) << '\n';
    for (const std::string& example : finding.examples)
      out << "  " << WithoutControls(example) << '\n';
    if (finding.more > 0) out << "  and " << finding.more << " more\n";
  }
}

void WriteReport(std::ostream& out, const PlanCheckArguments& arguments, const PlanCheck& check) {
  out << LabelledLine(0, "Plan file", arguments.plan);
  out << LabelledLine(0, "Data file", arguments.data);
  if (check.dataRead) PutCases(out, check);
  PutStages(out, check);
  PutFindings(out, check);
}

// ---- JSON ----

void WriteCount(JsonWriter& json, std::string_view key, std::size_t count) {
  json.NumberMember(key, static_cast<double>(count));
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
    json.TextMember("label", stage.label);
    json.TextMember("method", tavo::WordOf(stage.method));
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
    json.TextMember("effect", finding.stopsRun ? "stops" : finding.breaksFormat ? "format" : "biases");
    json.TextMember("text", finding.text);
    json.TextsMember("examples", finding.examples);
    WriteCount(json, "more", finding.more);
    json.EndObject();
  }
  json.EndArray();
}

void WriteReportAsJson(std::ostream& out, const PlanCheckArguments& arguments, const PlanCheck& check) {
  JsonWriter json(out);
  json.BeginObject(true);
  json.TextMember("tavoreg", TAVOREG_VERSION);
  json.TextMember("plan", arguments.plan);
  json.TextMember("data", arguments.data);
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
  for (const tavo::PlanRemark& remark : reader.Remarks())
    check.findings.push_back({false, RemarkSentence(remark), {}, 0});
  // What a status says about the same place says more than the schema can.
  const std::string fault =
      status == tavo::PlanStatus::kOK ? tavo::OrvPlanReader::SchemaFault(arguments.plan) : std::string();
  if (!fault.empty()) {
    check.findings.push_back(
        {false, "The plan does not keep to the schema that it names: " + fault, {}, 0, true});
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
