#pragma once

// Blocks of cells: copy, paste, fill, duplicate. Part of frmVICenter.
//
// Blocks travel as tab-separated text with CR LF between rows and the quoting of spreadsheets. A pasted cell
// passes the same rules as a typed one; what cannot be taken is kept out and reported, never altered. Every
// operation is one step of undo.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "center/frm_vi_center.h"
#include "center/window_state.h"

namespace vicenter::center {

using TextBlock = std::vector<std::vector<std::string>>;
// A cell with a tab, a line break or a quote at its head may stand in quotes, inner quotes doubled.
TextBlock ParseBlock(std::string_view text);
std::string FormatBlock(const TextBlock& block);

class BlockEditing {
  public:
    // edited: the grid's rows have changed by more than one cell.
    BlockEditing(WindowState& state, std::function<void()> edited);

    std::string Copy(const CellRange& range) const;
    PasteResult Paste(const CellAddress& at, const std::string& text);
    PasteResult FillSelection(const CellRange& range, const std::string& text);
    void FillDown(const CellRange& range);
    void DuplicateRow();

  private:
    class Entering;
    PasteResult Enter(const CellAddress& at, const std::vector<int>& columns, const TextBlock& block);

    WindowState& state_;
    std::function<void()> edited_;
};

}  // namespace vicenter::center
