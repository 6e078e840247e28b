#pragma once

// The entry grid `vsEntrys` as a spreadsheet: a table view on the GridModel with a spreadsheet's keys.
//
// Typing starts editing (input methods, too), F2 edits, Enter and Tab take the text and move on, Escape gives
// it up, Delete clears cells and never a row. What the rules want to know goes to GridActions; where the
// cursor ends up is the grid's active cell, which the view follows. Shares nothing; model and actions outlive
// it. User-interface thread only.

#include <QHelpEvent>
#include <QMenu>
#include <QTableView>

#include "center/editing/grid_actions.h"
#include "center/lookups/name_list_actions.h"
#include "center/template/draft/typed_text.h"
#include "ui/grid/grid_header.h"
#include "ui/grid/grid_model.h"

namespace vicenter::ui {

class CellEditor;
class FrozenColumns;

class GridView : public QTableView {
    Q_OBJECT

  public:
    GridView(GridModel& model, center::GridActions& actions, center::NameListActions& names,
             QWidget* parent = nullptr);

    GridModel& Model() const { return model_; }
    bool IsInteractive() const { return model_.IsInteractive(); }
    void SetInteractive(bool interactive);
    // The grid or an editor in it has the keyboard.
    bool HasFocusWithin() const;
    bool IsEditing() const;
    // True while an editor is being made because the user typed over the cell.
    bool IsOpeningByTyping() const { return openingByTyping_; }

    // What an open editor holds and its cell does not.
    std::optional<center::TypedText> TextInEditor() const;
    // Takes the text of an open editor into its cell and closes the editor.
    void CommitOpenEditor();
    void FinishEditing(QWidget* editor);
    // Closes an open editor and leaves the cell as it is.
    void DropOpenEditor();
    // A key in an open editor; true when the editor must not see it.
    bool EditorKeyPressed(QWidget& editor, QKeyEvent& event);
    void EditorTextEdited(const QString& text);

    // Rows that were selected by their headers are whole rows; every other selection holds shown cells alone.
    center::CellSelection Selected() const;
    // The smallest block around the selection.
    center::CellRange SelectedBlock() const { return Selected().Bounds(); }
    // The rectangle of a cell in the coordinates of `ancestor`.
    QRect CellRectIn(const center::CellAddress& cell, const QWidget& ancestor) const;

    // The last column that is shown, as columns stand; -1 when none is. It fills the width that the others
    // leave.
    int LastShownColumn() const;
    std::optional<center::NumberTotals> TotalsEndingAt(int row) const;
    void ToggleTotals();
    void ShowVoucher();
    // Where a cell is seen, and which one is seen there: of columns that are kept in sight, over the others.
    QRect visualRect(const QModelIndex& index) const override;
    QModelIndex indexAt(const QPoint& point) const override;
    // The open editor of a cell that is kept in sight; empty without one.
    QRect FrozenEditorRect() const;
    // Of the columns that are selected.
    void ShowColumnMenu(const QPoint& globalAt);
    // The room that the first columns take while they are kept in sight; 0 while they are not.
    int FrozenWidth() const;
    // What of the other columns is below them as far as the grid has been scrolled.
    int CoveredWidth() const;
    void PaintFrozen(QPainter& painter, const QSize& size);
    // At a place of what PaintFrozen() has painted.
    void ShowFrozenToolTip(QHelpEvent& event);
    GridHeader& ColumnHeader() const { return *columnHeader_; }
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

    bool CopySelection();  // false when it cannot be copied
    // What a copy of the selection is for other windows and programs; the caller's. None when there is none.
    QMimeData* CopiedSelection();
    void CutSelection();
    void Paste();

  public slots:
    void setModel(QAbstractItemModel* model) override;
    void selectAll() override;

  signals:
    void textRefused(const QString& reason);
    void textTaken();  // typing goes on
    void editingChanged(bool editing);
    void rowsPulledOut();       // whole rows are dragged to somewhere else
    void itemPanelRequested();  // F4 on the items column
    void contentsMoved();  // scrolled, or columns and rows changed: whatever lies over a cell must follow

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
    void paintEvent(QPaintEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void resizeEvent(QResizeEvent* event) override;
    void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event = nullptr) const override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    bool focusNextPrevChild(bool next) override;

  private:
    QWidget* OpenEditor() const;
    void ApplyColors();
    void ApplyColumns(int firstColumn, int lastColumn);
    void FillWidth();
    void SectionResized(int section, int now);
    void RepaintBeyond(const QModelIndex& topLeft, const QModelIndex& bottomRight);
    void ApplyRowHeights();
    void ApplyFont();
    void FollowActiveCell();
    void ShowActiveSections();
    void Place(const QModelIndex& index);
    void MoveTo(int row, int column);
    void MoveOn(bool back);
    void GoOn();
    void MoveRows(int rows);
    bool HandleShortcut(const QKeyEvent& event);
    bool HandleCellKey(QKeyEvent& event);
    bool HandleTyping(QKeyEvent& event);
    bool HandleNameListKey(QWidget& editor, const QKeyEvent& event);
    bool HandleFieldKey(CellEditor& field, QKeyEvent& event);
    void ClearSelection();
    void DuplicateRows();
    void InsertRows();
    void DeleteRows();
    void FillDown();
    // True when the cursor stands below the first blank row, where nothing may be entered: the rules have
    // said so and have taken it there.
    bool StoodBelowRows();
    void KeepCursorShown();
    void TakeProposal();
    bool TakeProposedRow();
    bool RefuseProposals();
    void PaintProposals();
    void AddAid(QMenu& menu, const QString& text, center::EntryAid aid);
    void AddAids(QMenu& menu);
    void AddPatterns(QMenu& menu);
    void AddColumns(QMenu& columns);
    void ShowGridMenu(const QPoint& globalAt);
    void EditPatterns(center::PatternCommand command);
    bool HandleOwnShortcut(const QKeyEvent& event);
    int PlaceOf(int column) const;
    int ColumnAt(int place) const;
    void ApplyOrder();
    void HandInOrder();
    void MoveColumn(int step);
    void ResetOrder();
    void FitColumns();
    bool IsFrozen(int column) const;
    int FrozenPlaces() const;
    void Freeze(int places);
    void ResetWidths();
    void ShowFrozen();
    int ShownColumnNear(int column) const;
    void OpenLookUp();
    void SetDirection(const QString& text);
    int FirstVisibleColumn() const;
    int LastVisibleColumn() const;

    GridModel& model_;
    center::GridActions& actions_;
    center::NameListActions& names_;
    GridHeader* columnHeader_;
    GridHeader* rowHeader_;
    FrozenColumns* frozen_;
    bool following_ = false;        // the view follows the grid's active cell, not the other way round
    QPersistentModelIndex anchor_;  // from where Shift selects
    bool pulling_ = false;          // the mouse pulls a selection to where it is
    QPoint pulledTo_;
    bool applyingColumns_ = false;  // widths come from the grid, not from the user
    bool openingByTyping_ = false;
    bool placing_ = false;    // the cursor goes to one cell, whatever keys are held
    int proposedRow_ = 0;     // whose proposals are on the screen
    bool selecting_ = false;  // the cursor moves on the way of building a selection
};

}  // namespace vicenter::ui
