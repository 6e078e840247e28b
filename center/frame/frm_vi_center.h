#pragma once

// frmVICenter: the rules of the main window.
//
// One object per window. It owns the grid and the state that its parts share (WindowState); each part holds
// one concern: commands, tree, column profile, editing, look-ups, save. The window forwards its events to the
// members below, which convert every error at this edge, and shows what arrives through VICenterView. The
// view outlives the presenter. User-interface thread.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "center/editing/cell_rules.h"
#include "center/frame/template_commands.h"
#include "center/frame/vicenter_view.h"
#include "center/grid/cell_selection.h"
#include "center/grid/entry_grid.h"

namespace vicenter::center {

// Key codes as the component's key tables know them; windows translate theirs.
namespace key_code {
inline constexpr int kBack = 8;
inline constexpr int kLeft = 37;
inline constexpr int kRight = 39;
inline constexpr int kInsert = 45;
inline constexpr int kKeypadDecimal = 110;
inline constexpr int kF1 = 112;
inline constexpr int kF7 = 118;
}  // namespace key_code

// Texts that a block operation could not take, by row and column of the grid.
struct RefusedCell {
    CellAddress cell;
    std::string text;
    std::string reason;
    bool kept = false;  // stands in its cell, red; else the cell has what it had
};

// What a copy puts on the clipboard: a text for every program and, of whole rows, all that belongs to them
// for ourselves.
struct CopiedBlock {
    CopiedBlock(std::string theText = {}, std::string theRows = {})  // NOLINT(google-explicit-constructor)
        : text(std::move(theText)), rows(std::move(theRows)) {}
    CopiedBlock(const char* theText) : text(theText) {}  // NOLINT(google-explicit-constructor)

    std::string text;  // tab-separated, CR LF behind every row unless it is one cell alone
    std::string rows;
};

struct PasteResult {
    int rows = 0;   // rows that took something
    int cells = 0;  // cells that were taken
    std::vector<RefusedCell> refused;
};

class frmVICenter final : public TemplateWindow {
  public:
    // commands may be none: the four commands then do nothing. Not owned, like the view.
    frmVICenter(VICenterView& view, TemplateCommands* commands);
    ~frmVICenter() override;

    // --- window system
    void Load();
    // The window is on the screen: what the user has to be told of its opening.
    void Shown();
    // Nothing has been typed for a moment: what is not saved is kept in a draft.
    void UserRests();
    void Activate();
    void Unload();
    // The user does nothing for a while: what was saved is brought into the account set's own file.
    void Rest();
    // Keys before the controls; true when the key is swallowed (F1).
    bool KeyPreview(int keyCode);
    // A tool of the bar by its key, compared without case.
    void ToolClick(std::string_view key);
    // A workbook file dropped on the window: the import command on it.
    void FileDropped(const std::string& fileName);

    // --- tree
    void TreeGotFocus();
    void TreeLostFocus();
    void TreeNodeClick(const std::string& key);
    void TreeDoubleClick();
    bool TreeBeforeLabelEdit();                           // false cancels the edit
    bool TreeAfterLabelEdit(const std::string& newText);  // false puts the old label back
    bool TreeEditsLabels() const;                         // label editing is automatic
    bool OffersAccountSetCare() const;                    // the account set is a file
    void BackUpAccountSet();
    void VerifyAccountSet();
    const std::string& SelectedNode() const;  // key
    const std::vector<TreeNode>& Nodes() const;

    // --- grid: the cursor, keys and edits of the user
    void GridGotFocus();
    void GridLostFocus();
    // The cursor moves to that cell; the cell it leaves is resolved, and the grid's active cell ends up there
    // or on the first blank row. A selection that is being built may pass every row.
    void MoveActiveCell(const CellAddress& to, CursorMove how = CursorMove::Going);
    // False when the character is refused in that column.
    bool GridKeyPress(char32_t character);
    // True when the key has been used up. cellText is what the cell's editor holds now.
    bool GridKeyDown(int keyCode, const std::string& cellText);
    // The user's text for a cell; a refused one stays there, red, beside its reason.
    TextVerdict CommitText(const CellAddress& cell, const std::string& text);
    void ClearCells(const CellSelection& selection);
    void OpenLookUp();  // Insert, F7 or a click on the cell's button
    // Why the cell is red and what is expected; the empty text for a sound cell.
    std::string DescribeFault(const CellAddress& cell);
    void SelectionChanged(const CellSelection& selection);

    // --- grid: blocks and undo
    // Nothing, and the user has been told, when the selection cannot be copied.
    std::optional<CopiedBlock> CopyBlock(const CellSelection& selection) const;
    // One value into every selected cell, or a block from the selection's first cell on.
    PasteResult PasteBlock(const CellSelection& selection, const CopiedBlock& block);
    void FillDown(const CellSelection& selection);
    void DuplicateRows(const CellSelection& selection);
    void InsertRows(const CellSelection& selection);
    void DeleteRows(const CellSelection& selection);
    bool CanUndo() const;
    bool CanRedo() const;
    void Undo();
    void Redo();

    // --- item panel
    void ToggleItemPanel();                        // cmdItem
    void CommitItemText(const std::string& text);  // txtItem
    void CommitItemNumber(std::size_t row, const std::string& number);
    void LookUpItem(std::size_t row);

    // --- typing name list
    void PrepareNameLists();                         // for the window's idle moments
    void NameListKey(const std::string& typedText);  // the editor's text changed
    void NameListSelect(int index);
    void NameListMove(int steps);
    bool NameListTake();  // false when nothing can be taken; the list then closes
    void NameListClose();

    // --- what other folders use
    const std::string& TemplateId() const override;
    const std::string& TemplateName() const override;
    int RowCount() const override;
    EntryGrid& Grid() override;
    void ShowProgress(const ProgressState& state) override;
    bool ProgressCancelled() override;
    void RebuildTreeAndSelect(std::int32_t id) override;

    const std::shared_ptr<EntryGrid>& GridObject() const;  // vsEntrys
    std::int32_t CurrentEntryCount() const;
    bool IsDirty() const;
    bool HasRight() const;
    const ToolStates& EnabledTools() const;
    bool Save();
    bool ConfirmUnsavedChanges();

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace vicenter::center
