#include "module/saved/model_file.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "host/files.h"
#include "host/output.h"
#include "host/session.h"
#include "module/saved/model_variables.h"
#include "module/saved/pmml_exporter.h"

namespace tavo {

namespace {

constexpr int kSavedFiles = 2;  // the group of notes

/// Describes the variables of the model to the document.
class MetadataBuilder {
 public:
  MetadataBuilder(const TavoOutputFrame& frame, OrvPMMLMetadata& metadata)
      : fFrame(frame), fMetadata(metadata) {}

  void AddAll() {
    const TavoValidSpecs& specs = fFrame.Specs();
    AddCategorical(specs.DependentVariable());
    for (const int factor : specs.Factors())
      AddCategorical(factor);
    for (const int covariate : specs.Covariates())
      AddContinuous(covariate);
    if (fFrame.HasSubpopulation()) AddSubpopulation();
  }

 private:
  const host::VORN_Variable& Variable(int index) const {
    return *fFrame.Source().GetVariable(static_cast<unsigned>(index));
  }

  void AddCategorical(int index) {
    const host::VORN_Variable& variable = Variable(index);
    OrvPMMLVariable description = DescribeVariable(variable, index, false);
    const OrvRegInputAdapter& adapter = fFrame.Adapter();
    for (int code = 1; code <= adapter.CategoryCount(index); ++code)
      AddCategoryTo(description, variable, adapter.ValueForCode(index, code));
    Finish(std::move(description), variable);
  }

  void AddContinuous(int index) {
    OrvPMMLVariable description = DescribeVariable(Variable(index), index, true);
    AddMissingTo(description, Variable(index));
    fMetadata.AddVariable(std::move(description));
  }

  void AddSubpopulation() {
    const int index = fFrame.Specs().DomainVariable();
    OrvPMMLVariable description = DescribeVariable(Variable(index), index, false);
    AddCategoryTo(description, Variable(index), fFrame.Specs().DomainValue().cells.data());
    Finish(std::move(description), Variable(index));
  }

  /// Declared missing values that the run took as categories are none for the model.
  void Finish(OrvPMMLVariable description, const host::VORN_Variable& variable) {
    if (fFrame.Specs().ExcludesMissing()) AddMissingTo(description, variable);
    fMetadata.AddVariable(std::move(description));
  }

  const TavoOutputFrame& fFrame;
  OrvPMMLMetadata& fMetadata;
};

/// The parameters of one equation, with dictionary indices in place of record columns.
std::vector<OrvRegrParameter> TargetParameters(const TavoOutputFrame& frame) {
  const std::vector<OrvRegrParameter>& all = frame.Stats()->Parameters();
  const auto perEquation = static_cast<std::ptrdiff_t>(frame.ParameterNames().size());
  std::vector<OrvRegrParameter> parameters(all.begin(), all.begin() + perEquation);
  const std::vector<int>& variables = frame.Specs().RecordVariables();
  const auto toVariable = [&](int column) { return variables[static_cast<std::size_t>(column)]; };
  for (OrvRegrParameter& parameter : parameters) {
    std::transform(parameter.factors.begin(), parameter.factors.end(), parameter.factors.begin(), toVariable);
    std::transform(parameter.covariates.begin(), parameter.covariates.end(), parameter.covariates.begin(),
                   toVariable);
  }
  return parameters;
}

MCCommonMath::MCBitSet NonRedundant(const std::vector<bool>& redundant) {
  MCCommonMath::MCBitSet bits(static_cast<int>(redundant.size()));
  for (std::size_t i = 0; i < redundant.size(); ++i)
    bits.Set(static_cast<int>(i), !redundant[i]);
  return bits;
}

std::vector<std::vector<double>> CategoryCounts(const OrvFactorCounts& counts) {
  std::vector<std::vector<double>> all;
  for (int factor = 0; factor < counts.FactorCount(); ++factor)
    all.push_back(counts.FactorCounts(factor));
  return all;
}

OrvPMMLMetadata MakeMetadata(const TavoOutputFrame& frame) {
  const host::AppParams program = host::CurrentSession().GetAppParams();
  OrvPMMLMetadata metadata;
  metadata.applicationName = program.name;
  metadata.applicationVersion = program.version;
  metadata.copyright = program.copyright;
  metadata.isUTF8 = true;  // as all text of the host
  MetadataBuilder(frame, metadata).AddAll();
  return metadata;
}

/// What the exporter takes, with the lists that the model itself doesn't have in this form.
class ModelDocument {
 public:
  explicit ModelDocument(const TavoOutputFrame& frame)
      : fFrame(frame),
        fMetadata(MakeMetadata(frame)),
        fParameters(TargetParameters(frame)),
        fNonRedundant(NonRedundant(frame.Stats()->RedundancyBits())),
        fCancel(frame.StopProcessor()) {
    const TavoValidSpecs& specs = frame.Specs();
    const TavoOutputStats& stats = *frame.Stats();
    fModel.factors = &specs.Factors();
    fModel.covariates = &specs.Covariates();
    fModel.dependent = specs.DependentVariable();
    fModel.subpopulation = specs.DomainVariable();
    fModel.parameterCount = static_cast<int>(stats.Parameters().size());
    fModel.targetParameters = &fParameters;
    fModel.estimates = &stats.Estimates();
    fModel.nonRedundant = &fNonRedundant;
    fModel.effects = &specs.Effects();
    // Scoring programs take it for the t quantile of confidence intervals, so it is the design's.
    fModel.degreesOfFreedom = stats.DegreesOfFreedom();
  }

  OrvStatus Write(std::ostream& out, bool withCovariance) const {
    const TavoOutputStats& stats = *fFrame.Stats();
    OrvPMMLExporter exporter(fMetadata, fModel, fCancel);
    exporter.SetTargets(stats.DependentCategories(), stats.ReferenceCategory());
    exporter.CheckConsistency();
    return exporter.Write(out, CategoryCounts(stats.FactorCounts()),
                          withCovariance ? stats.Covariance() : nullptr);
  }

 private:
  const TavoOutputFrame& fFrame;
  OrvPMMLMetadata fMetadata;
  std::vector<OrvRegrParameter> fParameters;
  MCCommonMath::MCBitSet fNonRedundant;
  OrvCancelInfo fCancel;
  OrvPMMLModel fModel;
};

/// `error`: the host's, empty when the document itself couldn't be made.
void ReportFailure(const OrvStatus& status, const std::string& error) {
  if (!status.IsError()) {
    host::BpComposite message("Model file could not be saved ^1...");
    message.Add(host::Plain(error));
    host::BpError(message, host::BpErrorLevel::kError);
  } else if (status.Code() != StatusCode::kCancelled) {
    host::BpComposite message("Model can not be exported, status ^1...");
    message.Add(host::Plain(std::to_string(status.Code())));
    host::BpError(message, host::BpErrorLevel::kError);
  }
}

}  // namespace

void SaveModelFile(const TavoOutputFrame& frame) {
  const TavoValidSpecs& specs = frame.Specs();
  const bool isModel = !specs.ModelFileName().empty();
  const std::string& name = isModel ? specs.ModelFileName() : specs.ParameterFileName();
  if (name.empty() || frame.ParameterNames().empty()) return;
  const ModelDocument document(frame);
  OrvStatus status;
  std::string error;
  const auto write = [&](std::ostream& out) {
    status = document.Write(out, isModel);
    return !status.IsError();
  };
  if (host::WriteTextFile(name, write, error)) {
    host::AddNotes(kSavedFiles, isModel ? "Model File" : "Parameter File", host::Plain(name));
  } else {
    ReportFailure(status, error);
  }
}

}  // namespace tavo
