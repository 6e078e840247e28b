#pragma once

// What the grid's view asks of the rules behind it. Rows and columns count from 1. No error of the component
// comes out of any of these: it has been told to the user. User-interface thread only.

#include <optional>
#include <string>

#include "center/editing/cell_rules.h"
#include "center/editing/copied_block.h"
#include "center/editing/pattern_command.h"
#include "center/grid/cell_selection.h"
#include "center/grid/number_bands.h"

namespace vicenter::center {

// Helps that every user may do without; remembered for him.
enum class EntryAid {
    Proposals,  // of the next row
    PassingBy,  // cells that the account has no use for
};

class GridActions {
  public:
    virtual ~GridActions() = default;

    virtual void GotFocus() = 0;
    virtual void LostFocus() = 0;
    // The cursor goes to a cell; the cell it leaves is resolved, and the grid's active cell ends up there or
    // on the first blank row. A selection that is being built may pass every row.
    virtual void MoveActiveCell(const CellAddress& to, CursorMove how) = 0;
    void MoveActiveCell(const CellAddress& to) { MoveActiveCell(to, CursorMove::Going); }
    virtual void SelectionChanged(const CellSelection& selection) = 0;
    virtual int RowsInUse() const = 0;

    // False when the character is refused in that column.
    virtual bool KeyPress(char32_t character) = 0;
    // True when the key has been used up. cellText is what the cell's editor holds now.
    virtual bool KeyDown(int keyCode, const std::string& cellText) = 0;
    // The user's text for a cell; a refused one stays there, red, beside its reason.
    virtual TextVerdict CommitText(const CellAddress& cell, const std::string& text) = 0;
    virtual void OpenLookUp() = 0;  // Insert, F7 or a click on the cell's button
    // Why the cell is red and what is expected; the empty text for a sound cell.
    virtual std::string DescribeFault(const CellAddress& cell) = 0;

    // --- what the lines imply of the next one
    // The row that has proposals, 0 for none.
    virtual int ProposedRow() { return 0; }
    // Empty where nothing is proposed.
    virtual std::string ProposedText(const CellAddress& /*cell*/) { return {}; }
    // The proposal becomes the cell's text; false where there is none.
    virtual bool TakeProposal(const CellAddress& /*cell*/) { return false; }
    // The cursor goes on from that cell by Tab or Enter: what stands proposed before the account is taken
    // when the user has come past it by a key.
    virtual void TakePassed(const CellAddress& /*from*/) {}
    // The cursor is about to leave that row by its end: the cell that it has to see first.
    virtual std::optional<CellAddress> StopInRow(int /*row*/) { return std::nullopt; }
    // Ctrl and Enter in the line that is being entered: without an account, all that is proposed before it is
    // taken, with one, all that is proposed of the line. The cell where the user goes on; nothing where the
    // next one of the row is as good.
    virtual std::optional<CellAddress> TakeRow() { return std::nullopt; }
    virtual bool RefuseProposals() { return false; }
    virtual bool IsOn(EntryAid /*aid*/) { return false; }
    virtual void SetOn(EntryAid /*aid*/, bool /*on*/) {}

    // The cursor may pass that cell by on its way through the row.
    virtual bool IsPassedBy(const CellAddress& /*cell*/) { return false; }

    // --- what should be looked at, and what codes stand for
    virtual bool IsHint(const CellAddress& /*cell*/) { return false; }
    virtual std::string DescribeHint(const CellAddress& /*cell*/) { return {}; }
    // The names behind the codes of a cell; empty for cells without codes.
    virtual std::string NamesOf(const CellAddress& /*cell*/) { return {}; }

    // The user wants the columns in that order, and the next time again.
    virtual void SetColumnOrder(const ColumnOrder& /*order*/) {}
    // How many of the first places stay in sight; remembered too.
    virtual int FrozenPlaces() { return 0; }
    virtual void SetFrozenPlaces(int /*places*/) {}
    virtual void EditPatterns(PatternCommand /*command*/) {}

    virtual void ClearCells(const CellSelection& selection) = 0;
    // Nothing, and the user has been told, when the selection cannot be copied.
    virtual std::optional<CopiedBlock> CopyBlock(const CellSelection& selection) = 0;
    // One value into every selected cell, or a block from the selection's first cell on. What was refused has
    // been told.
    virtual PasteResult PasteBlock(const CellSelection& selection, const CopiedBlock& block) = 0;
    virtual void FillDown(const CellSelection& selection) = 0;
    virtual void DuplicateRows(const CellSelection& selection) = 0;
    virtual void InsertRows(const CellSelection& selection) = 0;
    virtual void DeleteRows(const CellSelection& selection) = 0;

    // The sums of every template number at its last row, when the user has asked for them.
    virtual bool ShowsTotals() const { return false; }
    virtual void SetShowsTotals(bool /*shows*/) {}
    // Of the number whose last row this is; nothing while they are not shown, and at every other row.
    virtual std::optional<NumberTotals> TotalsEndingAt(int /*row*/) { return std::nullopt; }

    // The voucher that the pattern of a row would make.
    virtual void ShowVoucher(int /*row*/) {}

    virtual bool CanUndo() const = 0;
    virtual bool CanRedo() const = 0;
    virtual void Undo() = 0;
    virtual void Redo() = 0;
};

}  // namespace vicenter::center
