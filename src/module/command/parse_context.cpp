#include "module/command/parse_context.h"

#include "module/command/category_value.h"

namespace tavo {

int ParseContext::FindVariable(const std::string& name, const host::SourcePosition& position) {
  const int index = data.FindVarIndex(name);
  if (index < 0) messages.At(position).Among(VariableNames(data)).VariableNotFound(name);
  return index;
}

bool ParseContext::IsNumeric(int variable) const {
  return data.GetVariable(static_cast<unsigned>(variable))->IsNumeric();
}

std::vector<std::string> VariableNames(const host::VORN_DataSource& data) {
  std::vector<std::string> names;
  for (unsigned i = 0; i < data.ColumnCount(); ++i)
    names.push_back(data.GetVariable(i)->GetName());
  return names;
}

bool ReadFileName(const host::ParamObj& param, std::string& name, bool& isLiteral) {
  isLiteral = param.getLiteral(name);
  return isLiteral || param.getStringGeneric(name);
}

host::SourcePosition ValuePosition(const host::ParamObj& param) {
  return param.value.empty() ? param.position : param.value.front().position;
}

std::optional<CategoryValue> ReadValueToken(ParseContext& context, int variable,
                                            const host::TokenInfoObj& token) {
  const host::VORN_Variable& entry = *context.data.GetVariable(static_cast<unsigned>(variable));
  std::optional<CategoryValue> value = ReadCategoryValue(entry, token.getString());
  if (!value) context.messages.At(token).InvalidCategoryValue(entry.GetName(), token.getString());
  return value;
}

}  // namespace tavo
