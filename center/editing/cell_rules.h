#pragma once

// What a cell takes and how it is shown, the store says of the column. center/ speaks of it by these names.

#include "store/cell_rules.h"
#include "store/number_text.h"

namespace vicenter::center {

using store::AcceptsCharacter;
using store::AcceptsProgramText;
using store::CheckTypedText;
using store::DisplayText;
using store::IsPlainNumber;
using store::kLongestKeptText;
using store::ReadCellText;
using store::TextOrigin;
using store::TextReading;
using store::TextVerdict;
using store::VerdictText;

}  // namespace vicenter::center
