// Variables of the dictionary as a model document describes them.
#pragma once

#include <string>
#include <vector>

#include "host/data.h"
#include "module/saved/pmml_metadata.h"

namespace tavo {

/// A value as a scoring program must find it in its data: by the print format, without the blanks around a
/// number or behind a string. A number that its format rounds, so that the text reads as another number, is
/// written with all its digits, and a string that its format cuts is written whole; otherwise different
/// values could look the same.
std::string ScoringText(const host::OBS* cells, const host::VORN_Variable& variable);

/// Name, label, type and level, without values.
OrvPMMLVariable DescribeVariable(const host::VORN_Variable& variable, int index, bool isContinuous);
void AddCategoryTo(OrvPMMLVariable& description, const host::VORN_Variable& variable, const host::OBS* cells);
/// What the dictionary declares missing.
void AddMissingTo(OrvPMMLVariable& description, const host::VORN_Variable& variable);

}  // namespace tavo
