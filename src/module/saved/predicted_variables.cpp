#include "module/saved/predicted_variables.h"

#include <algorithm>

#include "host/output.h"
#include "module/input/category_texts.h"

namespace tavo {

namespace {

constexpr std::size_t kLongestName = 64;
constexpr int kSavedVariables = 3;  // the group of notes
constexpr host::VORN_Format kProbabilityFormat = {5, 8, 6};

std::string Padded(int number, std::size_t digits) {
  const std::string text = std::to_string(number);
  return std::string(digits - std::min(digits, text.size()), '0') + text;
}

/// A cut at most at `length` bytes that doesn't split a UTF-8 character.
std::string Cut(const std::string& text, std::size_t length) {
  while (length > 0 && length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U)
    --length;
  return text.substr(0, length);
}

/// The names of one try; empty when one of them is taken.
std::vector<std::string> TryNames(const std::string& root, int count, const std::string& ending,
                                  const host::VORN_DataSource& source) {
  const std::size_t digits = std::to_string(count).size();
  std::vector<std::string> names;
  for (int i = 1; i <= count; ++i) {
    const std::string suffix = "_" + Padded(i, digits) + ending;
    names.push_back(Cut(root, kLongestName - std::min(kLongestName, suffix.size())) + suffix);
    if (source.FindVarIndex(names.back()) >= 0) return {};
  }
  return names;
}

std::string PredictedValueLabel(const TavoValidSpecs& specs, const host::VORN_DataSource& source) {
  if (specs.DomainVariable() < 0) return host::FacSTDictionaryLookUp("Predicted Values for Population");
  const host::VORN_Variable& domain = *source.GetVariable(static_cast<unsigned>(specs.DomainVariable()));
  return host::FacSTDictionaryLookUp("Predicted Values for Subpopulation:") + " " + domain.GetName() + " = " +
         TavoValidSpecs::ValueText(specs.DomainValue(), true);
}

bool MakePredictedValue(const TavoValidSpecs& specs, host::ProcedureDataSource& source,
                        PredictedVariables& made) {
  host::AddNotes(kSavedVariables, "Predicted Values", host::Plain(specs.PredictedValueName()));
  // A copy: a new variable may move those that there are.
  const host::VORN_Variable dependent = *source.GetVariable(static_cast<unsigned>(specs.DependentVariable()));
  host::VORN_Variable* variable = source.MakeVariable(dependent.GetType(), made.valueColumn);
  if (variable == nullptr) return false;
  variable->SetName(specs.PredictedValueName());
  variable->SetFormat(dependent.GetFormat());
  variable->SetMeasurementLevel(dependent.GetMeasurementLevel());
  variable->SetLabel(PredictedValueLabel(specs, source));
  return true;
}

/// The codes that get a probability: those of the model in ascending order, as many as there are names.
std::vector<int> SavedCodes(const std::vector<int>& categories, std::size_t count) {
  std::vector<int> codes = categories;
  std::sort(codes.begin(), codes.end());
  // What a limit leaves out are the highest categories, whatever place the reference has.
  codes.resize(std::min(codes.size(), count));
  return codes;
}

bool MakeProbability(const TavoValidSpecs& specs, host::ProcedureDataSource& source, const std::string& value,
                     const std::string& name, PredictedVariables& made) {
  const host::VORN_Variable* dependent = source.GetVariable(static_cast<unsigned>(specs.DependentVariable()));
  const std::string label =
      host::FacSTDictionaryLookUp("Predicted Values for") + " " + dependent->GetName() + " = " + value;
  host::BpComposite note("^1 = ^2: ^3", false);
  note.Add(host::BpVariable{dependent, host::BpShow::kValue});
  note.Add(host::Plain(value));
  note.Add(host::Plain(name));
  host::AddNotes(kSavedVariables, "Predicted Probabilities", note);

  int column = -1;
  host::VORN_Variable* variable = source.MakeVariable(0, column);
  if (variable == nullptr) return false;
  variable->SetName(name);
  variable->SetFormat(kProbabilityFormat);
  variable->SetMeasurementLevel(host::MeasurementLevel::kScale);
  variable->SetLabel(label);
  made.probabilityColumns.push_back(column);
  return true;
}

/// How many probabilities are saved; a limit below the number of categories is said once.
int LimitedCount(const TavoValidSpecs& specs, std::size_t categories) {
  const int count = static_cast<int>(categories);
  const int limit = specs.MaximumPredictedProbabilities();
  if (count <= limit) return count;
  host::BpComposite message("Predicted probabilities exceeds limit ^1");
  message.Add(host::BpNumber{static_cast<double>(limit), host::BpProcedure::Count()});
  host::BpError(message, host::BpErrorLevel::kWarning);
  return limit;
}

}  // namespace

std::vector<std::string> MakeProbabilityNames(const std::string& root, int count,
                                              const host::VORN_DataSource& source) {
  std::vector<std::string> names = TryNames(root, count, "", source);
  // All get the same ending: names of one family that differ in kind would be hard to address.
  for (int attempt = 1; names.empty() && count > 0; ++attempt) {
    names = TryNames(root, count, "_" + std::to_string(attempt), source);
  }
  return names;
}

bool MakePredictedVariables(const TavoValidSpecs& specs, host::ProcedureDataSource& source,
                            const OrvRegInputAdapter& adapter, const std::vector<int>& categories,
                            PredictedVariables& made) {
  if (!specs.PredictedValueName().empty() && !MakePredictedValue(specs, source, made)) return false;
  if (specs.PredictedProbabilityRoot().empty()) return true;
  const std::vector<std::string> names =
      MakeProbabilityNames(specs.PredictedProbabilityRoot(), LimitedCount(specs, categories.size()), source);
  const std::vector<int> codes = SavedCodes(categories, names.size());
  const OrvCategoryTexts texts(source, adapter);
  for (std::size_t i = 0; i < codes.size(); ++i) {
    const auto place = std::find(categories.begin(), categories.end(), codes[i]) - categories.begin();
    made.categories.push_back(static_cast<std::size_t>(place));
    const std::string value = texts.Printed(specs.DependentVariable(), codes[i]);
    if (!MakeProbability(specs, source, value, names[i], made)) return false;
  }
  return true;
}

}  // namespace tavo
