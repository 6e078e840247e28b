#pragma once

// The user's lines across a reload: taken before it, one step of undo away after it.
//
// A reload shows what the account set holds; what the user had typed is not to be lost to it. Part of
// frmVICenter.

#include <array>
#include <string>
#include <vector>

#include "center/window_state.h"

namespace vicenter::center {

using LineTexts = std::array<std::string, kColumnCount>;
std::vector<LineTexts> TextsOfRows(const EntryGrid& grid, int rowCount);

class KeptLines {
  public:
    explicit KeptLines(WindowState& state) : state_(state) {}

    // The rows in use, before the reload.
    void Take();
    // After it: undoing brings the rows back. False when the grid shows them as they were anyway.
    bool OfferUndo(const std::string& notice);
    // Puts the rows into the grid at once, as typed work: where nothing could be reloaded.
    void PutBack();

    // Offered and neither taken back nor typed over since.
    bool IsPending() const { return pending_; }
    const std::vector<LineTexts>& Lines() const { return lines_; }
    // The grid has been changed: whatever happens from here on is the user's.
    void Touched();

  private:
    WindowState& state_;
    std::vector<LineTexts> lines_;
    bool pending_ = false;
};

}  // namespace vicenter::center
