// A small fitted model, made by hand, and its document.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "module/saved/pmml_exporter.h"
#include "xml_document.h"

namespace tavo {

/// Dictionary indices of the variables.
enum PmmlIndex : int { kY, kA, kB, kX, kZ, kD, kStatus, kStart, kStrata, kSubject };

/// Response y (no, maybe, yes), factor a (1, 2, 3), factor b (u, v), covariates x and z. Model: the
/// intercept, a and x, with the last level of a redundant: p = 5 parameters in each of the 2 equations.
class Pmml : public ::testing::Test {
 protected:
  using Level = OrvPMMLVariable::Level;

  Pmml() {
    Add(kY, "y", Level::kNominal, {"no", "maybe", "yes"}).type = OrvPMMLVariable::DataType::kString;
    variables.back().categoryLabels = {"", "Perhaps", ""};
    Add(kA, "a", Level::kOrdinal, {"1", "2", "3"});
    Add(kB, "b", Level::kNominal, {"u", "v"}).type = OrvPMMLVariable::DataType::kString;
    Add(kX, "x", Level::kContinuous, {});
    Add(kZ, "z", Level::kContinuous, {});
    UseEffects({Effect({kA}), Effect({}, {kX})});
    targetParameters = {OrvRegrParameter(), Parameter({kA}, {1}), Parameter({kA}, {2}), Parameter({kA}, {3}),
                        Parameter({}, {}, {kX}, {1})};
    SetEstimates(10);
    nonRedundant.Set(3, false);
    nonRedundant.Set(8, false);
    model.dependent = kY;
    model.degreesOfFreedom = 6;
  }

  OrvPMMLVariable& Add(int index, const std::string& name, Level level, std::vector<std::string> categories) {
    OrvPMMLVariable& variable = variables.emplace_back();
    variable.index = index;
    variable.name = name;
    variable.level = level;
    variable.categoryValues = std::move(categories);
    return variable;
  }

  OrvModelEffect Effect(const std::vector<int>& effectFactors, const std::vector<int>& effectCovariates = {},
                        bool nested = false) const {
    OrvModelEffect effect(static_cast<int>(factors.size()), static_cast<int>(covariates.size()), &predictors);
    for (const int factor : effectFactors)
      effect.AddFactor(factor, nested);
    for (const int covariate : effectCovariates)
      effect.AddCovariate(covariate);
    return effect;
  }
  void UseEffects(std::vector<OrvModelEffect> list) { effects = std::move(list); }

  static OrvRegrParameter Parameter(std::vector<int> factors, std::vector<int> levels,
                                    std::vector<int> covariates = {}, std::vector<int> powers = {}) {
    OrvRegrParameter parameter;
    parameter.nestingLevels.assign(factors.size(), 0);
    parameter.factors = std::move(factors);
    parameter.levels = std::move(levels);
    parameter.covariates = std::move(covariates);
    parameter.multiplicities = std::move(powers);
    parameter.effectIndex = parameter.IsIntercept() ? -1 : 0;
    return parameter;
  }

  /// As many estimates as said, 1, 2, 3, …, none redundant; covariance (i, j) = 100 i + j for i >= j, from 1.
  void SetEstimates(int count) {
    estimates.clear();
    for (int i = 1; i <= count; ++i)
      estimates.push_back(i);
    nonRedundant.Resize(count, true);
    model.parameterCount = count;
    covariance.SetNRows(count);
    for (int i = 0; i < count; ++i) {
      for (int j = 0; j <= i; ++j)
        covariance.SetElem(i, j, 100 * (i + 1) + j + 1);
    }
  }

  OrvPMMLExporter& Exporter() {
    metadata = OrvPMMLMetadata();
    metadata.events = events;
    for (const OrvPMMLVariable& variable : variables)
      metadata.AddVariable(variable);
    model.factors = &factors;
    model.covariates = &covariates;
    model.targetParameters = &targetParameters;
    model.estimates = &estimates;
    model.nonRedundant = &nonRedundant;
    model.effects = &effects;
    exporter = std::make_unique<OrvPMMLExporter>(metadata, model, cancel);
    exporter->SetTargets(targets, reference);
    return *exporter;
  }

  OrvStatus Check() { return Exporter().CheckConsistency(); }
  std::string Text(bool withCovariance = true) {
    std::ostringstream out;
    if (model.kind == ModelKind::kMultinomialLogistic)
      covariance.SetNBlocks(static_cast<int>(targets.size()) - 1);
    status = Exporter().Write(out, counts, withCovariance ? &covariance : nullptr);
    return out.str();
  }
  test_support::XmlNode Document(bool withCovariance = true) {
    const std::string text = Text(withCovariance);
    EXPECT_TRUE(status.IsOK()) << status.Code();
    return text.empty() ? test_support::XmlNode() : test_support::ParseXml(text);
  }
  test_support::XmlNode Model(bool withCovariance = true) {
    const test_support::XmlNode document = Document(withCovariance);
    const test_support::XmlNode* found = document.Child("GeneralRegressionModel");
    return found == nullptr ? test_support::XmlNode() : *found;
  }
  test_support::XmlNode Field(const std::string& name) {
    const test_support::XmlNode document = Document();
    for (const test_support::XmlNode* field : document.Child("DataDictionary")->Children("DataField")) {
      if (field->At("name") == name) return *field;
    }
    return {};
  }
  /// An attribute of all children.
  static std::vector<std::string> Each(const test_support::XmlNode* parent, const std::string& attribute) {
    std::vector<std::string> values;
    if (parent == nullptr) return values;
    for (const test_support::XmlNode& child : parent->children)
      values.push_back(child.At(attribute));
    return values;
  }

  std::vector<OrvPMMLVariable> variables;
  std::vector<int> factors = {kA, kB};
  std::vector<int> covariates = {kX, kZ};
  std::vector<int> predictors = {kA, kB, kX, kZ};
  std::vector<OrvModelEffect> effects;
  std::vector<OrvRegrParameter> targetParameters;
  std::vector<double> estimates;
  MCCommonMath::MCBitSet nonRedundant;
  MCCommonMath::MCSymMatrix covariance;
  std::vector<std::vector<double>> counts = {{1, 1, 1}, {1, 1}};
  std::vector<int> targets = {1, 2, 3};
  int reference = 3;
  OrvPMMLModel model;
  OrvPMMLMetadata metadata;
  OrvPMMLEvents events;
  OrvCancelInfo cancel;
  OrvStatus status;
  std::unique_ptr<OrvPMMLExporter> exporter;
};

}  // namespace tavo
