// From the host's cases to the component's records.
#pragma once

#include <map>
#include <vector>

#include "host/data.h"
#include "module/command/plan_valid_specs.h"
#include "module/input/adapt_variables.h"
#include "module/input/variable_reporter.h"

namespace tavo {

/// Turns the current case into a record: an array of doubles in which a category is a positive whole code and
/// everything missing is the missing marker. Keeps the code table of each categorical variable, decides which
/// cases are dropped, and counts.
class OrvInputAdapter {
 public:
  /// Nothing is owned; `iterator` must live until the next BeginPass. `includeUserMissing`: declared missing
  /// values of categorical variables are categories like any other.
  OrvInputAdapter(const OrvPlanValidSpecs& specs, const host::VORN_DataSource& source,
                  const host::VORN_InputCaseIterator& iterator, const OrvVariableReporter& reporter,
                  bool listwise, bool includeUserMissing);
  virtual ~OrvInputAdapter() = default;

  virtual int RecordLength() const { return fSpecs.RecordLength(); }
  /// Each fills its columns of the record from the current case and answers whether the case may stay.
  virtual bool FillCategorical(double* record);
  virtual bool FillContinuous(double* record);
  virtual bool FillMatrix(double* record);

  virtual bool IsPredictionMode() const { return false; }

  /// Starts the next pass: zeroes the counters and binds the variables to the new iterator.
  void BeginPass(const host::VORN_InputCaseIterator& iterator);
  /// Cells of a categorical variable's code, null for a code out of range; good until the next
  /// SortCategories.
  const host::OBS* ValueForCode(int variable, int code) const;
  const host::OBS* ValueForColumnCode(int column, int code, int& variable) const;
  /// The code of a value; 0 when it isn't known and not to be inserted.
  int CodeForValue(int variable, const host::OBS* cells, bool& notFound, bool insert);

  struct Counters {
    long casesRead = 0;
    long recordsPassed = 0;
    long valid = 0;
    long invalid = 0;
  };
  Counters& Counts() { return fCounts; }
  const Counters& Counts() const { return fCounts; }
  int PassCounter() const { return fNPass; }

 protected:
  /// A variable of the record with the column that it fills.
  template <class Variable>
  struct Filled {
    Variable variable;
    std::size_t column;
  };

  const OrvAdaptCatVar* CategoricalOf(int variable) const;  // null when it isn't categorical
  OrvAdaptCatVar* CategoricalOf(int variable);
  void ReportInvalid(const OrvAdaptContVar& variable) const;
  void ReportNotInMatrix(const OrvAdaptMatrixVar& variable) const;

  const OrvPlanValidSpecs& fSpecs;
  const OrvVariableReporter& fReporter;
  std::vector<Filled<OrvAdaptCatVar>> fCategorical;  // in the order of the specification's map
  std::vector<Filled<OrvAdaptContVar>> fContinuous;
  std::vector<Filled<OrvAdaptMatrixVar>> fMatrices;
  std::map<int, std::size_t> fVariablePosition;  // dictionary index to position in fCategorical
  Counters fCounts;
  int fNPass = 0;  // 0 in the first pass, in which the code tables grow
  bool fbListwise;
};

class OrvRegInputAdapter final : public OrvInputAdapter {
 public:
  OrvRegInputAdapter(const OrvPlanValidSpecs& specs, const host::VORN_DataSource& source,
                     const host::VORN_InputCaseIterator& iterator, const OrvVariableReporter& reporter,
                     bool includeUserMissing)
      : OrvInputAdapter(specs, source, iterator, reporter, true, includeUserMissing),
        fbIncludeUserMissing(includeUserMissing) {}

  /// Codes of a categorical variable; 0 when it isn't one.
  int CategoryCount(int variable) const;
  /// Recodes so that codes rise (or fall) with the value.
  void SortCategories(int variable, bool ascending);

  /// Starts a pass that scores cases: a case stays when it has the required variables (dictionary indices),
  /// whatever else it lacks; nothing is inserted and no message is sent. The mode stays for good.
  void BeginPredictionPass(const host::VORN_InputCaseIterator& iterator,
                           const std::vector<int>& requiredCategorical,
                           const std::vector<int>& requiredContinuous);
  bool IsPredictionMode() const override { return fbPredictionMode; }
  bool FillCategorical(double* record) override;
  bool FillContinuous(double* record) override;
  bool FillMatrix(double* record) override;

 private:
  bool fbPredictionMode = false;
  bool fbIncludeUserMissing;
  std::vector<char> fRequiredCategorical;  // by position in fCategorical
  std::vector<char> fRequiredContinuous;   // by position in fContinuous
};

}  // namespace tavo
