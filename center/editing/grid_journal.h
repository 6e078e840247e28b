#pragma once

// Undo and redo of the entry grid.
//
// Changes are written down as steps; a step holds every change of one user action, whatever its size, each
// change as little more than the text it replaced. Undoing turns each change into its own inverse, so that
// the same list serves redo. Dropped when a template is opened or saved. Owned by the presenter.

#include <deque>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "center/grid/entry_grid.h"

namespace vicenter::center {

// What a step puts back beside the cells.
struct JournalMark {
    int rowCount = 0;
    CellAddress active{0, 0};
    // The rows whose texts a step changed. Rows that came or went as a whole bring their colours along.
    int firstRow = 1;
    int lastRow = 0;
};

class GridJournal {
  public:
    static constexpr std::size_t kMostSteps = 1000;

    explicit GridJournal(EntryGrid& grid) : grid_(grid) {}

    // Steps nest; the outermost pair counts. A step without changes leaves no trace; blank lines that come
    // into use are a change. With `join` the changes are added to the last step: the resolution of a cell
    // belongs to the typing that it follows.
    void Open(const JournalMark& before, bool join = false);
    void Close(const JournalMark& after);
    bool IsOpen() const { return depth_ > 0; }
    // True when the last step can be joined: it was the last thing to happen.
    bool CanJoin() const { return !done_.empty() && undone_.empty(); }

    void TextReplaced(int row, int column, std::string_view before, TextVerdict refusal);
    void RowsInserted(int firstRow, int count);
    void RowsRemoved(int firstRow, std::vector<GridRowPtr> rows);

    bool CanUndo() const { return !done_.empty(); }
    bool CanRedo() const { return !undone_.empty(); }
    // The mark to go back to. The grid's recorder is silent meanwhile. Only when Can...() says so.
    JournalMark Undo();
    JournalMark Redo();
    void Drop();

  private:
    struct Text {
        int row;
        int column;
        std::string other;  // what the cell held before, or holds after once undone
        TextVerdict refusal;
    };
    struct Inserted {
        int firstRow;
        int count;
    };
    struct Removed {
        int firstRow;
        std::vector<GridRowPtr> rows;
    };
    using Change = std::variant<Text, Inserted, Removed>;
    struct Step {
        std::vector<Change> changes;
        JournalMark before;
        JournalMark after;
    };

    void Apply(Change& change, JournalMark& rows);

    EntryGrid& grid_;
    std::deque<Step> done_;
    std::vector<Step> undone_;
    Step current_;
    bool joining_ = false;
    int depth_ = 0;
};

}  // namespace vicenter::center
