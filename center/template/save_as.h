#pragma once

// The lines of a grid as a new template. Tells the user what came of it and writes the operation log. Needs
// no window; the right to change templates has been asked for by then. User-interface thread.

#include <string>

#include "center/grid/entry_grid.h"
#include "store/template_outcome.h"

namespace vicenter::center {

// Named so but for blanks around it. A name that the user has already, or that no template can bear, is
// refused. The lines have been validated.
store::TemplateOutcome SaveLinesAs(const EntryGrid& grid, int rowCount, const std::string& wished,
                                   const std::string& userId);

}  // namespace vicenter::center
