#include "module/command/plan/plan_methods.h"

#include <array>
#include <span>

namespace tavo {

namespace {

struct MethodWord {
  PlanMethod method;
  std::string_view word;
};

constexpr std::array<MethodWord, 11> kSelection = {{{PlanMethod::SIMPLE_WOR, "simple_wor"},
                                                    {PlanMethod::SIMPLE_WR, "simple_wr"},
                                                    {PlanMethod::SIMPLE_SYSTEMATIC, "simple_systematic"},
                                                    {PlanMethod::SIMPLE_CHROMY, "simple_chromy"},
                                                    {PlanMethod::PPS_WOR, "pps_wor"},
                                                    {PlanMethod::PPS_WR, "pps_wr"},
                                                    {PlanMethod::PPS_SYSTEMATIC, "pps_systematic"},
                                                    {PlanMethod::PPS_BREWER, "pps_brewer"},
                                                    {PlanMethod::PPS_MURTHY, "pps_murthy"},
                                                    {PlanMethod::PPS_SAMPFORD, "pps_sampford"},
                                                    {PlanMethod::PPS_CHROMY, "pps_chromy"}}};

constexpr std::array<MethodWord, 3> kEstimation = {
    {{PlanMethod::EQUAL_WOR, "equal_wor"}, {PlanMethod::UNEQUAL_WOR, "unequal_wor"}, {PlanMethod::WR, "wr"}}};

PlanMethod MethodOf(std::span<const MethodWord> words, std::string_view word) {
  for (const MethodWord& entry : words) {
    if (entry.word == word) return entry.method;
  }
  return PlanMethod::NO_VALUE;
}

std::string_view WordAmong(std::span<const MethodWord> words, PlanMethod method) {
  for (const MethodWord& entry : words) {
    if (entry.method == method) return entry.word;
  }
  return {};
}

}  // namespace

PlanMethod EstimationMethodOf(std::string_view word) {
  return MethodOf(kEstimation, word);
}

PlanMethod SelectionMethodOf(std::string_view word) {
  return MethodOf(kSelection, word);
}

std::string_view WordOf(PlanMethod method) {
  const std::string_view word = WordAmong(kEstimation, method);
  return word.empty() ? WordAmong(kSelection, method) : word;
}

}  // namespace tavo
