// What a fit tells while it runs.
#pragma once

#include <string_view>
#include <vector>

namespace tavo {

/// A snapshot of named values. An unknown name gives 0, or a null vector.
class ProgressReport {
 public:
  virtual ~ProgressReport() = default;
  virtual int GetInt(std::string_view name) const = 0;
  virtual double GetDouble(std::string_view name) const = 0;
};

class ProgressReportVect : public ProgressReport {
 public:
  virtual const std::vector<double>* GetVector(std::string_view name) const = 0;
};

class ProgressListener {
 public:
  virtual ~ProgressListener() = default;
  virtual void Update(const ProgressReport& report) = 0;
};

/// One iteration: "iterNum", "stepHalving", "loglik", "time" (seconds since the fit began), "paramEstim"
/// (non-redundant parameters on the scale of the data).
class OrvIterationReporter : public ProgressReportVect {
 public:
  /// `estimates` is not owned, and outlives the object or the next call.
  void Set(const std::vector<double>* estimates, int iteration, int stepHalvings, double logLikelihood,
           double seconds);
  int GetInt(std::string_view name) const override;
  double GetDouble(std::string_view name) const override;
  const std::vector<double>* GetVector(std::string_view name) const override;

 private:
  const std::vector<double>* fpEstimates = nullptr;
  int fIteration = 0;
  int fNStepHalvings = 0;
  double fLogLikelihood = 0;
  double fSeconds = 0;
};

/// Keeps the iteration history.
class OrvIterationData : public ProgressListener {
 public:
  struct Row {
    int iteration = 0;
    int stepHalvings = 0;
    double minusTwoLogLikelihood = 0;  // missing when the log-likelihood is
    std::vector<double> estimates;     // non-redundant parameters, data scale
  };
  /// Appends a row; a report that isn't a ProgressReportVect is ignored.
  void Update(const ProgressReport& report) override;
  const std::vector<Row>& Rows() const { return fRows; }

 private:
  std::vector<Row> fRows;
};

}  // namespace tavo
