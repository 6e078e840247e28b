#pragma once

// What can be done with a pattern, which is all lines of one template number.

namespace vicenter::center {

enum class PatternCommand {
    Copy,    // the cursor's, under the number behind the largest
    MoveUp,  // the cursor's changes places and numbers with the one before it
    MoveDown,
    Renumber,  // all from 1 on without gaps, in their order
    Sort,      // lines by number, within a number as they stand
};

}  // namespace vicenter::center
