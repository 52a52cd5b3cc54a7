#include "component/design/design_nodes.h"

#include <cassert>

namespace tavo {

void DesignNode::SetBlocks(const std::vector<int>& sizes, const std::vector<int>& offsets,
                           bool hasLowerStages) {
  fpCovariances = std::make_unique<OrvCovariances>(sizes, offsets, hasLowerStages);
}

void DesignNode::Clear() {
  fVariances.Clear();
  if (fpCovariances) fpCovariances->Clear();
}

bool DesignNode::FinishUpward(DesignNode& parent, DesignNode& child) {
  assert((parent.fpCovariances == nullptr) == (child.fpCovariances == nullptr));
  if (!child.Finish()) return false;  // before anything is merged: the parent must not hold half a child
  parent.MergeVariances(child.fVariances);
  if (parent.fpCovariances) parent.MergeCovariances(*child.fpCovariances);
  child.Clear();
  return true;
}

bool ClustersNode::Finish() {
  if (!fVariances.Finish(fValue, fbPopulation)) return false;
  return !fpCovariances || fpCovariances->Finish(fValue, fbPopulation);
}

void ClustersNode::AddUnit(const std::vector<double>& totals) {
  fVariances.AddUnit(totals);
  if (fpCovariances) fpCovariances->AddUnit(totals);
}

}  // namespace tavo
