// The evaluation of single cases at the estimates: probabilities, predicted category, scores.
#pragma once

#include <vector>

#include "component/estimation/design_columns.h"
#include "component/estimation/parameter_list.h"
#include "component/estimation/precise_fit.h"
#include "component/estimation/response_categories.h"
#include "component/estimation/srs_centre.h"
#include "component/numerics/rect_matrix.h"
#include "component/tabulation/factor_tables.h"

namespace tavo {

/// Made when there are estimates, so that it can't be asked before. One object serves one thread (work
/// vectors).
class OrvCaseScorer {
 public:
  /// Nothing is owned. `estimates`: of all parameters, logit by logit, on the internal scale, 0 for redundant
  /// ones.
  OrvCaseScorer(const OrvResponseCategories& response, const OrvParameterList& parameters,
                const OrvDesignColumns& columns, OrvFactorTables& tables,
                const std::vector<double>& estimates);

  /// Probabilities by local index, reference last, and the local index of the most probable category; ties
  /// within machine epsilon of the linear predictors go to OrvResponseCategories::BreakTie. False, with
  /// nothing changed, for a level combination that the estimation data didn't have.
  bool Predict(const double* dataRow, std::vector<double>& probabilities, int& predicted);
  /// Adds to `sums`, over all parameters, the score of a row, (1 if the response is j, else 0, minus
  /// probability j) * x * w; to `classification`, observed by predicted local index, its weight; and to
  /// `centre`, when there is one, its part. A redundant column keeps its value here: the zero rows of the
  /// inverse information take it out later. An unknown level combination or response adds nothing.
  void AddScores(const double* dataRow, std::vector<double>& sums, MCCommonMath::MCRectMatrix& classification,
                 OrvSRSCentre* centre);
  /// The same in twice the precision, with the estimates of `fit`. `sums` are over the non-redundant
  /// parameters, logit by logit; `compressed` gives, by basic parameter, its place among them, -1 for none.
  /// The centre gets the score in the basis of the fit's factor.
  void AddPreciseScores(const double* dataRow, const TavoPreciseFit& fit, const std::vector<int>& compressed,
                        MCCommonMath::PreciseColumn& sums, MCCommonMath::MCRectMatrix& classification,
                        OrvSRSCentre* centre);
  /// Rows with a weight that is not 0 (a NaN is not) among those that AddScores added.
  long WeightedCaseCount() const { return fNCasesWithWeight; }

 private:
  bool FillRow(const double* dataRow);
  void EvaluateRow(std::vector<double>& probabilities, int& predicted);
  void TakeProbabilities(std::vector<double>& predictors, int& predicted);
  void FillPreciseRow(const double* dataRow, const std::vector<int>& compressed);
  void Count(int observed, int predicted, double weight, MCCommonMath::MCRectMatrix& classification);

  const OrvResponseCategories& fResponse;
  const OrvDesignColumns& fColumns;
  OrvFactorTables& fTables;
  const std::vector<double>& fEstimates;
  std::size_t fNLogits;
  std::size_t fNBasic;
  long fNCasesWithWeight = 0;
  // Work: the design row, one entry for each model effect, with basic parameter indices …
  std::vector<int> fParameters;
  std::vector<double> fValues;
  std::vector<double> fProbabilities;
  std::vector<int> fTied;
  // … and its score over all logits, without the weight.
  std::vector<int> fScoreIndices;
  std::vector<double> fScoreValues;
  // Of a refined fit: the entries of the design row, and the score in the basis of the factor.
  std::vector<int> fPreciseIndices;
  std::vector<MCCommonMath::DoubleDouble> fPreciseValues;
  MCCommonMath::PreciseColumn fPreciseScore;
};

}  // namespace tavo
