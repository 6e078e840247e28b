#pragma once

// A workbook in memory: sheets of sparse rows, texts stored once, formats by index.
//
// Rows and columns count from 0 here. The workbook owns everything; sheets refer to its pools and stay at
// their place until they are deleted. Memory is bounded by kMaxWorkbookBytes whatever a file declares. Not
// thread-safe.

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/office/cell_format.h"
#include "platform/office/limits.h"
#include "platform/office/text_pool.h"

namespace vicenter::office {

enum class CellKind : std::uint8_t { Blank, Number, Text, Boolean, Error };

// Error values by the codes that ".xls" files hold.
enum class CellError : std::uint8_t {
    Null = 0x00,
    Div0 = 0x07,
    Value = 0x0F,
    Ref = 0x17,
    Name = 0x1D,
    Num = 0x24,
    NA = 0x2A,
    Calc = 0x32  // a formula without a result; of newer editions, no ".xls" file holds it
};

// "#N/A" and so on; an unknown code counts as "#VALUE!".
std::string_view CellErrorText(CellError error);
CellError CellErrorFromText(std::string_view text);

struct Cell {
    union {
        double number = 0;
        std::uint32_t text;
        bool boolean;
        CellError error;
    };
    std::uint16_t column = 0;
    std::uint16_t format = 0;
    CellKind kind = CellKind::Blank;
};

using Row = std::vector<Cell>;  // ascending columns, no gaps filled

struct ColumnSetting {
    std::uint16_t format = 0;
    double width = 0;  // in characters of the standard font; 0 is the standard width
    bool hidden = false;
};

// A block of cells, both ends included.
struct CellArea {
    std::uint32_t firstRow = 0;
    std::uint32_t firstColumn = 0;
    std::uint32_t lastRow = 0;
    std::uint32_t lastColumn = 0;
};

// How a sheet comes out of a printer, and what of it stays in sight.
struct SheetPage {
    std::uint16_t paper = 0;  // by the numbers that both file kinds have for paper; 0: the printer's own
    bool landscape = false;
    bool fits = false;           // to so many pages, instead of a scale
    std::uint16_t fitsWide = 1;  // 0: as many as it takes
    std::uint16_t fitsTall = 1;
    std::uint32_t titleRows = 0;  // rows repeated on every page, from titleFirst on; 0: none
    std::uint32_t titleFirst = 0;
    std::uint32_t splitRows = 0;  // rows and columns above and left of a split
    std::uint32_t splitColumns = 0;
    bool frozen = false;  // the split is one that does not scroll
};

class Workbook;

class Sheet {
  public:
    Sheet(Workbook& workbook, std::string name) : workbook_(workbook), name_(std::move(name)) {}

    const std::string& Name() const { return name_; }
    void SetName(std::string name) { name_ = std::move(name); }
    bool IsHidden() const { return hidden_; }
    void SetHidden(bool hidden) { hidden_ = hidden; }

    const std::vector<Row>& Rows() const { return rows_; }
    const std::map<std::uint32_t, ColumnSetting>& Columns() const { return columns_; }
    ColumnSetting& ColumnAt(std::uint32_t column) { return columns_[column]; }

    const SheetPage& Page() const { return page_; }
    SheetPage& Page() { return page_; }

    // No object for a cell that holds neither a value nor a format of its own.
    const Cell* Find(std::uint32_t row, std::uint32_t column) const;
    // The cell, made with its column's format when it is new. Refers into its row: the next call may move it.
    Cell& At(std::uint32_t row, std::uint32_t column);
    // A cell right of all others of its row, as readers meet them; otherwise as At().
    Cell& Append(std::uint32_t row, std::uint32_t column, std::uint16_t format);

    // Rows and columns that hold a value or a formatted cell, counted as the spreadsheet program counts its
    // used range; a sheet without any is A1.
    CellArea UsedArea() const;
    // A formatted cell without a value, met by a reader: counts for the used area but is not stored.
    void ExtendUsedArea(std::uint32_t row, std::uint32_t column);

    // Gives back what the rows reserved for growing.
    void FinishRow(std::uint32_t row);

  private:
    Row& RowAt(std::uint32_t row);
    std::size_t RoomFor(std::uint32_t row) const;

    Workbook& workbook_;
    std::string name_;
    bool hidden_ = false;
    SheetPage page_;
    std::vector<Row> rows_;
    std::map<std::uint32_t, ColumnSetting> columns_;
    CellArea used_;
    bool anyUsed_ = false;
};

class Workbook {
  public:
    Workbook() = default;
    Workbook(const Workbook&) = delete;
    Workbook& operator=(const Workbook&) = delete;

    std::vector<std::unique_ptr<Sheet>>& Sheets() { return sheets_; }
    const std::vector<std::unique_ptr<Sheet>>& Sheets() const { return sheets_; }
    Sheet& AddSheet(std::string name, std::size_t position = SIZE_MAX);
    // The sheet of that name, compared without case; no object when there is none.
    Sheet* FindSheet(std::string_view name) const;

    TextPool& Texts() { return texts_; }
    const TextPool& Texts() const { return texts_; }
    FormatTable& Formats() { return formats_; }
    const FormatTable& Formats() const { return formats_; }

    // Dates count from 1904-01-01 instead of 1900.
    bool dates1904 = false;
    // The results of formulas are to be calculated when the workbook is opened.
    bool calculatesOnLoad = false;
    std::size_t activeSheet = 0;

    // Throws automation::Error when the workbook outgrows its memory.
    void Charge(std::size_t bytes) {
        charged_ += bytes;
        if (charged_ + texts_.Bytes() > kMaxWorkbookBytes) FailTooLarge();
    }

    // Charges what one more entry makes a list grow by: old and new memory stand side by side for a while.
    template <class T>
    void ChargeEntry(const std::vector<T>& list) {
        if (list.size() == list.capacity()) Charge(std::max<std::size_t>(1, 2 * list.capacity()) * sizeof(T));
    }

  private:
    std::vector<std::unique_ptr<Sheet>> sheets_;
    TextPool texts_;
    FormatTable formats_;
    std::size_t charged_ = 0;
};

}  // namespace vicenter::office
