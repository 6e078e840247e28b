#pragma once

// Whole patterns: all lines of one template number. Each command is one step of undo; the cursor stays on its
// line. Part of frmVICenter.

#include <functional>
#include <vector>

#include "center/editing/pattern_command.h"
#include "center/frame/window_state.h"

namespace vicenter::center {

class PatternEditing {
  public:
    // edited: rows have come, gone or moved.
    PatternEditing(WindowState& state, std::function<void()> edited)
        : state_(state), edited_(std::move(edited)) {}

    void Run(PatternCommand command);

  private:
    struct Line;
    std::vector<Line> Lines() const;
    void Copy();
    void Move(bool up);
    void Renumber();
    void Sort();
    void PutInOrder(const std::vector<Line>& lines);
    void CursorTo(int row, int gridColumn);

    WindowState& state_;
    std::function<void()> edited_;
};

}  // namespace vicenter::center
