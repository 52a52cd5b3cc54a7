#include "module/frame/odds_ratio_check.h"

#include "host/output.h"

namespace tavo {

namespace {

constexpr int kCovariateControl = -2;  // a code that no category has

class OddsRatioCheck {
 public:
  OddsRatioCheck(OrvRegInputAdapter& adapter, const host::VORN_DataSource& source)
      : fAdapter(adapter), fSource(source) {}

  /// One code per item. Items with an unknown value share one warning of that key.
  std::vector<int> Codes(const std::vector<FactorSpec>& items, std::size_t request, const char* warning);

 private:
  int CodeOf(const FactorSpec& item);
  void Warn(const char* key, std::size_t request) const;

  OrvRegInputAdapter& fAdapter;
  const host::VORN_DataSource& fSource;
  std::vector<int> fNotFound;  // variables
};

std::vector<int> OddsRatioCheck::Codes(const std::vector<FactorSpec>& items, std::size_t request,
                                       const char* warning) {
  fNotFound.clear();
  std::vector<int> codes;
  for (const FactorSpec& item : items) {
    // Sorting again changes nothing, and a covariate has no categories, which the adapter knows.
    fAdapter.SortCategories(item.variable, true);
    codes.push_back(CodeOf(item));
  }
  if (!fNotFound.empty()) Warn(warning, request);
  return codes;
}

int OddsRatioCheck::CodeOf(const FactorSpec& item) {
  if (item.variable < 0) return kCovariateControl;
  if (item.high) return OrvOddsRatioSpec::kHighest;
  if (item.value.Empty()) return OrvOddsRatioSpec::kLowest;
  bool notFound = false;
  const int code = fAdapter.CodeForValue(item.variable, item.value.cells.data(), notFound, false);
  if (!notFound) return code;
  fNotFound.push_back(item.variable);
  return OrvOddsRatioSpec::kHighest;
}

void OddsRatioCheck::Warn(const char* key, std::size_t request) const {
  host::BpComposite message(key);
  message.Add(host::BpNumber{static_cast<double>(request + 1), host::BpProcedure::Count()});
  message.Sublist();
  for (const int variable : fNotFound) {
    message.Add(host::BpVariable{fSource.GetVariable(static_cast<unsigned>(variable)), host::BpShow::kValue});
  }
  host::BpError(message.EndSublist(), host::BpErrorLevel::kWarning);
}

}  // namespace

std::vector<OrvOddsRatioSpec> CheckOddsRatios(const TavoValidSpecs& specs, OrvRegInputAdapter& adapter,
                                              const host::VORN_DataSource& source) {
  OddsRatioCheck check(adapter, source);
  std::vector<OrvOddsRatioSpec> requests;
  for (std::size_t i = 0; i < specs.OddsRatioItemLists().size(); ++i) {
    const OddsRatioItems& items = specs.OddsRatioItemLists()[i];
    const std::vector<int> factors =
        check.Codes(items.factors, i, "For OddsRatio ^1 reference category out of range [%1:, ^1:]2");
    const std::vector<int> controls =
        check.Codes(items.controls, i, "For OddsRatio ^1 factor value out of range on Control [%1:, ^1:]2");
    requests.push_back(specs.RecordOddsRatio(i, factors, controls));
  }
  return requests;
}

}  // namespace tavo
