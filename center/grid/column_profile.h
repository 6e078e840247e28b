#pragma once

// The user's column profile and the grid's look. Part of frmVICenter.
//
// The profile is 21 pieces "column|hidden|twips" joined by ","; position decides, the leading number is not
// read.

#include <string>

#include "center/frame/window_state.h"

namespace vicenter::center {

// Widths and hidden flags of the built-in layout.
void ApplyBuiltInLayout(EntryGrid& grid);
// An empty text stands for the built-in layout; malformed pieces leave their columns as they are.
void ApplyProfile(EntryGrid& grid, const std::string& profile);
std::string ProfileOf(const EntryGrid& grid);

// The order of the columns, which the profile does not know: their numbers joined by ",", empty for the
// designed order.
std::string ColumnOrderText(const EntryGrid& grid);
// What names not every column once leaves the designed order.
void ApplyColumnOrder(EntryGrid& grid, const std::string& order);

class ColumnProfile {
  public:
    explicit ColumnProfile(WindowState& state) : state_(state) {}

    void Apply();  // reads the user's profile, seeding it on first use
    // False, and nothing is written, when the profile could not be read: what nobody has seen is not
    // replaced.
    bool Save();
    // The user's bill font, from 9 points on.
    void ApplyBillFont();

  private:
    WindowState& state_;
    bool unreadable_ = false;
};

}  // namespace vicenter::center
