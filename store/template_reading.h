#pragma once

// The lines of a template on their way from the account set to whoever shows them: what a cell of the grid
// holds of a stored value, column by column, and how two readings are told apart.

#include <array>
#include <cstdint>
#include <string>

#include "platform/ado/recordset.h"
#include "store/template_columns.h"

namespace vicenter::store {

// The texts of a line, by column from 1 (index 0 is column 1).
using LineTexts = std::array<std::string, kColumnCount>;

// Reads one record after the other: the columns are looked up once for all of them. Keeps the recordset by
// reference.
class LineReader {
  public:
    explicit LineReader(const ado::Recordset& records);
    // Of the record counted from 0; good until the next one is read.
    const LineTexts& Read(std::size_t record);

  private:
    std::string CellText(int gridColumn, std::size_t record) const;

    const ado::Recordset& records_;
    std::array<std::size_t, kColumnCount> fields_{};
    LineTexts texts_;
};

// The lines of a template as they are shown, in a few bytes: alike as long as nobody has changed them.
struct LinesDigest {
    std::int64_t lines = 0;
    std::uint64_t hash = 0;

    // One more line.
    void Add(const LineTexts& line);
    friend bool operator==(const LinesDigest&, const LinesDigest&) = default;
};

// Of an answer that holds the lines of a template in the order in which they are shown; a record without
// FEntryID is no line. Errors pass.
LinesDigest DigestOf(const ado::Recordset& records);

}  // namespace vicenter::store
