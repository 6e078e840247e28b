#pragma once

// The item panel of column 11: txtItem, cmdItem, picItem and one labelled row per item class. Part of
// frmVICenter.
//
// It edits the active row's items text, one piece per item class of the row's account.

#include <string>
#include <vector>

#include "center/frame/window_state.h"

namespace vicenter::center {

// The pieces of an items text, as many as asked for.
std::vector<std::string> SplitItems(std::string_view text, std::size_t count);
// Joined by ","; the empty text when every piece is empty.
std::string JoinItems(const std::vector<std::string>& pieces);

class ItemPanel {
  public:
    explicit ItemPanel(WindowState& state) : state_(state) {}

    // The active cell or its row has changed.
    void Refresh();
    void Toggle();
    void CommitText(const std::string& typed);
    void CommitNumber(std::size_t row, const std::string& number);
    // Throws what the host's components throw.
    void LookUp(std::size_t row);
    const ItemPanelState& State() const { return panel_; }
    // Behind the numbers of the rows, one for each. The account set is asked.
    std::vector<std::string> Names() const;

  private:
    void ReadClasses(const std::string& accountNumber);
    void Write(const std::string& text);
    // Taken for a number that the row has now.
    TextVerdict Take(std::size_t row, const std::string& number);
    std::vector<std::string> Numbers() const;

    WindowState& state_;
    ItemPanelState panel_;
    std::string account_;  // whose classes the panel shows
};

}  // namespace vicenter::center
