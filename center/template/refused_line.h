#pragma once

// The line that keeps a template from being saved: its row is coloured until it is mended. The colour goes
// along when rows come and go above it, and with the line when it is deleted. Part of frmVICenter.

#include "center/frame/window_state.h"

namespace vicenter::center {

class RefusedLine {
  public:
    explicit RefusedLine(WindowState& state) : state_(state) {}

    void Mark(int row);
    void RowsInserted(int firstRow, int count);
    void RowsRemoved(int firstRow, int count);
    void TextsChanged();
    void WasReset() { row_ = 0; }

  private:
    bool IsColoured(int row) const;

    WindowState& state_;
    int row_ = 0;  // 0: none
};

}  // namespace vicenter::center
