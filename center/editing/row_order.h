#pragma once

// Lines stand without gaps, and blank rows follow them: what typing, pasting and filling have in common.

#include "center/frame/window_state.h"

namespace vicenter::center {

// A line in that row would leave a gap; the user has been told.
bool LeavesGap(const WindowState& state, int row);
void TellGap();
// So many blank rows at the least stay below those in use.
void KeepBlankRows(WindowState& state, int count);

}  // namespace vicenter::center
