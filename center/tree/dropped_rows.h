#pragma once

// Whole rows of one template behind the lines of another that is not open: what a drag of rows onto its node
// does. All columns come along; numbers that the other template has already become its next free ones, so
// that no pattern grows by another's lines. The version before is kept. Tells the user what came of it and
// writes the operation log. User-interface thread.

#include <string>

#include "center/editing/copied_block.h"
#include "center/frame/window_state.h"

namespace vicenter::center {

// True when the template has been written; the user has been asked before.
bool AppendRows(const CopiedBlock& rows, const std::string& templateId, const std::string& name,
                const WindowState& window);

}  // namespace vicenter::center
