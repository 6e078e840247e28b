#pragma once

// The user's lines across a reload: taken before it, one step of undo away after it.
//
// A reload shows what the account set holds; what the user had typed is not to be lost to it. Part of
// frmVICenter.

#include <array>
#include <string>
#include <vector>

#include "center/frame/window_state.h"

namespace vicenter::center {

// A row as the user left it: texts that their columns refused stay beside what was said of them.
struct KeptLine {
    std::array<std::string, kColumnCount> texts;
    std::array<TextVerdict, kColumnCount> refusals{};
    friend bool operator==(const KeptLine&, const KeptLine&) = default;
};
std::vector<KeptLine> LinesOfRows(const EntryGrid& grid, int rowCount);

class KeptLines {
  public:
    explicit KeptLines(WindowState& state) : state_(state) {}

    // The rows in use, before the reload.
    void Take();
    // Rows from elsewhere, in their place.
    void Take(std::vector<KeptLine> lines);
    // After it: undoing brings the rows back. False when the grid shows them as they were anyway.
    bool OfferUndo(const std::string& notice);
    // Puts the rows into the grid at once, without a step of undo: where nothing could be reloaded.
    void PutBack();
    // Puts them there as typed work: undoing shows what was there before.
    void PutAsTyped();

    // Offered and neither taken back nor typed over since.
    bool IsPending() const { return pending_; }
    const std::vector<KeptLine>& Lines() const { return lines_; }
    // The grid has been changed: whatever happens from here on is the user's.
    void Touched();

  private:
    const KeptLine& LineOrBlank(int row) const;

    WindowState& state_;
    std::vector<KeptLine> lines_;
    bool pending_ = false;
};

}  // namespace vicenter::center
