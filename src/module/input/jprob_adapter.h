// The file of joint inclusion probabilities, read whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "component/design/joint_incl_probs.h"
#include "host/data.h"
#include "module/command/plan_valid_specs.h"
#include "module/input/reg_input_adapter.h"

namespace tavo {

/// Reads a case file whose variables stand in this order: the strata variables of the first stage and then
/// its cluster variables, each group in any order, with the names and types of the active data; Unit_No_, the
/// number of the unit within its stratum, from 1; and probabilities, of which the j-th is the joint inclusion
/// probability of this unit with unit j of its stratum, and for j = Unit_No_ the unit's own. Columns beyond a
/// stratum's units aren't read. Rows may come in any order.
///
/// For a stratum "north" of two units:
///
///   region,psu,Unit_No_,p1,p2
///   north,17,1,0.5,0.2
///   north,31,2,0.2,0.6
class OrvJProbAdapter {
 public:
  enum Error : int {
    kNone = 0,
    kVariableNotInFile = 1,  // a strata or cluster variable isn't where it belongs, or too few variables
    kWrongType = 2,          // of a strata or cluster variable; or a number isn't one
    kValueMissing = 3,       // of a strata or cluster variable, or a unit number
    kDuplicateUnit = 4,      // a unit number stands twice in a stratum
    kNotReadable = 5         // the host gave no pass over the file; it has said why
  };

  /// Checks and reads `file`, which is needed no longer afterwards. Codes are those of the adapter's
  /// categorical variables; values that the active data don't have get new ones. `includeUserMissing` as in
  /// the adapter. All errors but kNotReadable send their warning.
  OrvJProbAdapter(OrvInputAdapter& adapter, const OrvPlanValidSpecs& specs,
                  const host::VORN_DataSource& active, host::VORN_DataSource& file, bool includeUserMissing);

  Error GetError() const { return fError; }
  /// See MCOrv::JointInclProbs::ReadStratum. A fault in the stratum sends its message as an error; false,
  /// without one, after an error of the file.
  bool ReadStratum(const std::vector<std::int32_t>& strataKey, MCOrv::JointInclProbs::Units& units,
                   std::vector<double>& matrix) const;

 private:
  /// Strata codes in the order of the plan, then the unit number: a stratum's rows lie together, in unit
  /// order.
  using Key = std::vector<std::int32_t>;
  /// Cluster codes in the order of the plan, then the probabilities.
  using Row = std::vector<double>;
  using Rows = std::map<Key, Row>;
  /// A strata or cluster variable: its place in the file is its index here.
  struct DesignColumn {
    int variable;          // of the active data
    std::size_t position;  // in the plan's list
  };
  struct CaseReader;
  /// Unit numbers and cluster keys, or probabilities, that can't be.
  enum class Fault {
    kNone,
    kUnitNumber,
    kUnitNumberTooBig,
    kNoStratum,
    kProbability,
    kOutOfRange,
    kDuplicate
  };

  Error CheckVariables(const OrvPlanValidSpecs& specs, const host::VORN_DataSource& active,
                       const host::VORN_DataSource& file);
  Error CheckGroup(const std::vector<int>& planned, const host::VORN_DataSource& active,
                   const host::VORN_DataSource& file);
  Error ReadFile(OrvInputAdapter& adapter, host::VORN_DataSource& file, bool includeUserMissing);
  std::size_t ClusterCount() const { return fColumns.size() - fNStrata; }
  Fault FindStratum(const std::vector<std::int32_t>& strataKey, std::vector<const Row*>& rows) const;
  Fault CollectUnits(const std::vector<const Row*>& rows, MCOrv::JointInclProbs::Units& units) const;
  Fault CopyMatrix(const std::vector<const Row*>& rows, std::vector<double>& matrix) const;
  static const char* MessageOf(Fault fault);

  std::size_t fNStrata = 0;
  std::vector<DesignColumn> fColumns;  // strata, then clusters, in file order
  std::size_t fNProbabilities = 0;     // columns of the file
  Rows fRows;
  Error fError = kNone;
};

}  // namespace tavo
