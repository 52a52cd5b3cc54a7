// OUTFILE: names of the files that are written, none of them over another one of the same command.
#include <array>
#include <string>
#include <utility>

#include "module/command/option_readers.h"

namespace tavo {

namespace {

using host::ParamObj;
using host::SubComObj;

/// One of the two may be given.
bool CheckNotTogether(ParseContext& context, const SubComObj& outfile, const char* keyword,
                      const char* other) {
  const ParamObj* second = outfile.getParamObj(other);
  if (outfile.getParamObj(keyword) == nullptr || second == nullptr) return true;
  return context.messages.At(second->position).NotTogether(keyword, other);
}

bool ReadCaseFile(ParseContext& context, const ParamObj* param, host::UserCaseFileSpec& file) {
  if (param == nullptr) return true;
  std::string name;
  const bool isLiteral = param->getLiteral(name);
  if (!isLiteral) param->getStringOrLiteral(name);
  if (file.Init(std::move(name), isLiteral, true)) return true;
  return context.messages.At(ValuePosition(*param)).WrongValueType(param->name);
}

struct NamedFile {
  const char* use;
  std::string name;  // as the command gives it, empty when it doesn't
};

bool IsSameName(const NamedFile& a, const NamedFile& b) {
  return host::GetUpperString(a.name) == host::GetUpperString(b.name);
}

std::string FilePath(const ParamObj* param) {
  std::string name;
  if (param != nullptr) param->getFilePath(name);
  return name;
}

}  // namespace

bool ReadOutfile(ParseContext& context, const SubComObj& outfile) {
  TavoValidSpecs& specs = context.specs;
  if (!CheckNotTogether(context, outfile, "COVB", "CORB")) return false;
  if (!CheckNotTogether(context, outfile, "MODEL", "PARAMETER")) return false;
  if (!ReadCaseFile(context, outfile.getParamObj("COVB"), specs.CovarianceFile())) return false;
  if (!ReadCaseFile(context, outfile.getParamObj("CORB"), specs.CorrelationFile())) return false;
  specs.SetModelFileName(FilePath(outfile.getParamObj("MODEL")));
  specs.SetParameterFileName(FilePath(outfile.getParamObj("PARAMETER")));
  return true;
}

bool CheckOutputFiles(ParseContext& context, const SubComObj* outfile) {
  const TavoValidSpecs& specs = context.specs;
  host::NoteInput(specs.PlanFileName(), "PLAN");
  if (specs.JointProbFile().IsInit()) {
    host::NoteInput(specs.JointProbFile().DocumentationString(), "JOINTPROB");
  }
  if (outfile == nullptr) return true;
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
      const ParamObj& param = *outfile->getParamObj(output.use);
      return context.messages.At(ValuePosition(param)).FileUsedTwice(output.name, files[j].use, output.use);
    }
    const std::string input = host::InputReplacedBy(output.name);
    if (input.empty()) continue;
    const ParamObj& param = *outfile->getParamObj(output.use);
    return context.messages.At(ValuePosition(param)).FileUsedTwice(output.name, input, output.use);
  }
  return true;
}

}  // namespace tavo
