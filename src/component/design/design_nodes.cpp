#include "component/design/design_nodes.h"

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
  if (!child.Finish()) return false;
  parent.MergeVariances(child.fVariances);
  if (parent.fpCovariances && child.fpCovariances) parent.MergeCovariances(*child.fpCovariances);
  child.Clear();
  return true;
}

double StrataNode::DegreesOfFreedom(int variable) const {
  const double* v = fVariances.Values(variable);
  return v[3] - v[0];
}

double ClustersNode::DegreesOfFreedom(int variable) const {
  const double units = fVariances.Values(variable)[0];
  return units > 0.0 ? units - 1.0 : 0.0;
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
