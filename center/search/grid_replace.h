#pragma once

// Texts of the open template's cells found and replaced: how many cells hold the text, from one to the next,
// one or all of them. Whatever is put in goes the way of what is pasted: read by its column's rules, resolved
// and checked; a cell whose column does not take the new text keeps the one that it has. All of them are one
// step of undo. Part of frmVICenter; user-interface thread.

#include <functional>
#include <string>
#include <vector>

#include "center/frame/window_state.h"

namespace vicenter::center {

struct GridReplaceWish {
    int column = 0;  // 0: every shown column
    std::string text;
    std::string with;
    bool whole = false;  // the text is all that the cell holds
};

class GridReplace {
  public:
    // goTo: takes the cursor to a cell.
    GridReplace(WindowState& state, std::function<void(const CellAddress&)> goTo)
        : state_(state), goTo_(std::move(goTo)) {}

    // The columns that can be chosen: shown, and not locked.
    std::vector<int> Columns() const;
    void Wish(const GridReplaceWish& wish) { wish_ = wish; }
    // "共 N 处", the empty text while there is nothing to look for.
    std::string Note() const;
    int Count() const { return static_cast<int>(Hits().size()); }

    // To the next cell behind the cursor that holds the text, round the end.
    void Next();
    // The cell under the cursor when it holds the text; then on to the next.
    void ReplaceOne();
    void ReplaceAll();

  private:
    bool Holds(const CellAddress& cell) const;
    std::vector<CellAddress> Hits() const;
    // How many were replaced; the others are told of.
    int Replace(const std::vector<CellAddress>& cells);
    std::string Replaced(std::string_view text) const;

    WindowState& state_;
    std::function<void(const CellAddress&)> goTo_;
    GridReplaceWish wish_;
};

}  // namespace vicenter::center
