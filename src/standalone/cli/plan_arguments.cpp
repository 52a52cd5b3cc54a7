#include "standalone/cli/plan_arguments.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <optional>
#include <span>

#include "standalone/cli/arguments.h"
#include "standalone/text/suggestion.h"

namespace standalone {

namespace {

constexpr const char* kStageWord = "--stage";
constexpr const char* kCreateFooter =
    "Each --stage begins a stage, and the options of stages behind it belong to it; the first --stage may "
    "be\n"
    "left out. Lists take several variables by commas or repetition.\n"
    "\n"
    "  tavoreg plan create --strata region --cluster psu --estimator wr --weight w -o design.xml\n"
    "  tavoreg plan create --weight w -o design.xml --stage --cluster district --population districts.csv "
    "\\\n"
    "      --stage --cluster school --population n_schools";
constexpr const char* kCheckFooter =
    "Exit status: 0 the plan fits the data, 1 there are findings that would stop a run or bias its results,\n"
    "2 the program was called wrongly or a named file can't be read.";

/// The options of one group: those of its stage, and those of the plan, which may stand in any group.
struct Group {
  PlanStageArguments stage;
  PlanCreateArguments plan;
};

void AddList(CLI::App& app, const std::string& name, std::vector<std::string>& list,
             const std::string& help) {
  app.add_option(name, list, help)->delimiter(',')->allow_extra_args(false)->type_name("VARIABLES");
}

CLI::App* AddCreate(CLI::App& app, Group& group) {
  CLI::App* command = app.add_subcommand("create", "Make a plan file from a description of the sample");
  PlanStageArguments& stage = group.stage;
  const std::string stageHelp = "begin the next stage";
  command->add_flag(kStageWord, stageHelp);
  command->add_option("--label", stage.label, "what to call the stage")->type_name("TEXT");
  AddList(*command, "--strata", stage.strata, "variables whose values define the strata");
  AddList(*command, "--cluster,--clusters", stage.clusters,
          "variables whose values define the sampled units");
  command
      ->add_option("--estimator", stage.estimator,
                   "wr: with replacement; equal_wor, unequal_wor: without replacement, with equal or unequal "
                   "probabilities")
      ->type_name("METHOD");
  command
      ->add_option("--population", stage.population,
                   "units in the population: for all strata, in a variable, or in a table with a column size")
      ->type_name("N|VARIABLE|FILE.csv");
  command
      ->add_option("--probability", stage.probability,
                   "inclusion probability: for all, in a variable, or in a table with a column probability")
      ->type_name("P|VARIABLE|FILE.csv");
  command->add_option("--weight", group.plan.weight, "variable with the sampling weights")
      ->type_name("VARIABLE");
  command
      ->add_option("--srs", group.plan.srs,
                   "the simple random sample of design effects: wor, without replacement, or wr")
      ->type_name("wr|wor");
  command->add_option("--description", group.plan.description, "what the plan is, for its header")
      ->type_name("TEXT");
  command->add_option("-o,--output", group.plan.output, "the plan file; without it, standard output")
      ->type_name("FILE");
  command->add_flag("--force", group.plan.overwrite, "replace the file when it is there");
  command->footer(kCreateFooter);
  return command;
}

void AddFormat(CLI::App& command, std::string& format) {
  command.add_option("--format", format, "text or json")
      ->check(CLI::IsMember({"text", "json"}))
      ->type_name("FORMAT");
}

CLI::App* AddShow(CLI::App& app, PlanShowArguments& show, std::string& format) {
  CLI::App* command = app.add_subcommand("show", "Show what a plan file says");
  command->add_option("PLAN", show.plan, "the plan file")->required();
  AddFormat(*command, format);
  return command;
}

CLI::App* AddCheck(CLI::App& app, PlanCheckArguments& check, std::string& format) {
  CLI::App* command = app.add_subcommand("check", "Check a plan file against the data it is meant for");
  command->add_option("PLAN", check.plan, "the plan file")->required();
  command->add_option("--data", check.data, "the data file")->type_name("FILE")->required();
  command
      ->add_option("--schema", check.schema, "its Table Schema; without it NAME.schema.json beside the data")
      ->type_name("FILE");
  AddFormat(*command, format);
  command->footer(kCheckFooter);
  return command;
}

int Refuse(const std::string& text) {
  std::cerr << "tavoreg plan: " << text << '\n';
  return kBadCall;
}

/// Empty on success; otherwise the program's exit status, when the answer has been given.
std::optional<int> Parse(CLI::App& app, std::span<const std::string> words) {
  app.require_subcommand(1);
  // The parser of options takes the words from the back.
  std::vector<std::string> reversed(words.rbegin(), words.rend());
  try {
    app.parse(std::move(reversed));
  } catch (const CLI::ParseError& mistake) {
    return app.exit(mistake) == 0 ? static_cast<int>(kRan) : static_cast<int>(kBadCall);
  }
  return std::nullopt;
}

/// Takes over what the group gives. False when an option of the plan was given before.
bool Merge(const std::string& option, std::string& all, const std::string& given, std::string& twice) {
  if (given.empty()) return true;
  if (!all.empty()) twice = option;
  all = given;
  return twice.empty();
}

bool MergePlan(PlanCreateArguments& all, const PlanCreateArguments& given, std::string& twice) {
  all.overwrite = all.overwrite || given.overwrite;
  return Merge("--weight", all.weight, given.weight, twice) && Merge("--srs", all.srs, given.srs, twice) &&
         Merge("--description", all.description, given.description, twice) &&
         Merge("--output", all.output, given.output, twice);
}

/// Options that stand between two --stage words form a group; those before the first are one as well, whose
/// stage counts when it says anything, or when there is no other.
PlanRequest ReadCreate(std::span<const std::string> words) {
  PlanCreateArguments all;
  bool isFirst = true;
  for (;;) {
    const auto end = std::find(words.begin(), words.end(), kStageWord);
    const auto length = static_cast<std::size_t>(end - words.begin());
    std::vector<std::string> line = {"create"};
    line.insert(line.end(), words.begin(), end);
    CLI::App app("Make, check and show plan files", "tavoreg plan");
    Group group;
    AddCreate(app, group);
    if (const auto status = Parse(app, line)) return *status;
    std::string twice;
    if (!MergePlan(all, group.plan, twice)) return Refuse(twice + " is given twice; a plan has one");
    const bool isLast = end == words.end();
    if (!isFirst || isLast || !group.stage.Empty()) all.stages.push_back(group.stage);
    if (isLast) return PlanArguments(std::move(all));
    words = words.subspan(length + 1);
    isFirst = false;
  }
}

}  // namespace

bool PlanStageArguments::Empty() const {
  return label.empty() && strata.empty() && clusters.empty() && estimator.empty() && population.empty() &&
         probability.empty();
}

PlanRequest ReadPlanArguments(const std::vector<std::string>& words) {
  if (!words.empty() && words.front() == "create") return ReadCreate(std::span(words).subspan(1));
  CLI::App app("Make, check and show plan files", "tavoreg plan");
  Group unused;
  PlanShowArguments show;
  PlanCheckArguments check;
  std::string format = "text";
  AddCreate(app, unused);
  const CLI::App* showCommand = AddShow(app, show, format);
  AddCheck(app, check, format);
  if (!words.empty() && !words.front().starts_with('-') && words.front() != "show" &&
      words.front() != "check") {
    const std::vector<std::string> names = {"create", "show", "check"};
    const std::string nearest = NearestWord(words.front(), names);
    return Refuse("there is no subcommand " + words.front() +
                  (nearest.empty() ? "" : "; did you mean " + nearest + "?") +
                  "\nRun with --help for more information.");
  }
  if (const auto status = Parse(app, words)) return *status;
  show.format = check.format = *FormatOfName(format);
  if (showCommand->parsed()) return PlanArguments(std::move(show));
  return PlanArguments(std::move(check));
}

}  // namespace standalone
