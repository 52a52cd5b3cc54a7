// Data and results of small fits, worked out by Newton's method in 40 digits: reference/make_reference.py,
// made with Python 3.11 and mpmath 1.3.0.
#pragma once

#include <array>
#include <vector>

namespace tavo_test {

struct ReferenceCase {
  int response;
  int responseOfThree;
  int level;
  double x;
  double weight;
};

inline constexpr std::array<ReferenceCase, 12> kReferenceCases = {{{1, 1, 1, 2.5, 1.5},
                                                                   {2, 2, 1, 3.1, 2.0},
                                                                   {1, 3, 2, 4.7, 1.0},
                                                                   {2, 1, 2, 1.2, 0.5},
                                                                   {2, 2, 3, 5.5, 3.0},
                                                                   {1, 3, 3, 6.1, 1.25},
                                                                   {2, 3, 1, 0.4, 1.0},
                                                                   {1, 2, 2, 7.3, 2.5},
                                                                   {1, 1, 1, 5.2, 0.75},
                                                                   {2, 1, 3, 2.2, 1.0},
                                                                   {1, 3, 3, 3.9, 2.0},
                                                                   {2, 2, 2, 6.6, 1.5}}};

// Two categories, the second the reference: intercept, levels 1 and 2 of 3 (the last is aliased), x.
inline constexpr double kBinaryInitialLogLikelihood = -12.47664925007901557;
inline constexpr double kBinaryLogLikelihood = -11.594466466093534232;
inline const std::vector<double> kBinaryEstimates = {-1.9185343332931122204, 0.63592286062617148388,
                                                     0.30994456703159159143, 0.35996299705184432935};
inline const std::vector<double> kBinaryVariances = {3.4535085874925546886, 1.9052204222682332856,
                                                     1.6469529748553796578, 0.12386283106081899569};
inline constexpr double kBinaryCoxSnell = 0.093369509492438129103;
inline constexpr double kBinaryNagelkerke = 0.1244926793232508388;
inline constexpr double kBinaryMcFadden = 0.070706707089637420602;

// Three categories, the first the reference, so logits of 2 and 3: intercept, x.
inline constexpr double kThreeLogLikelihood = -14.975596938302711241;
inline const std::vector<double> kThreeEstimates = {-3.3644550712912174595, 0.99086157155307264677,
                                                    -0.89384267672744680491, 0.36888308859532938987};
inline const std::vector<double> kThreeVariances = {4.3034671231248400201, 0.23407938010312011145,
                                                    2.3176660259672823327, 0.17409116418608030598};

// Two categories, the first the reference, without intercept: levels 1, 2 and 3, x.
inline const std::vector<double> kNoInterceptEstimates = {1.2826114726669407365, 1.6085897662615206289,
                                                          1.9185343332931122204, -0.35996299705184432935};
inline const std::vector<double> kNoInterceptVariances = {1.8020396162113619686, 5.4201348217354992167,
                                                          3.4535085874925546886, 0.12386283106081899569};

}  // namespace tavo_test
