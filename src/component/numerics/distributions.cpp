// The functions themselves are Boost.Math's. What is added are the answers out of range: its own are
// exceptions or values that differ from case to case, and a test that has no answer must show as missing.
#include "component/numerics/distributions.h"

#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <boost/math/policies/policy.hpp>
#include <cmath>
#include <exception>

#include "component/numerics/missing_value.h"

namespace MCCommonMath {

namespace {

namespace policies = boost::math::policies;

// Every error kind answers with a value (NaN, infinity, the best value so far) and not with an exception.
using QuietPolicy = policies::policy<
    policies::domain_error<policies::ignore_error>, policies::pole_error<policies::ignore_error>,
    policies::overflow_error<policies::ignore_error>, policies::underflow_error<policies::ignore_error>,
    policies::denorm_error<policies::ignore_error>, policies::rounding_error<policies::ignore_error>,
    policies::evaluation_error<policies::ignore_error>,
    policies::indeterminate_result_error<policies::ignore_error>>;

using StudentsT = boost::math::students_t_distribution<double, QuietPolicy>;
using ChiSquared = boost::math::chi_squared_distribution<double, QuietPolicy>;
using FisherF = boost::math::fisher_f_distribution<double, QuietPolicy>;

bool IsValue(double x) {
  return !IsMissing(x) && !std::isnan(x);
}
// Infinite degrees of freedom would ask for the limiting distribution, which no caller means.
bool IsDegrees(double df) {
  return df > 0.0 && std::isfinite(df);
}

// The value of `function()` when it is finite, else the missing value.
template <typename Function>
double FiniteOrMissing(Function function) {
  try {
    const double value = function();
    return std::isfinite(value) ? value : MCMV::gMissingValue;
  } catch (const std::exception&) {
    return MCMV::gMissingValue;
  }
}

}  // namespace

double MCDistFun::CdfT(double t, double df) {
  if (!IsValue(t) || !IsDegrees(df)) {
    return MCMV::gMissingValue;
  }
  if (std::isinf(t)) {
    return t > 0.0 ? 1.0 : 0.0;
  }
  return FiniteOrMissing([&] { return boost::math::cdf(StudentsT(df), t); });
}

double MCDistFun::IdfT(double p, double df) {
  if (!(p > 0.0 && p < 1.0) || !IsDegrees(df)) {
    return MCMV::gMissingValue;
  }
  return FiniteOrMissing([&] { return boost::math::quantile(StudentsT(df), p); });
}

double MCDistFun::CdfChi(double x, double df) {
  if (!(x >= 0.0) || !IsDegrees(df)) {
    return MCMV::gMissingValue;
  }
  if (std::isinf(x)) {
    return 1.0;
  }
  return FiniteOrMissing([&] { return boost::math::cdf(ChiSquared(df), x); });
}

double MCDistFun::UpperChi(double x, double df) {
  if (!(x >= 0.0) || !IsDegrees(df)) {
    return MCMV::gMissingValue;
  }
  if (std::isinf(x)) {
    return 0.0;
  }
  return FiniteOrMissing([&] { return boost::math::cdf(boost::math::complement(ChiSquared(df), x)); });
}

double MCDistFun::CdfF(double x, double df1, double df2) {
  if (!(x >= 0.0) || !IsDegrees(df1) || !IsDegrees(df2)) {
    return MCMV::gMissingValue;
  }
  if (std::isinf(x)) {
    return 1.0;
  }
  if (std::isinf(x * df1)) {  // finite, but out of range of the computation
    return MCMV::gMissingValue;
  }
  return FiniteOrMissing([&] { return boost::math::cdf(FisherF(df1, df2), x); });
}

double MCDistFun::UpperF(double x, double df1, double df2) {
  if (!(x >= 0.0) || !IsDegrees(df1) || !IsDegrees(df2)) {
    return MCMV::gMissingValue;
  }
  if (std::isinf(x)) {
    return 0.0;
  }
  if (std::isinf(x * df1)) {
    return MCMV::gMissingValue;
  }
  return FiniteOrMissing([&] { return boost::math::cdf(boost::math::complement(FisherF(df1, df2), x)); });
}

}  // namespace MCCommonMath
