// The rows of LMATRIX and KMATRIX.
#pragma once

#include <vector>

#include "component/input/custom_test.h"
#include "module/command/parse_context.h"

namespace tavo {

/// Adds the rows of an L matrix to the test. Effects are those of the validated specs, which must be
/// complete. False after a message.
bool ReadLMatrix(ParseContext& context, const std::vector<host::TokenInfoObj>& tokens, OrvCustomTest& test);

/// Sets K, one number per row: as many as the test has rows of L, or without rows the one value that the
/// intercept is tested against. False after a message at a token or, where the whole matrix is at fault, at
/// its keyword.
bool ReadKMatrix(ParseContext& context, const host::ParamObj& matrix, OrvCustomTest& test);

}  // namespace tavo
