// Scores data with a GeneralRegressionModel, from nothing but the document, as the PMML 4.3 standard tells.
//
// For each target category the linear predictor is the sum over its PCells of beta times the product over the
// PPCells of that parameter: a factor's cell is 1 when the value of the case equals the cell's and 0
// otherwise, a covariate's cell is its value raised to the cell's power, and a parameter without cells is the
// intercept. The reference category has predictor 0, and probabilities are the exponentials divided by their
// sum (model type multinomialLogistic). Values of a field with data type double are compared as numbers.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "xml_document.h"

namespace test_support {

class PmmlScorer {
 public:
  using Value = std::variant<double, std::string>;
  using Row = std::map<std::string, Value>;

  explicit PmmlScorer(const XmlNode& document) {
    for (const XmlNode* field : document.Child("DataDictionary")->Children("DataField"))
      fIsNumber[field->At("name")] = field->At("dataType") == "double";
    const XmlNode& model = *document.Child("GeneralRegressionModel");
    fReference = model.At("targetReferenceCategory");
    if (const XmlNode* factors = model.Child("FactorList")) {
      for (const XmlNode* predictor : factors->Children("Predictor"))
        fFactors.insert(predictor->At("name"));
    }
    for (const XmlNode* cell : model.Child("PPMatrix")->Children("PPCell")) {
      fCells[cell->At("parameterName")].push_back({cell->At("predictorName"), cell->At("value")});
    }
    for (const XmlNode* cell : model.Child("ParamMatrix")->Children("PCell")) {
      fBetas[cell->At("targetCategory")].push_back({cell->At("parameterName"), NumberOf(cell->At("beta"))});
    }
  }

  /// By target category, as the document writes it.
  std::map<std::string, double> Probabilities(const Row& row) const {
    std::map<std::string, double> predictors = {{fReference, 0.0}};
    for (const auto& [target, betas] : fBetas) {
      double sum = 0;
      for (const auto& [parameter, beta] : betas)
        sum += beta * ParameterValue(parameter, row);
      predictors[target] = sum;
    }
    double largest = 0;
    for (const auto& [target, predictor] : predictors)
      largest = std::max(largest, predictor);
    double total = 0;
    for (auto& [target, predictor] : predictors)
      total += predictor = std::exp(predictor - largest);
    for (auto& [target, predictor] : predictors)
      predictor /= total;
    return predictors;
  }

 private:
  struct Cell {
    std::string predictor;
    std::string value;
  };

  static double NumberOf(const std::string& text) { return std::strtod(text.c_str(), nullptr); }

  double ParameterValue(const std::string& parameter, const Row& row) const {
    double product = 1;
    const auto cells = fCells.find(parameter);
    if (cells == fCells.end()) return product;
    for (const Cell& cell : cells->second) {
      const Value& value = row.at(cell.predictor);
      product *= fFactors.count(cell.predictor) > 0 ? (IsSame(cell, value) ? 1.0 : 0.0)
                                                    : std::pow(std::get<double>(value), NumberOf(cell.value));
    }
    return product;
  }

  bool IsSame(const Cell& cell, const Value& value) const {
    if (fIsNumber.at(cell.predictor)) return std::get<double>(value) == NumberOf(cell.value);
    return std::get<std::string>(value) == cell.value;
  }

  std::map<std::string, bool> fIsNumber;
  std::set<std::string> fFactors;
  std::string fReference;
  std::map<std::string, std::vector<Cell>> fCells;                            // by parameter
  std::map<std::string, std::vector<std::pair<std::string, double>>> fBetas;  // by target category
};

}  // namespace test_support
