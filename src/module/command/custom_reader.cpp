#include "module/command/custom_reader.h"

#include "module/command/contrast_reader.h"

namespace tavo {

bool ReadCustom(ParseContext& context, const host::SubComObj& custom, OrvCustomTest& test,
                std::string& label) {
  TavoParseMessages& messages = context.messages;
  const host::ParamObj* lMatrix = custom.getParamObj("LMATRIX");
  const host::ParamObj* kMatrix = custom.getParamObj("KMATRIX");
  if (lMatrix == nullptr && kMatrix == nullptr) {
    return messages.AtSubcommand().EitherOrBothRequired("LMATRIX", "KMATRIX");
  }
  if (const host::ParamObj* text = custom.getParamObj("LABEL"); text != nullptr) {
    text->getLiteral(label);
    if (label.empty()) return messages.At(ValuePosition(*text)).EmptyLabel();
  }
  if (lMatrix != nullptr) {
    messages.SetParameter(lMatrix->name);
    if (!ReadLMatrix(context, lMatrix->getTokenList(), test)) return false;
  }
  if (kMatrix == nullptr) return true;
  messages.SetParameter(kMatrix->name);
  return ReadKMatrix(context, *kMatrix, test);
}

}  // namespace tavo
