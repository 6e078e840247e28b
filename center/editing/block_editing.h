#pragma once

// Blocks of cells: copy, paste, fill, duplicate. Part of frmVICenter.
//
// Blocks travel as tab-separated text with CR LF between rows and the quoting of spreadsheets. A pasted cell
// passes the same rules as a typed one; what a column refuses stays in the cell, red, and is reported. Every
// operation is one step of undo and touches what is selected, nothing else.

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "center/editing/copied_block.h"
#include "center/frame/window_state.h"
#include "center/grid/cell_selection.h"

namespace vicenter::center {

using TextBlock = std::vector<std::vector<std::string>>;
// A cell with a tab, a line break or a quote at its head may stand in quotes, inner quotes doubled.
TextBlock ParseBlock(std::string_view text);
std::string FormatBlock(const TextBlock& block);

// The whole rows that a copy took along, every text of theirs and behind them a verdict for each. Nothing for
// a text, and for rows of another account set: their ids mean others in the one of that property string.
std::optional<TextBlock> WholeRows(const CopiedBlock& block, const std::string& propsString);

class BlockEditing {
  public:
    // edited: the grid's rows have changed by more than one cell.
    BlockEditing(WindowState& state, std::function<void()> edited);

    // Nothing, and the user has been told, for cells that are no table. Whole rows bring all their columns.
    std::optional<CopiedBlock> Copy(const CellSelection& selection) const;
    // One value goes into every selected cell; a block goes to the selection's first cell and on over the
    // shown columns, or by the headers in its first row. Rows that were copied as whole rows come back as
    // they were.
    PasteResult Paste(const CellSelection& selection, const CopiedBlock& block);
    PasteResult FillSelection(const CellSelection& selection, const std::string& text);
    void FillDown(const CellSelection& selection);
    void DuplicateRows(const CellSelection& selection);

  private:
    class Entering;
    PasteResult PasteTable(const CellAddress& at, TextBlock block);
    PasteResult PasteRows(int firstRow, const TextBlock& rows);

    WindowState& state_;
    std::function<void()> edited_;
};

}  // namespace vicenter::center
