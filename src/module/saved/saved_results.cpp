#include "module/saved/saved_results.h"

#include "module/saved/matrix_file.h"
#include "module/saved/model_file.h"
#include "module/saved/predicted_pass.h"

namespace tavo {

namespace {

constexpr int kSavedFiles = 2;  // the group of notes

/// Covariances win when both files are named.
void SaveMatrix(const TavoOutputFrame& frame) {
  const TavoValidSpecs& specs = frame.Specs();
  if (frame.ParameterNames().empty() || frame.Stats()->Covariance() == nullptr) return;
  const bool isCovariance = specs.CovarianceFile().IsInit();
  if (!isCovariance && !specs.CorrelationFile().IsInit()) return;
  const host::UserCaseFileSpec& file = isCovariance ? specs.CovarianceFile() : specs.CorrelationFile();
  const char* label = isCovariance ? "Parameter Covariance Matrix File" : "Parameter Correlation Matrix File";
  if (WriteMatrixFile(file, isCovariance ? MatrixKind::kCovariances : MatrixKind::kCorrelations, frame)) {
    host::AddNotes(kSavedFiles, label, host::Plain(file.DocumentationString()));
  }
}

}  // namespace

void SaveResults(const TavoOutputFrame& frame, TavoComponent& component, OrvRegInputAdapter& adapter,
                 host::ProcedureDataSource& source) {
  if (frame.Stats() == nullptr) return;
  const TavoValidSpecs& specs = frame.Specs();
  // First, and the matrix and model files afterwards: a failure of one takes nothing from the others.
  if (!specs.PredictedValueName().empty() || !specs.PredictedProbabilityRoot().empty()) {
    if (!SavePredictions(specs, component, adapter, source)) {
      host::BpError(host::Key("Predictions could not be written into the data..."),
                    host::BpErrorLevel::kError);
    }
  }
  SaveMatrix(frame);
  SaveModelFile(frame);
}

}  // namespace tavo
