#pragma once

// What stands in an open editor of the grid and in no cell yet.

#include <string>

#include "center/grid/entry_grid.h"

namespace vicenter::center {

struct TypedText {
    CellAddress cell;
    std::string text;
    friend bool operator==(const TypedText&, const TypedText&) = default;
};

}  // namespace vicenter::center
