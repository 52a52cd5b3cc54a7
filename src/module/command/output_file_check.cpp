#include "module/command/output_file_check.h"

#include <array>
#include <string>

namespace tavo {

namespace {

struct NamedFile {
  const char* use;
  std::string name;  // as the command gives it, empty when it doesn't
};

bool IsSameName(const NamedFile& a, const NamedFile& b) {
  return host::GetUpperString(a.name) == host::GetUpperString(b.name);
}

}  // namespace

bool CheckOutputFiles(ParseContext& context, const host::SubComObj* outfile) {
  if (outfile == nullptr) return true;
  const TavoValidSpecs& specs = context.specs;
  constexpr std::size_t kFirstOutput = 2;
  const std::array<NamedFile, 6> files = {{{"PLAN", specs.PlanFileName()},
                                           {"JOINTPROB", specs.JointProbFile().DocumentationString()},
                                           {"COVB", specs.CovarianceFile().DocumentationString()},
                                           {"CORB", specs.CorrelationFile().DocumentationString()},
                                           {"MODEL", specs.ModelFileName()},
                                           {"PARAMETER", specs.ParameterFileName()}}};
  for (std::size_t i = kFirstOutput; i < files.size(); ++i) {
    const NamedFile& output = files[i];
    if (output.name.empty()) continue;
    for (std::size_t j = 0; j < i; ++j) {
      if (!IsSameName(files[j], output)) continue;
      const host::ParamObj& param = *outfile->getParamObj(output.use);
      return context.messages.At(ValuePosition(param)).FileUsedTwice(output.name, files[j].use, output.use);
    }
  }
  return true;
}

}  // namespace tavo
