#pragma once

// Reads a template's entry lines into a grid and marks what no longer resolves. Needs no window.

#include <cstdint>
#include <optional>
#include <string>

#include "center/editing/cell_checks.h"
#include "center/grid/entry_grid.h"
#include "platform/ado/recordset.h"

namespace vicenter::center {

// The lines of a template as they are shown, in a few bytes: alike as long as nobody has changed them.
struct LinesDigest {
    std::int64_t lines = 0;
    std::uint64_t hash = 0;
    friend bool operator==(const LinesDigest&, const LinesDigest&) = default;
};

// Shows one record after the other: the columns are looked up once for all rows.
class LineReader {
  public:
    explicit LineReader(const ado::Recordset& records);
    // Row of the recordset, counted from 0, into the grid row.
    void FillRow(EntryGrid& grid, int gridRow, std::size_t record);
    // The record as one more line of the digest.
    void Add(std::size_t record, LinesDigest& digest);
    // The row that FillRow filled last.
    void AddFilled(LinesDigest& digest) const;

  private:
    void ReadTexts(std::size_t record);
    std::string CellText(int gridColumn, std::size_t record) const;

    const ado::Recordset& records_;
    std::array<std::size_t, kColumnCount> fields_{};
    std::array<std::string, kColumnCount> texts_;
};

// Fills the grid with the lines of the template and marks every row; the number of lines, or nothing when the
// lines cannot be read. With 100 lines or more the grid gets two rows more than lines; below, it keeps its
// rows. digest, unless nullptr, gets what was read. Lines that fail half-way are an error, with the lines
// before them in the grid.
std::optional<int> LoadLines(EntryGrid& grid, const std::string& templateId, LinesDigest* digest = nullptr);

// Of an answer that holds the lines of a template in the order in which they are shown; a record without
// FEntryID is no line. Errors pass.
LinesDigest DigestOf(const ado::Recordset& records);

// The row at which the line of a row will stand once the lines have been saved and read again: they come
// sorted by template number. Rows outside of those in use stay where they are.
int RowOnceSorted(const EntryGrid& grid, int rowCount, int row);

}  // namespace vicenter::center
