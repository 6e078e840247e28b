#pragma once

// The grid's side of the main window: serves its view by the parts behind it. Part of frmVICenter.

#include <functional>

#include "center/editing/grid_actions.h"

namespace vicenter::center {

struct WindowParts;

class GridFacet final : public GridActions {
  public:
    explicit GridFacet(WindowParts& parts) : parts_(parts) {}

    using GridActions::MoveActiveCell;
    void GotFocus() override;
    void LostFocus() override;
    void MoveActiveCell(const CellAddress& to, CursorMove how) override;
    void SelectionChanged(const CellSelection& selection) override;
    int RowsInUse() const override;
    bool KeyPress(char32_t character) override;
    bool KeyDown(int keyCode, const std::string& cellText) override;
    TextVerdict CommitText(const CellAddress& cell, const std::string& text) override;
    void OpenLookUp() override;
    std::string DescribeFault(const CellAddress& cell) override;
    int ProposedRow() override;
    std::string ProposedText(const CellAddress& cell) override;
    bool TakeProposal(const CellAddress& cell) override;
    void TakePassed(const CellAddress& from) override;
    std::optional<CellAddress> StopInRow(int row) override;
    std::optional<CellAddress> TakeRow() override;
    bool RefuseProposals() override;
    bool IsOn(EntryAid aid) override;
    void SetOn(EntryAid aid, bool on) override;
    bool IsPassedBy(const CellAddress& cell) override;
    bool IsHint(const CellAddress& cell) override;
    std::string DescribeHint(const CellAddress& cell) override;
    std::string NamesOf(const CellAddress& cell) override;
    void SetColumnOrder(const ColumnOrder& order) override;
    int FrozenPlaces() override;
    void SetFrozenPlaces(int places) override;
    void EditPatterns(PatternCommand command) override;
    void ClearCells(const CellSelection& selection) override;
    std::optional<CopiedBlock> CopyBlock(const CellSelection& selection) override;
    PasteResult PasteBlock(const CellSelection& selection, const CopiedBlock& block) override;
    void FillDown(const CellSelection& selection) override;
    void DuplicateRows(const CellSelection& selection) override;
    void InsertRows(const CellSelection& selection) override;
    void DeleteRows(const CellSelection& selection) override;
    bool ShowsTotals() const override;
    void SetShowsTotals(bool shows) override;
    std::optional<NumberTotals> TotalsEndingAt(int row) override;
    void ShowVoucher(int row) override;
    bool CanUndo() const override;
    bool CanRedo() const override;
    void Undo() override;
    void Redo() override;

  private:
    // Undo or redo, and what it leaves behind below the lines.
    void Return(const std::function<void()>& step);

    WindowParts& parts_;
};

}  // namespace vicenter::center
