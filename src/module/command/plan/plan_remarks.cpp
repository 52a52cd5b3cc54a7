#include "module/command/plan/plan_remarks.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "module/command/plan/section_reader.h"

namespace tavo {

namespace {

// A plan of another kind altogether would otherwise be told element by element.
constexpr std::size_t kMostRemarks = 20;

/// What may stand in an element of an analysis plan.
struct KnownElement {
  const char* name;
  std::vector<std::string> children;
  std::vector<std::string> attributes;
  const char* needed = nullptr;  // the attribute without which the element says nothing
};

const KnownElement* FindKnown(const std::string& name) {
  static const std::vector<std::string> kForms = {"SingleValue", "Variable", "Matrix"};
  static const std::vector<KnownElement> kElements = {
      {"AnalysisDesign", {"AnalysisStage", "Weight"}, {"SRSestimator", "numberOfStages"}},
      {"AnalysisStage",
       {"StrataVarList", "ClusterVarList", "PopulationSize", "IncProb", "InclusionProbability"},
       {"label", "stageNumber", "estimationMethod"}},
      {"StrataVarList", {"Variable"}, {}},
      {"ClusterVarList", {"Variable"}, {}},
      {"Weight", {"Variable"}, {}},
      {"PopulationSize", kForms, {}},
      {"IncProb", kForms, {}},
      {"InclusionProbability", kForms, {}},
      {"Matrix", {"MatrixVarList", "MatrixValue"}, {"numberOfValues"}, "numberOfValues"},
      {"MatrixVarList", {"Variable"}, {"numberOfVariables"}},
      {"MatrixValue", {"Category"}, {"sizeValue"}, "sizeValue"},
      {"SingleValue", {}, {"value"}, "value"},
      {"Variable", {}, {"name"}, "name"},
      {"Category", {}, {"value"}, "value"},
  };
  const auto known = std::find_if(kElements.begin(), kElements.end(),
                                  [&](const KnownElement& element) { return element.name == name; });
  return known == kElements.end() ? nullptr : &*known;
}

bool Contains(const std::vector<std::string>& words, const std::string& word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

/// Elements of which a list holds any number.
bool MayRepeat(const std::string& name, const std::string& parent) {
  if (name == "Variable")
    return parent == "StrataVarList" || parent == "ClusterVarList" || parent == "MatrixVarList";
  return name == "AnalysisStage" || name == "MatrixValue" || name == "Category";
}

std::string Listed(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words)
    text += (text.empty() ? "" : ", ") + word;
  return text;
}

/// What isn't a whole number above 0 reads as 0.
std::size_t CountOf(const std::string& text) {
  const double number = NumberOfText(text);
  return host::IsValidInteger(number) && number > 0 ? static_cast<std::size_t>(number) : 0;
}

class RemarkFinder {
 public:
  explicit RemarkFinder(const PlanDocument& document) : fDocument(document) {}

  std::vector<PlanRemark> Run() {
    const PlanElement root = fDocument.Root();
    const std::vector<std::string> sections = {"AnalysisDesign", "SampleDesign", "Header"};
    bool isRead = false;
    for (const PlanElement& child : root.Children()) {
      const std::string name = child.Name();
      const bool isAnalysis = name == "AnalysisDesign";
      if (!Contains(sections, name)) {
        Unknown("Unknown element ^1 in ^2 of the plan at ^3, known are ^4...", name, root.Name(), child,
                sections);
      } else if (isAnalysis && isRead) {
        Add("Element ^1 stands in ^2 of the plan again at ^3...", {name, root.Name(), Place(child)});
      } else if (isAnalysis) {
        Visit(child, *FindKnown(name));
      }
      isRead = isRead || isAnalysis;
    }
    return std::move(fRemarks);
  }

 private:
  std::string Place(const PlanElement& element) const { return fDocument.PlaceOf(element); }

  void Add(const char* key, std::vector<std::string> arguments, std::vector<std::string> candidates = {}) {
    fRemarks.push_back({key, std::move(arguments), std::move(candidates)});
  }
  void Unknown(const char* key, const std::string& name, const std::string& in, const PlanElement& element,
               const std::vector<std::string>& known) {
    if (IsFull()) return;
    Add(key, {name, in, Place(element), known.empty() ? "-" : Listed(known)}, known);
  }
  bool IsFull() const { return fRemarks.size() >= kMostRemarks; }

  void Visit(const PlanElement& element, const KnownElement& known) {
    if (IsFull()) return;
    CheckAttributes(element, known);
    if (element.Name() == "Matrix") CheckRowCount(element);
    std::set<std::string> seen;
    for (const PlanElement& child : element.Children()) {
      if (IsFull()) return;
      const std::string name = child.Name();
      const KnownElement* const what = FindKnown(name);
      if (what == nullptr || !Contains(known.children, name)) {
        // Variables and categories of a matrix are read whatever their elements are called.
        if (!IsReadByAttribute(child, known)) {
          Unknown("Unknown element ^1 in ^2 of the plan at ^3, known are ^4...", name, known.name, child,
                  known.children);
        }
        continue;
      }
      if (!seen.insert(name).second && !MayRepeat(name, known.name)) {
        Add("Element ^1 stands in ^2 of the plan again at ^3...", {name, known.name, Place(child)});
        continue;
      }
      Visit(child, *what);
    }
  }

  static bool IsReadByAttribute(const PlanElement& child, const KnownElement& parent) {
    const std::string name = parent.name;
    return (name == "MatrixVarList" && child.HasAttribute("name")) ||
           (name == "MatrixValue" && child.HasAttribute("value"));
  }

  void CheckAttributes(const PlanElement& element, const KnownElement& known) {
    for (const std::string& name : element.AttributeNames()) {
      // Names of XML itself and of namespaces belong to no format.
      if (Contains(known.attributes, name) || name.starts_with("xml") || name.find(':') != std::string::npos)
        continue;
      Unknown("Unknown attribute ^1 of ^2 in the plan at ^3, known are ^4...", name, known.name, element,
              known.attributes);
    }
    if (known.needed != nullptr && !element.HasAttribute(known.needed) && !IsFull()) {
      Add("Attribute ^1 of ^2 is missing in the plan at ^3...", {known.needed, known.name, Place(element)});
    }
  }

  void CheckRowCount(const PlanElement& matrix) {
    if (!matrix.HasAttribute("numberOfValues") || IsFull()) return;
    const std::string text = matrix.Attribute("numberOfValues");
    const std::size_t stated = CountOf(text);
    const std::size_t rows = matrix.Descendants("MatrixValue").size();
    // More than there are is a fault of its own, which the reader reports.
    if (stated >= rows) return;
    Add("^1 is less than the ^2 rows of the matrix in the plan at ^3...",
        {"numberOfValues=\"" + text + "\"", std::to_string(rows), Place(matrix)});
  }

  const PlanDocument& fDocument;
  std::vector<PlanRemark> fRemarks;
};

}  // namespace

std::vector<PlanRemark> FindPlanRemarks(const PlanDocument& document) {
  return RemarkFinder(document).Run();
}

}  // namespace tavo
