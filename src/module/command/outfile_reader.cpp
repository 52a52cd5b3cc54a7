// OUTFILE: names of the files that are written.
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

}  // namespace tavo
