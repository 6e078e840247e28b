#pragma once

// The template that is open in a window: which one it is, how many of the grid's rows are its lines, what the
// account set held when they were read, and what has been typed upon them since.
//
// Records every change of the grid's content: it sets the dirty flag, keeps the number of rows in use and
// feeds the journal. Shares the grid with its window, which outlives it. User-interface thread only.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "center/editing/grid_journal.h"
#include "center/grid/entry_grid.h"
#include "center/template/line_loader.h"

namespace vicenter::center {

class OpenTemplate final : public GridRecorder {
  public:
    // Hears of a template, by its id, that it differs from what was read, and that it no longer does.
    using ModifiedListener = std::function<void(const std::string& id, bool modified)>;

    explicit OpenTemplate(EntryGrid& grid, ModifiedListener modified = {});
    OpenTemplate(const OpenTemplate&) = delete;
    OpenTemplate& operator=(const OpenTemplate&) = delete;
    ~OpenTemplate() override;

    bool IsOpen() const { return !id_.empty(); }
    const std::string& Id() const { return id_; }      // FID, empty when none is open
    const std::string& Name() const { return name_; }  // itName
    // Lines as last read or counted.
    std::int32_t EntryCount() const { return entryCount_; }
    // Rows of the grid in use.
    int RowCount() const { return rowCount_; }
    // False: the lines could not be read, or not yet.
    bool LinesKnown() const { return linesKnown_; }
    // The lines as read.
    const LinesDigest& Loaded() const { return loaded_; }
    // Differs from what was read.
    bool IsDirty() const { return dirty_; }
    // In the status line until something changes.
    const std::string& Notice() const { return notice_; }
    void SetNotice(const std::string& notice) { notice_ = notice; }

    // --- from one template to another; the grid is blank then and nothing of before can be undone
    void Close();
    void Open(const std::string& id, const std::string& name);
    // How many lines the account set counts, until they are read.
    void Count(std::int32_t entries) { entryCount_ = entries; }
    // Reads the lines into the grid. Known is what has been read to its end; of less nothing stays.
    void ReadLines();
    // The same lines as another template, which holds none yet.
    void Become(const std::string& id, const std::string& name);

    // --- the lines against what the account set holds
    // A change that no undo takes back.
    void Touch() {
        touched_ = true;
        SetDirty(true);
    }
    // What the user may still want stands beside the lines, until something else is done to them.
    void CountAsModified() { SetDirty(true); }
    // What was typed is stored, or given up: the lines as they are now are those that were read.
    void Settle();
    // The first rows of the grid are the lines now, by the user's will.
    void TakeRows(int rows);
    // The lines were typed upon what the account set held then.
    void TypedUpon(const LinesDigest& loaded);

    // --- undo
    const GridJournal& Journal() const { return journal_; }
    GridJournal& Journal() { return journal_; }
    JournalMark Mark() const { return {rowCount_, grid_.ActiveCell()}; }
    // Only when the journal can; the mark that has been gone back to.
    JournalMark Undo() { return Return(journal_.Undo()); }
    JournalMark Redo() { return Return(journal_.Redo()); }

    void TextReplaced(int row, int column, std::string_view before, TextVerdict refusal) override;
    void RowsInserted(int firstRow, int count) override;
    void RowsRemoved(int firstRow, std::vector<GridRowPtr> rows) override;

  private:
    void Blank();
    void SetDirty(bool dirty);
    JournalMark Return(JournalMark mark);

    EntryGrid& grid_;
    ModifiedListener modified_;
    GridJournal journal_;
    std::string id_;
    std::string name_;
    std::string notice_;
    std::int32_t entryCount_ = 0;
    int rowCount_ = 0;
    LinesDigest loaded_;
    bool linesKnown_ = true;
    bool dirty_ = false;
    bool touched_ = false;
};

// Everything that is changed while one of these lives is one step of undo.
class UndoStep {
  public:
    explicit UndoStep(OpenTemplate& open, bool join = false) : open_(open) {
        open_.Journal().Open(open_.Mark(), join);
    }
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;
    ~UndoStep() { open_.Journal().Close(open_.Mark()); }

  private:
    OpenTemplate& open_;
};

}  // namespace vicenter::center
