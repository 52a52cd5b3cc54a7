// The sums of one evaluation: log-likelihood, scores, information.
#pragma once

#include <memory>
#include <vector>

#include "component/estimation/block_probabilities.h"
#include "component/estimation/estimation_method.h"
#include "component/estimation/row_block.h"
#include "component/estimation/sparse_vector.h"
#include "component/input/comp_settings.h"
#include "component/numerics/sym_matrix.h"

namespace tavo {

/// A symmetric matrix of n by n blocks, each a packed symmetric m by m matrix. Block (i, j) and block (j, i)
/// are the same object, and of it only the lower triangle is held. A failed allocation leaves an invalid,
/// empty structure.
class OrvSymStructure {
 public:
  OrvSymStructure() = default;
  OrvSymStructure(int blocks, int rowsPerBlock);
  bool IsValid() const { return fNRowsPerBlock >= 0; }
  int Blocks() const { return fNBlocks; }
  int RowsPerBlock() const { return fNRowsPerBlock; }
  MCCommonMath::MCSymMatrix& Block(int i, int j) { return fBlocks[Index(i, j)]; }
  const MCCommonMath::MCSymMatrix& Block(int i, int j) const { return fBlocks[Index(i, j)]; }
  void Clear();

 private:
  static std::size_t Index(int i, int j) {
    const int high = i >= j ? i : j;
    const int low = i >= j ? j : i;
    return static_cast<std::size_t>(high) * static_cast<std::size_t>(high + 1) / 2 +
           static_cast<std::size_t>(low);
  }
  bool Allocate();

  int fNBlocks = 0;
  int fNRowsPerBlock = 0;
  std::vector<MCCommonMath::MCSymMatrix> fBlocks;
};

/// Sums over rows the weighted log-likelihood, the score vector and the information of the baseline-category
/// logit at one parameter vector, (K-1) p' values, logit by logit, with p' non-redundant basic parameters:
///
///   log-likelihood  sum of w log p_y, with y the observed category
///   score           for logit j, sum of w ((y is j) - p_j) x
///   information     for logits i and j, sum of w p_i ((i is j) - p_j) x x'
///
/// (McCullagh and Nelder 1989, chapter 5; for weighted samples Binder 1983.) The information is the
/// expected as well as the observed one, as the logit is the canonical link. Rows come one by one or in
/// blocks; the sums differ by rounding. One object per thread. What is virtual is so for tests, which bend
/// the likelihood.
class TavoAccumStats {
 public:
  /// `parameters` is p', `categories` K. Nothing is owned: the estimates may change between evaluations, as
  /// `Reset` empties the sums. Not valid when a count is out of range, the
  /// vector is too short or memory ran out.
  TavoAccumStats(const TavoCompSettings& settings, int parameters, int categories,
                 const std::vector<double>& estimates);
  virtual ~TavoAccumStats() = default;

  bool IsValid() const { return fbValid; }
  /// Empties all sums. The method is kept for `Method` only: observed and expected information of this model
  /// are the same. With `separationCheck` the extremes of the probabilities are followed.
  virtual void Reset(EstimationMethod method, bool separationCheck);
  EstimationMethod Method() const { return fMethod; }
  /// Adds one row. `category` is the local index, K-1 the reference. 0, or -1 for a refused row (bad indices,
  /// category out of range, weight not above 0).
  virtual int UpdateForRow(const std::vector<int>& indices, const std::vector<double>& values, int category,
                           double weight, bool likelihoodOnly);
  /// Adds the rows of a block: the same sums, many rows at a time, but for rounding. A block with a row whose
  /// predictors aren't finite goes through UpdateForRow, which says what they count for. 0, or -1 with a
  /// refused row among them. Memory that runs out throws std::bad_alloc.
  int UpdateForBlock(const TavoRowBlock& block, bool likelihoodOnly);
  /// Probabilities of all categories and the log-probability of the reference, safe for any size of the
  /// linear predictors. False for unusable arguments.
  bool ComputeProbabilities(const OrvSparseVector& row, const std::vector<double>& parameters, int categories,
                            int parameterCount, std::vector<double>& probabilities, double& logReference);
  /// An empty accumulator of the same sizes over the same parameter vector.
  virtual std::unique_ptr<TavoAccumStats> CloneEmpty() const;
  /// Adds another object's sums; a sum with a missing operand is missing. The log-likelihood of objects of
  /// different shape has no sum: it becomes missing.
  void Merge(const TavoAccumStats& other);

  /// The dense information matrix of (K-1) p' rows, or -1.
  int GetHessian(MCCommonMath::MCSymMatrix& matrix) const;
  const std::vector<double>& Scores() const { return fScores; }
  /// The sum of w log(probability of the observed category). Summed with compensation (Neumaier 1974): near
  /// the maximum a step changes the sum by less than the rounding of a plain sum over many rows.
  double LogLikelihood() const;
  void GetCounts(int& valid, int& invalid, double& weight) const;
  /// Of the rows since the last reset with a separation check; the limits of the double type before the first
  /// row.
  void GetObservedProbabilities(double& minObserved, double& maxObserved, double& minComputed) const;

 protected:
  const TavoCompSettings& fSettings;
  int fNParameters;
  int fNCategories;
  const std::vector<double>& fEstimates;
  double fLogLikelihood = 0;      // running sum, missing when an operand of a merge was
  double fLogLikelihoodRest = 0;  // what rounding took from it
  std::vector<double> fScores;
  OrvSymStructure fHessian;
  int fNValidRows = 0;
  int fNInvalidRows = 0;
  double fWeight = 0;
  EstimationMethod fMethod = EstimationMethod::kFisherScoring;
  bool fbSeparationCheck = false;
  double fMinObserved = 0;
  double fMaxObserved = 0;
  double fMinComputed = 0;
  bool fbValid = false;
  std::vector<double> fProbabilities;  // work

 private:
  double LogObserved(const OrvSparseVector& row, int category, double logReference) const;
  void AddToLogLikelihood(double term);
  void NoteProbabilities(double observed);
  void AddScoresAndInformation(const OrvSparseVector& row, int category, double weight);
  bool HasSameShape(const TavoAccumStats& other) const;
  bool IsAcceptable(const TavoRowBlock& block) const;
  int UpdateForRowsOf(const TavoRowBlock& block, bool likelihoodOnly);
  void NoteProbabilitiesOf(const TavoRowBlock& block);
  void AddLogLikelihoodOf(const TavoRowBlock& block);
  void AddScoresAndInformationOf(const TavoRowBlock& block);

  TavoBlockProbabilities fBlockProbabilities;  // of the block at work
};

}  // namespace tavo
