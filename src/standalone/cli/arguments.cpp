#include "standalone/cli/arguments.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <string_view>
#include <utility>
#include <vector>

#include "standalone/files/data_writer.h"
#include "standalone/text/suggestion.h"

namespace standalone {

namespace {

constexpr const char* kDescription =
    "tavoreg: binary and multinomial logistic regression for data from complex survey designs.";
constexpr const char* kFooter =
    "Exit status: 0 the commands ran (warnings allowed), 1 a command ended with an error, 2 the program was\n"
    "called wrongly or a named file can't be read, 3 an output could not be written whole, 130 interrupted.";

constexpr const char* kPlanCommand = "plan";

void AddFormat(CLI::App& app, std::string& name) {
  app.add_option("--format", name, "text, markdown, html or json")
      ->check(CLI::IsMember({"text", "markdown", "html", "json"}))
      ->type_name("FORMAT");
}

CLI::App* AddRun(CLI::App& app, RunArguments& run, std::string& format, bool& isQuiet) {
  CLI::App* command = app.add_subcommand("run", "Run the commands of a file on a data file");
  command->add_option("COMMANDS", run.commands, "a file of commands, or - for standard input")->required();
  command->add_option("--data", run.data, "the data file (.csv, .tsv, .vdt)")->type_name("FILE");
  command->add_option("--schema", run.schema, "its Table Schema; without it NAME.schema.json beside the data")
      ->type_name("FILE");
  AddFormat(*command, format);
  command->add_option("--output", run.output, "write the output to a file; its ending says the format")
      ->type_name("FILE");
  command
      ->add_option("--save", run.save,
                   "write the data with the new variables to a file (.csv, .tsv, .vdt); done only when all\n"
                   "commands ran without an error")
      ->type_name("FILE");
  command->add_option("--threads", run.threads, "threads to use; without it, as many as there are processors")
      ->check(CLI::Range(1, 1024))
      ->type_name("N");
  command->add_flag("--no-progress", isQuiet, "show no progress on the terminal");
  return command;
}

CLI::App* AddDescribe(CLI::App& app, DescribeArguments& describe, std::string& format) {
  CLI::App* command = app.add_subcommand("describe", "Show the dictionary of a data file");
  command->add_option("FILE", describe.file, "the data file (.csv, .tsv, .vdt)")->required();
  command
      ->add_option("--schema", describe.schema,
                   "its Table Schema; without it NAME.schema.json beside the data")
      ->type_name("FILE");
  AddFormat(*command, format);
  return command;
}

CLI::App* AddConvert(CLI::App& app, ConvertArguments& convert) {
  CLI::App* command =
      app.add_subcommand("convert", "Write a data file in another form: between .csv, .tsv and .vdt");
  command->add_option("IN", convert.in, "the data file to read")->required();
  command->add_option("OUT", convert.out, "the data file to write; text gets NAME.schema.json beside it")
      ->required();
  command
      ->add_option("--schema", convert.schema,
                   "the Table Schema of IN; without it NAME.schema.json beside the data")
      ->type_name("FILE");
  return command;
}

int Refuse(const std::string& text) {
  std::cerr << "tavoreg: " << text << '\n';
  return kBadCall;
}

/// Refuses a name under which no data can be written, before anything is read or run for it.
int CheckDataOutput(const std::string& path) {
  const std::string fault = OutputNameFault(path);
  return fault.empty() ? kRan : Refuse(fault);
}

/// Completes the arguments of `run` and refuses what doesn't fit together; 0 when all is well.
int CheckRun(RunArguments& run, const std::string& format) {
  run.format = FormatOfName(format);
  if (run.data.empty()) return Refuse("no data: name the file to analyse with --data FILE");
  if (!run.save.empty() && CheckDataOutput(run.save) != kRan) return kBadCall;
  if (run.format.has_value()) return kRan;
  run.format = run.output.empty() ? OutputFormat::kText : FormatOfFile(run.output);
  if (run.format.has_value()) return kRan;
  return Refuse("the ending of " + run.output +
                " names no format (.txt, .md, .html, .json): give it one, or use --format");
}

/// The first word of the line when it names no subcommand of the program.
std::optional<std::string> UnknownSubcommand(const CLI::App& app, int argc, char** argv) {
  // The parser of options would only say that the word was not expected.
  if (argc < 2 || argv[1][0] == '-') return std::nullopt;
  const std::string word = argv[1];
  std::vector<std::string> names;
  for (const CLI::App* subcommand : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (subcommand->get_name() == word) return std::nullopt;
    names.push_back(subcommand->get_name());
  }
  const std::string nearest = NearestWord(word, names);
  return "there is no subcommand " + word + (nearest.empty() ? "" : "; did you mean " + nearest + "?") +
         "\nRun with --help for more information.";
}

/// The words behind `plan` have a reader of their own.
Arguments TakePlan(PlanRequest request) {
  Arguments arguments;
  if (const int* status = std::get_if<int>(&request)) {
    arguments.status = *status;
  } else {
    arguments.plan = std::move(std::get<PlanArguments>(request));
  }
  return arguments;
}

}  // namespace

Arguments ReadArguments(int argc, char** argv) {
  if (argc > 1 && std::string_view(argv[1]) == kPlanCommand) {
    return TakePlan(ReadPlanArguments({argv + 2, argv + argc}));
  }
  Arguments arguments;
  RunArguments run;
  DescribeArguments describe;
  ConvertArguments convert;
  std::string runFormat, describeFormat = "text";
  bool isQuiet = false;

  CLI::App app(kDescription, "tavoreg");
  app.footer(kFooter);
  app.set_version_flag("--version", "tavoreg " TAVOREG_VERSION);
  app.require_subcommand(1);
  const CLI::App* runCommand = AddRun(app, run, runFormat, isQuiet);
  const CLI::App* describeCommand = AddDescribe(app, describe, describeFormat);
  const CLI::App* convertCommand = AddConvert(app, convert);
  app.add_subcommand(kPlanCommand, "Make, check and show plan files");
  if (const auto mistake = UnknownSubcommand(app, argc, argv)) {
    arguments.status = Refuse(*mistake);
    return arguments;
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& mistake) {
    arguments.status = app.exit(mistake) == 0 ? kRan : kBadCall;
    return arguments;
  }

  if (runCommand->parsed()) {
    run.showProgress = !isQuiet;
    arguments.status = CheckRun(run, runFormat);
    if (arguments.status == kRan) arguments.run = std::move(run);
  } else if (describeCommand->parsed()) {
    describe.format = *FormatOfName(describeFormat);
    arguments.describe = std::move(describe);
  } else if (convertCommand->parsed()) {
    arguments.status = CheckDataOutput(convert.out);
    if (arguments.status == kRan) arguments.convert = std::move(convert);
  }
  return arguments;
}

}  // namespace standalone
