#pragma once

// The entry grid `vsEntrys` without a window: 21 columns, texts, colours, widths, active cell.
//
// One object serves three sides: the presenter works on the typed members, hosts and dialogs drive it
// late-bound by the spread control's property names (Row, Col, Row2, Col2, BlockMode, ReDraw, Text,
// ForeColor, BackColor, ColHidden, ColWidth, MaxRows, MaxCols ...), and a window paints it through
// GridObserver. Rows and columns count from 1; row 0 is the header. A blank row costs one pointer, a filled
// one two blocks of memory, so that 100,000 rows are no burden. Owned through std::shared_ptr, user-interface
// thread only.

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "automation/member_table.h"
#include "center/grid/columns.h"
#include "center/grid/grid_row.h"

namespace vicenter::center {

struct CellRange {
    int firstRow = 1;
    int firstColumn = 1;
    int lastRow = 0;
    int lastColumn = 0;

    bool IsEmpty() const { return lastRow < firstRow || lastColumn < firstColumn; }
    friend bool operator==(const CellRange&, const CellRange&) = default;
};

struct CellAddress {
    int row = 1;
    int column = 1;
    friend bool operator==(const CellAddress&, const CellAddress&) = default;
};

// What a cell looks like; the text is Text()'s.
struct CellLook {
    std::int32_t foreColor = color::kBlack;
    std::int32_t backColor = color::kWhite;
    bool operator==(const CellLook&) const = default;
};

// The columns by the places at which they are shown, hidden ones among them.
using ColumnOrder = std::array<int, kColumnCount>;

struct ColumnLayout {
    double width = 0;  // twips; dragging may leave fractions
    bool hidden = false;
};

struct GridFont {
    std::string name;
    double size = 9;
};

// By their numbers, from the left.
ColumnOrder DesignedOrder();

// Told of every change. Structure changes come in pairs, before and after, as item models want them; cell
// changes are held back while ReDraw is off and come as one range when it goes on again.
class GridObserver {
  public:
    virtual ~GridObserver() = default;
    virtual void TextsChanged(const CellRange&) {}
    virtual void LooksChanged(const CellRange&) {}
    virtual void RowsAboutToBeInserted(int /*firstRow*/, int /*count*/) {}
    virtual void RowsInserted(int /*firstRow*/, int /*count*/) {}
    virtual void RowsAboutToBeRemoved(int /*firstRow*/, int /*count*/) {}
    virtual void RowsRemoved(int /*firstRow*/, int /*count*/) {}
    virtual void AboutToReset() {}
    virtual void WasReset() {}
    virtual void ColumnsChanged(int /*firstColumn*/, int /*lastColumn*/) {}  // width or hidden flag
    virtual void ColumnsMoved() {}
    virtual void RowHeightsChanged() {}
    virtual void FontChanged() {}
    virtual void ActiveCellChanged(const CellAddress&) {}
    virtual void ScrolledIntoView(const CellAddress&) {}
};

// Written to at once, ReDraw or not, for every change of content: what undo and the dirty flag need. Filling
// rows from the account set is no change of content.
class GridRecorder {
  public:
    virtual ~GridRecorder() = default;
    // refusal: what had been said of the text before.
    virtual void TextReplaced(int row, int column, std::string_view before, TextVerdict refusal) = 0;
    virtual void RowsInserted(int firstRow, int count) = 0;
    virtual void RowsRemoved(int firstRow, std::vector<GridRowPtr> rows) = 0;
};

class EntryGrid : public automation::TableObject<EntryGrid> {
  public:
    EntryGrid();
    ~EntryGrid() override;
    static const automation::MemberTable<EntryGrid>& Members();
    std::string TypeName() const override { return "vaSpread"; }

    void AddObserver(GridObserver& observer);
    void RemoveObserver(GridObserver& observer);
    // None by default. Not owned.
    void SetRecorder(GridRecorder* recorder) { recorder_ = recorder; }
    GridRecorder* Recorder() const { return recorder_; }

    int RowTotal() const { return static_cast<int>(rows_.size()); }
    // Rows are cut off or blank ones added at the end.
    void SetRowTotal(int rows);
    // All rows gone, then `rows` blank ones; the active cell is (1, 1). Not recorded.
    void Clear(int rows);
    void InsertRows(int firstRow, int count);
    void RemoveRows(int firstRow, int count);
    bool IsBlankRow(int row) const;

    // The plain text; the view is valid until the row changes. Outside the grid: the empty text.
    std::string_view Text(int row, int column) const;
    // False, and nothing changed, when the column refuses the text (AcceptsProgramText) or the cell is
    // outside.
    bool SetText(int row, int column, std::string_view text);
    // What became of a text that the user gave. One that is refused stays in the cell beside the verdict
    // until another text takes its place; false when the cell keeps what it had, locked or too short for the
    // text.
    bool PutReading(int row, int column, const TextReading& reading);
    // Taken for every cell whose text has not been refused.
    TextVerdict Refusal(int row, int column) const;
    // A whole row as read from the account set: never refused, not recorded.
    void FillRow(int row, const std::array<std::string, kColumnCount>& texts);

    CellLook Look(int row, int column) const;
    void SetForeColor(const CellRange& range, std::int32_t value);
    void SetBackColor(const CellRange& range, std::int32_t value);
    // The check (1 to 5) that refused the cell, 0 for none; kept beside the colour for tooltips.
    int FaultyCheck(int row, int column) const;
    void SetFaultyCheck(int row, int check, bool faulty);

    ColumnLayout Layout(int column) const { return layouts_[static_cast<std::size_t>(column)]; }
    void SetColumnWidth(int column, double twips);
    void SetColumnHidden(int column, bool hidden);
    const ColumnOrder& Order() const { return order_; }
    // Nothing happens for what does not name every column once.
    void SetOrder(const ColumnOrder& order);

    int HeaderHeight() const { return headerHeight_; }  // twips
    int RowHeight() const { return rowHeight_; }
    void SetRowHeights(int header, int data);
    const GridFont& Font() const { return font_; }
    void SetFont(GridFont font);

    // Nothing is active before the first cell has been: row and column 0.
    CellAddress ActiveCell() const { return active_; }
    void SetActiveCell(const CellAddress& cell);
    void ScrollIntoView(const CellAddress& cell);

    bool ReDraw() const { return redraw_; }
    void SetReDraw(bool on);

    // The late-bound block: Row and Col to Row2 and Col2 (with BlockMode) or the one cell; -1 stands for all.
    CellRange SelectedRange() const;

    // For undo: puts a text back whatever the column accepts, and puts removed rows back. Recorded like any
    // change.
    void RestoreText(int row, int column, std::string_view text, TextVerdict refusal = TextVerdict::Taken);
    void RestoreRows(int firstRow, std::vector<GridRowPtr> rows);
    // With its colours and verdicts; none for a blank row.
    GridRowPtr CopyOfRow(int row) const;

  private:
    struct LateBound;
    struct Selection {  // the control's current block: Row, Col to Row2, Col2
        int row = 1;
        int column = 1;
        int row2 = 1;
        int column2 = 1;
        bool block = false;
    };

    static int CheckedColumn(int column);  // throws Error 5 outside the grid
    automation::Variant SelectedText() const;
    void SetSelectedText(const std::string& text);
    bool Contains(int row, int column) const;
    GridRow& RowAt(int row);
    const GridRow* RowIfAny(int row) const;
    void ReplaceText(int row, int column, std::string_view text, TextVerdict refusal = TextVerdict::Taken);
    void Paint(const CellRange& range, std::int32_t value, std::int32_t usual,
               bool (GridRow::*paint)(int, std::int32_t));
    void FlushPending();
    void ReportTexts(const CellRange& range);
    void ReportLooks(const CellRange& range);
    template <class Telling>
    void Tell(Telling tell);

    std::vector<GridRowPtr> rows_;
    std::array<ColumnLayout, kColumnCount + 1> layouts_;
    ColumnOrder order_ = DesignedOrder();
    std::vector<GridObserver*> observers_;
    GridRecorder* recorder_ = nullptr;
    Selection selection_;
    CellAddress active_{0, 0};
    GridFont font_;
    int headerHeight_ = 450;
    int rowHeight_ = 285;
    bool redraw_ = true;
    CellRange pendingTexts_;
    CellRange pendingLooks_;
};

}  // namespace vicenter::center
