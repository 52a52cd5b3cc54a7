// What the user asks for on the command line.
#pragma once

#include <optional>
#include <string>

#include "standalone/cli/plan_arguments.h"
#include "standalone/output/renderers.h"

namespace standalone {

/// The program's answer to its caller.
enum ExitStatus : int {
  kRan = 0,            // the commands ran, maybe with warnings
  kCommandFailed = 1,  // a command ended with an error
  kBadCall = 2,        // called wrongly, or a named file can't be read
  kOutputFailed = 3,   // an output could not be written whole
  kInterrupted = 130   // by Ctrl-C
};

/// `tavoreg run`.
struct RunArguments {
  std::string commands;  // a file, or - for standard input
  std::string data, schema, output, save;
  std::optional<OutputFormat> format;
  int threads = 0;  // 0: the number of processors
  bool showProgress = true;
};

/// `tavoreg describe`.
struct DescribeArguments {
  std::string file, schema;
  OutputFormat format = OutputFormat::kText;
};

/// `tavoreg convert`.
struct ConvertArguments {
  std::string in, out, schema;
};

/// Exactly one of the requests is set, unless the parsing itself was the answer (help, version, a mistake):
/// then `status` says how the program ends.
struct Arguments {
  std::optional<RunArguments> run;
  std::optional<DescribeArguments> describe;
  std::optional<ConvertArguments> convert;
  std::optional<PlanArguments> plan;
  int status = kRan;
};

/// Reads the command line; help and version go to standard output, mistakes to standard error.
Arguments ReadArguments(int argc, char** argv);

}  // namespace standalone
